#include <climits>
#include <cstdlib>
#include <cstring>

#include "dorvutil/platform/network.h"
#include "dorvutil/platform/posix/mounts.h"
#include "dorvutil/platform/posix/path.h"
#include "dorvutil/platform/posix/text_file.h"

namespace dorvutil::platform {
namespace {

constexpr std::size_t kFieldSize = NativePath::kCapacity;

constexpr bool IsOctal(char c) { return c >= '0' && c <= '7'; }

// Copies a field up to the next blank; the kernel writes blanks and the like inside one as \ooo. Returns what follows
// the blank; an overlong field becomes empty.
const char* TakeField(const char* text, char (&out)[kFieldSize]) {
    std::size_t length = 0;
    bool fits = true;
    while (*text != '\0' && *text != ' ') {
        char unit = *text++;
        if (unit == '\\' && IsOctal(text[0]) && IsOctal(text[1]) && IsOctal(text[2])) {
            unit = static_cast<char>((text[0] - '0') << 6 | (text[1] - '0') << 3 | (text[2] - '0'));
            text += 3;
        }
        fits = length + 1 < kFieldSize;
        if (fits) out[length++] = unit;
    }
    out[fits ? length : 0] = '\0';
    return *text == ' ' ? text + 1 : text;
}

struct Mount {
    char root[kFieldSize];   // the folder of the drive that is mounted
    char point[kFieldSize];  // where
    char type[kFieldSize];
    char source[kFieldSize];
};

// "36 35 98:0 /root /point options… - type source options"
bool ReadMount(const char* line, Mount& mount) {
    for (int i = 0; i < 3; ++i) line = TakeField(line, mount.type);
    line = TakeField(line, mount.root);
    line = TakeField(line, mount.point);
    do {
        line = TakeField(line, mount.type);
    } while (*line && std::strcmp(mount.type, "-") != 0);
    line = TakeField(line, mount.type);
    TakeField(line, mount.source);
    return mount.point[0] == '/' && mount.source[0] != '\0';
}

// The part of `path` below `folder`, with the separator in front (empty for the folder itself); null outside of it.
const char* Below(const char* path, const char* folder) {
    const char* const rest = std::strcmp(folder, "/") == 0 ? path : Behind(path, folder);
    return rest && (*rest == '/' || *rest == '\0') ? rest : nullptr;
}

// Server and share as "//server/share"; empty for a drive that is not on the network.
void ShareOf(const Mount& mount, char (&share)[kFieldSize + 4]) {
    share[0] = '\0';
    const bool windowsShare = std::strcmp(mount.type, "cifs") == 0 || std::strcmp(mount.type, "smb3") == 0;
    if (windowsShare && std::strncmp(mount.source, "//", 2) == 0) std::strcpy(share, mount.source);
    if (std::strncmp(mount.type, "nfs", 3) != 0) return;
    const char* const folder = std::strstr(mount.source, ":/");
    if (!folder) return;
    std::snprintf(share, sizeof(share), "//%.*s%s", static_cast<int>(folder - mount.source), mount.source, folder + 1);
}

}  // namespace

bool NetworkFormOf(const char* path, std::FILE* mounts, char* out, std::size_t size) {
    static_assert(sizeof(Mount) < 0x8000, "on the stack");
    LineReader lines(mounts);
    Mount mount;
    std::size_t longest = 0;
    bool fits = false;
    // The innermost mount decides, and of several at one place the last.
    while (const char* const line = lines.Next()) {
        if (!ReadMount(line, mount)) continue;
        const char* const rest = Below(path, mount.point);
        if (!rest || std::strlen(mount.point) < longest) continue;
        longest = std::strlen(mount.point);
        char share[kFieldSize + 4];
        ShareOf(mount, share);
        const bool whole = std::strcmp(mount.root, "/") == 0;
        const int length = std::snprintf(out, size, "%s%s%s", share, whole ? "" : mount.root, rest);
        fits = share[0] != '\0' && length >= 0 && static_cast<std::size_t>(length) < size;
    }
    return fits;
}

bool QueryNetworkPath(const char16_t* path, char16_t* out, std::size_t size) {
    const NativePath native(path);
    char real[PATH_MAX];
    if (!::realpath(native.c_str(), real)) return false;
    std::FILE* const mounts = std::fopen("/proc/self/mountinfo", "re");
    char bytes[2 * kFieldSize];
    if (!mounts || !NetworkFormOf(real, mounts, bytes, sizeof(bytes))) return false;
    char16_t wide[sizeof(bytes)];
    const std::size_t length = FromNativePath(bytes, std::strlen(bytes), wide);
    if (length + 1 > size) return false;
    wide[length] = u'\0';
    std::memcpy(out, wide, (length + 1) * sizeof(char16_t));
    return true;
}

}  // namespace dorvutil::platform
