#include "dorvutil/platform/directory.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "dorvutil/platform/posix/file_status.h"
#include "dorvutil/platform/posix/path.h"

namespace dorvutil::platform {
namespace {

bool IsDots(const char* name) { return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0; }

}  // namespace

bool CreateFolder(const char* path) { return ::mkdir(NativePath(path).c_str(), 0777) == 0; }

bool RemoveFolder(const char* path) { return ::rmdir(NativePath(path).c_str()) == 0; }

DirectoryReader::DirectoryReader(const char* path)
    : m_stream(::opendir(path && *path ? NativePath(path).c_str() : ".")), m_name{} {}

DirectoryReader::~DirectoryReader() {
    if (m_stream) ::closedir(static_cast<DIR*>(m_stream));
}

bool DirectoryReader::Next(DirectoryEntry& entry) {
    if (!m_stream) return false;
    DIR* const stream = static_cast<DIR*>(m_stream);
    while (const dirent* const found = ::readdir(stream)) {
        const std::size_t size = std::strlen(found->d_name);
        if (IsDots(found->d_name) || 3 * size >= kNameCapacity) continue;
        entry = {};
        if (!StatusAt(::dirfd(stream), found->d_name, true, entry.m_status)) continue;  // gone meanwhile
        m_name[FromNativePath(found->d_name, size, m_name)] = '\0';
        entry.m_name = m_name;
        return true;
    }
    return false;
}

}  // namespace dorvutil::platform
