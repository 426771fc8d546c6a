#include "dorvutil/platform/host.h"

#include <dlfcn.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "dorvutil/platform/posix/path.h"

namespace dorvutil::platform {
namespace {

constexpr std::int32_t kOkButton = 1;
constexpr std::size_t kMostQuits = 64;

// Quit requests nobody has taken yet, oldest first.
struct QuitQueue {
    pthread_mutex_t guard = PTHREAD_MUTEX_INITIALIZER;
    std::array<std::int32_t, kMostQuits> codes{};  // guarded by guard
    std::size_t count = 0;                         // guarded by guard
};
constinit QuitQueue g_quits;

// One line in UTF-8, built for a single write so that lines of several threads do not mix. What does not fit is cut.
class Line {
public:
    void Add(std::u16string_view text) {
        for (std::size_t i = 0; i < text.size() && m_size + 5 < m_bytes.size(); ++i) {
            const std::uint32_t unit = text[i];
            const std::uint32_t next = i + 1 < text.size() ? text[i + 1] : 0;
            if ((unit & 0xFC00) == 0xD800 && (next & 0xFC00) == 0xDC00) {
                m_size += EncodeUtf8(0x10000 + ((unit & 0x3FF) << 10) + (next & 0x3FF), m_bytes.data() + m_size);
                ++i;
            } else {
                m_size += EncodeUtf8(Printable(unit), m_bytes.data() + m_size);
            }
        }
    }

    void Write() {
        m_bytes[m_size++] = '\n';
        std::size_t done = 0;
        while (done < m_size) {
            const auto written = ::write(STDERR_FILENO, m_bytes.data() + done, m_size - done);
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) return;
            done += static_cast<std::size_t>(written);
        }
    }

private:
    // Control characters would end or rewrite the line; lone surrogates are no characters.
    static std::uint32_t Printable(std::uint32_t unit) {
        const bool control = unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == 0x2028 || unit == 0x2029;
        if (control) return u' ';
        return (unit & 0xF800) == 0xD800 ? 0xFFFD : unit;
    }

    std::array<char, 4096> m_bytes;
    std::size_t m_size = 0;
};

}  // namespace

std::u16string ModulePath() {
    char native[NativePath::kCapacity];
    const auto size = ::readlink("/proc/self/exe", native, sizeof(native));
    if (size <= 0) return {};
    char16_t path[NativePath::kCapacity];
    return std::u16string(path, FromNativePath(native, static_cast<std::size_t>(size), path));
}

std::int32_t ShowMessageBox(const char16_t* text, const char16_t* caption, std::uint32_t) {
    Line line;
    line.Add(caption ? caption : u"");
    line.Add(u": ");
    line.Add(text ? text : u"");
    line.Write();
    return kOkButton;
}

std::u16string ModulePath(const void* address) {
    Dl_info module{};
    if (!address) return ModulePath();
    if (::dladdr(address, &module) == 0 || !module.dli_fname) return {};
    char* const native = ::realpath(module.dli_fname, nullptr);
    if (!native) return {};
    const std::size_t size = std::strlen(native);
    std::u16string path(size, u'\0');
    path.resize(FromNativePath(native, size, path.data()));
    std::free(native);
    return path;
}

void PostQuit(std::int32_t exitCode) {
    ::pthread_mutex_lock(&g_quits.guard);
    // A host that never asks loses the older of the last requests, not the newest.
    const std::size_t place = std::min(g_quits.count, kMostQuits - 1);
    g_quits.codes[place] = exitCode;
    g_quits.count = place + 1;
    ::pthread_mutex_unlock(&g_quits.guard);
}

bool PostedQuit(std::int32_t& exitCode) {
    ::pthread_mutex_lock(&g_quits.guard);
    const bool posted = g_quits.count != 0;
    if (posted) {
        exitCode = g_quits.codes[0];
        std::copy(g_quits.codes.begin() + 1, g_quits.codes.end(), g_quits.codes.begin());
        --g_quits.count;
    }
    ::pthread_mutex_unlock(&g_quits.guard);
    return posted;
}

void* ReserveRange(std::size_t size) {
    void* const base = ::mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return base == MAP_FAILED ? nullptr : base;
}

void ReleaseRange(void* base, std::size_t size) {
    if (base) ::munmap(base, size);
}

}  // namespace dorvutil::platform
