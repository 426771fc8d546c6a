#include <algorithm>
#include <cstring>

#include "dorvutil/concurrency/locks.h"
#include "dorvutil/logging/file_logger.h"
#include "dorvutil/logging/log.h"
#include "dorvutil/storage/folders.h"

namespace dorvutil {
namespace {

constexpr std::size_t kChosenSize = 255;

// Outlives every log manager: the host chooses before the first one is made.
constinit critSec g_lock;
constinit char g_chosen[kChosenSize] = {};  // guarded by g_lock, as the flag
constinit bool g_isChosen = false;

void CopyText(char* out, std::size_t size, const char* text, std::size_t length) {
    length = std::min(length, size - 1);
    std::memcpy(out, text, length);
    out[length] = '\0';
}

bool CopyChosen(char* out, std::size_t size) {
    const TScopedLock lock(g_lock);
    if (g_isChosen) CopyText(out, size, g_chosen, std::strlen(g_chosen));
    return g_isChosen;
}

}  // namespace

bool Log_SetLoggingDirectory(const char* directory) {
    if (directory && !std::memchr(directory, '\0', kChosenSize)) return false;
    const TScopedLock lock(g_lock);
    g_isChosen = directory != nullptr;
    if (directory) CopyText(g_chosen, kChosenSize, directory, std::strlen(directory));
    return true;
}

void FileLogger::GetLoggingDirectory(char* buffer, std::int32_t size) {
    if (!buffer || size <= 0) return;
    const auto room = static_cast<std::size_t>(size);
    if (!CopyChosen(buffer, room)) GetThisDirectory(buffer, size);
    std::size_t length = std::strlen(buffer);
    if (length != 0 && (buffer[length - 1] == '\\' || buffer[length - 1] == '/')) return;
    while (length != 0 && buffer[length - 1] == ' ') --length;
    if (length + 1 < room) buffer[length++] = '\\';
    buffer[length] = '\0';
}

}  // namespace dorvutil
