#include "dorvutil/storage/folders.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "dorvutil/concurrency/locks.h"
#include "dorvutil/frame/accessors.h"
#include "dorvutil/platform/directory.h"
#include "dorvutil/platform/host.h"
#include "dorvutil/storage/path_parts.h"
#include "dorvutil/storage/path_text.h"
#include "dorvutil/text/encoding.h"

namespace dorvutil {
namespace {

constexpr std::size_t kMostPathUnits = 260;
constexpr char kDataFolder[] = "roadlyn";
constexpr std::size_t kLoggingDirectorySize = 255;

constinit critSec g_loggingLock;
constinit char g_loggingDirectory[kLoggingDirectorySize] = {};  // guarded by g_loggingLock, as the flag
constinit bool g_isLoggingDirectoryChosen = false;

// Cuts between characters.
void CopyText(std::string_view text, char* out, std::int32_t size) {
    if (!out || size < 1) return;
    std::size_t length = text.size();
    if (const auto room = static_cast<std::size_t>(size) - 1; length > room) {
        length = room;
        while (length != 0 && (static_cast<unsigned char>(text[length]) & 0xC0u) == 0x80) --length;
    }
    std::memcpy(out, text.data(), length);
    out[length] = '\0';
}

bool CopyChosenLoggingDirectory(char* out, std::int32_t size) {
    const TScopedLock lock(g_loggingLock);
    if (g_isLoggingDirectoryChosen) CopyText(g_loggingDirectory, out, size);
    return g_isLoggingDirectoryChosen;
}

}  // namespace

void GetRuntimeDirectory(const void* module, char* out, std::int32_t size) {
    char16_t path[kMostPathUnits + 1];
    const std::u16string full = platform::ModulePath(module);
    const std::size_t length = full.copy(path, kMostPathUnits);
    path[length] = u'\0';
    TruncatePathToLastSlash(path, static_cast<std::int32_t>(length));
    char narrow[3 * kMostPathUnits + 1] = "";
    const auto units = static_cast<std::uint32_t>(std::char_traits<char16_t>::length(path));
    ORVConvertUTF16toUTF8(path, units, narrow, sizeof(narrow));
    CopyText(narrow, out, size);
}

void GetThisDirectory(char* out, std::int32_t size) { GetRuntimeDirectory(nullptr, out, size); }

void GetLoggingDirectory(char* out, std::int32_t size) {
    if (!out || size < 1) return;
    if (!CopyChosenLoggingDirectory(out, size)) GetThisDirectory(out, size);
    FileAppendSlash(out, size);
}

bool SetLoggingDirectory(const char* directory) {
    if (directory && !std::memchr(directory, '\0', kLoggingDirectorySize)) return false;
    const TScopedLock lock(g_loggingLock);
    g_isLoggingDirectoryChosen = directory != nullptr;
    if (directory) CopyText(directory, g_loggingDirectory, kLoggingDirectorySize);
    return true;
}

void GetDataRootDirectory(char* out, std::int32_t size) { CopyText(kDataFolder, out, size); }

bool GetStoragePath(char* out, std::int32_t size) {
    if (!GetFileMgr() || !out || size < 1) return false;
    platform::DirectoryReader root("\\");
    platform::DirectoryEntry entry;
    while (root.Next(entry)) {
        if (!entry.m_status.m_directory) continue;
        ORVustring folder("\\");
        folder += entry.m_name;
        platform::FileStatus data;
        if (!platform::GetFileStatus(JoinPath(folder, kDataFolder).c_str(), data) || !data.m_directory) continue;
        CopyText(folder.c_str(), out, std::min(size, static_cast<std::int32_t>(kMostPathUnits)));
        return true;
    }
    return false;
}

}  // namespace dorvutil
