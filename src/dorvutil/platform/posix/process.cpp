#include "dorvutil/platform/process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "dorvutil/platform/posix/path.h"

namespace dorvutil::platform {
namespace {

constexpr std::size_t kMostWords = 64;  // with the end mark

// The words of a command line as the system wants them: bytes, one after the other, and a pointer to each.
class Words {
public:
    bool Reserve(std::size_t units) {
        m_bytes.reset(new (std::nothrow) char[units * 3 + kMostWords]);
        return m_bytes != nullptr;
    }

    // Takes the words of `text`. Those of a file name are paths, and so is the first of all: it names the program.
    void Split(const char16_t* text, bool arePaths) {
        while (text && *text && !m_failed) {
            if (*text == u' ' || *text == u'\t') {
                ++text;
            } else {
                text = Take(text, arePaths || m_count == 0);
            }
        }
    }

    bool Whole() const { return !m_failed && m_count != 0 && m_words[0][0] != '\0'; }
    char* const* Get() const { return m_words.data(); }

private:
    const char16_t* Take(const char16_t* text, bool isPath) {
        char* const start = m_bytes.get() + m_used;
        std::size_t written = 0;
        bool quoted = false;
        for (; *text && (quoted || (*text != u' ' && *text != u'\t')); ++text) {
            std::uint32_t unit = *text;
            if (unit == u'"') {
                quoted = !quoted;
                continue;
            }
            if ((unit & 0xFC00) == 0xD800 && (text[1] & 0xFC00) == 0xDC00) {
                unit = 0x10000 + ((unit & 0x3FF) << 10) + (*++text & 0x3FFu);
            }
            written += EncodeUtf8(isPath && unit == u'\\' ? u'/' : unit, start + written);
        }
        start[written] = '\0';
        m_used += written + 1;
        m_failed = m_count + 1 >= kMostWords;
        if (!m_failed) m_words[m_count++] = start;
        return text;
    }

    std::unique_ptr<char[]> m_bytes;
    std::size_t m_used = 0;
    std::array<char*, kMostWords> m_words{};  // ended by null
    std::size_t m_count = 0;
    bool m_failed = false;
};

std::size_t LengthOf(const char16_t* text) { return text ? std::char_traits<char16_t>::length(text) : 0; }

// Between fork and exec: only what is safe there. Ends the process with word of what went wrong.
[[noreturn]] void GiveUp(int report) {
    const int error = errno;
    while (::write(report, &error, sizeof(error)) < 0 && errno == EINTR) {
    }
    ::_exit(127);
}

[[noreturn]] void BecomeProgram(char* const* words, const char* folder, int report) {
    ::setsid();
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    if (!*folder || ::chdir(folder) == 0) ::execvp(words[0], words);
    GiveUp(report);
}

// Whether nothing went wrong: the pipe closes without a word when the program runs.
bool HeardNothing(int report) {
    int error = 0;
    ssize_t heard = 0;
    do {
        heard = ::read(report, &error, sizeof(error));
    } while (heard < 0 && errno == EINTR);
    return heard == 0;
}

// The process is a grandchild: its parent ends at once, so that the system cleans up after it and the host, whose
// handling of ended children is its own, never sees it.
bool StartDetached(char* const* words, const char* folder) {
    int report[2];
    if (::pipe2(report, O_CLOEXEC) != 0) return false;
    const pid_t child = ::fork();
    if (child == 0) {
        const pid_t grandchild = ::fork();
        if (grandchild == 0) BecomeProgram(words, folder, report[1]);
        if (grandchild < 0) GiveUp(report[1]);
        ::_exit(0);
    }
    ::close(report[1]);
    // A host that waits for any child, or for none, may have been faster.
    while (child > 0 && ::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    const bool started = child > 0 && HeardNothing(report[0]);
    ::close(report[0]);
    return started;
}

bool IsUrl(const char* text) {
    const std::size_t scheme = std::strspn(text, "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+.-");
    return scheme > 1 && text[scheme] == ':';
}

bool IsSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value && *value;
}

}  // namespace

std::uint32_t ProcessId() { return static_cast<std::uint32_t>(::getpid()); }

bool StartProcess(const char16_t* arguments, const char16_t* file, const char16_t* folder) {
    Words words;
    if (!words.Reserve(LengthOf(arguments) + LengthOf(file))) return false;
    words.Split(arguments, false);
    words.Split(file, true);
    const NativePath nativeFolder(folder);
    if (folder && *folder && !*nativeFolder.c_str()) return false;
    return words.Whole() && StartDetached(words.Get(), nativeFolder.c_str());
}

bool OpenWithDesktop(const char16_t* target) {
    if (!IsSet("DISPLAY") && !IsSet("WAYLAND_DISPLAY")) return false;
    const NativePath native(target);
    if (!*native.c_str()) return false;
    // A file name that looks like an option must not become one.
    char text[NativePath::kCapacity + 2] = "./";
    const bool plain = IsUrl(native.c_str()) || *native.c_str() != '-';
    std::strcpy(text + (plain ? 0 : 2), native.c_str());
    char program[] = "xdg-open";
    char* const words[] = {program, text, nullptr};
    return StartDetached(words, "");
}

void* FindWindowOfClass(const char16_t*) { return nullptr; }

bool PostCloseToWindow(void*) { return false; }

}  // namespace dorvutil::platform
