#include "replace_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "input_error.h"

namespace roadlyn {
namespace {

namespace fs = std::filesystem;

// A file beside the target, removed unless it took the target's place.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& target) : m_target(target), m_path(target + ".XXXXXX") {
        m_file = ::mkstemp(m_path.data());
        if (m_file < 0) Fail();
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (m_file >= 0) ::close(m_file);
        if (!m_path.empty()) ::unlink(m_path.c_str());
    }

    void Write(std::string_view text) {
        while (!text.empty()) {
            const ssize_t written = ::write(m_file, text.data(), text.size());
            if (written < 0 && errno != EINTR) Fail();
            if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
        }
    }

    void TakeThePlace() {
        struct stat old = {};
        const bool replaces = ::stat(m_target.c_str(), &old) == 0;
        Finish(replaces ? old.st_mode & 07777 : NewFileMode());
        fs::rename(m_path, m_target);
        m_path.clear();
    }

    // A second name fails where there is a file, which a renaming would replace; the first name goes in the end.
    void TakeAFreePlace() {
        Finish(NewFileMode());
        if (::link(m_path.c_str(), m_target.c_str()) != 0) Fail();
    }

private:
    // What any program's new file gets; the system tells it only in exchange for another.
    static mode_t NewFileMode() {
        const mode_t mask = ::umask(077);
        ::umask(mask);
        return 0666 & ~mask;
    }
    void Finish(mode_t mode) {
        if (::fchmod(m_file, mode) != 0 || ::fsync(m_file) != 0) Fail();
        if (::close(std::exchange(m_file, -1)) != 0) Fail();
    }
    [[noreturn]] void Fail() { throw std::system_error(errno, std::generic_category()); }

    std::string m_target;
    std::string m_path;
    int m_file;
};

// Calls `write` with what can go wrong on a disk turned into an error of that file.
template <class Write>
void WithErrorsOf(const std::string& path, Write write) {
    try {
        write();
    } catch (const std::system_error& error) {
        throw InputError(path, 0, "cannot be written: " + error.code().message());
    }
}

void CreateFolderOf(const fs::path& target) {
    if (target.has_parent_path()) fs::create_directories(target.parent_path());
}

}  // namespace

void ReplaceFile(const std::string& path, std::string_view text) {
    WithErrorsOf(path, [&] {
        fs::path target(path);
        if (fs::exists(target)) target = fs::canonical(target);
        CreateFolderOf(target);
        TemporaryFile file(target.string());
        file.Write(text);
        file.TakeThePlace();
    });
}

void CreateWholeFile(const std::string& path, std::string_view text) {
    WithErrorsOf(path, [&] {
        CreateFolderOf(path);
        TemporaryFile file(path);
        file.Write(text);
        file.TakeAFreePlace();
    });
}

}  // namespace roadlyn
