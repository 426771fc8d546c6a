#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace roadlyn {

/// A test with an empty folder of its own.
class FolderTest : public testing::Test {
protected:
    FolderTest() : m_folder(std::filesystem::temp_directory_path() / ("roadlyn_" + std::to_string(::getpid()))) {
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder);
    }
    ~FolderTest() override { std::filesystem::remove_all(m_folder); }

    std::string At(const std::string& name) const { return (m_folder / name).string(); }
    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(At(name), std::ios::binary) << text;
    }
    static std::ptrdiff_t CountEntries(const std::filesystem::path& folder) {
        const std::filesystem::directory_iterator entries(folder);
        return std::distance(begin(entries), end(entries));
    }

    const std::filesystem::path m_folder;
};

/// The system refuses to let a file grow beyond so many bytes, as a full disk would, as long as this lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit small{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_before{};
    void (*m_handler)(int);
};

}  // namespace roadlyn
