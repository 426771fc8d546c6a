#pragma once

#include "dorvutil/platform/file.h"

/// Folders. Paths and names are narrow, as file.h has them.
namespace dorvutil::platform {

/// Creates one folder; the one above it must exist.
bool CreateFolder(const char* path);

/// Removes an empty folder.
bool RemoveFolder(const char* path);

struct DirectoryEntry {
    const char* m_name = nullptr;  ///< Until the next call of Next.
    FileStatus m_status;           ///< Of a link that leads nowhere: of the link.
};

/// Reads a folder, in the system's order. One thread at a time.
class DirectoryReader {
public:
    /// An empty path is the current folder.
    explicit DirectoryReader(const char* path);
    DirectoryReader(const DirectoryReader&) = delete;
    DirectoryReader& operator=(const DirectoryReader&) = delete;
    ~DirectoryReader();

    /// False at the end, and when the folder cannot be read. "." and ".." are left out.
    bool Next(DirectoryEntry& entry);

private:
    static constexpr unsigned kNameCapacity = 3 * 255 + 1;

    void* m_stream = nullptr;
    char m_name[kNameCapacity];
};

}  // namespace dorvutil::platform
