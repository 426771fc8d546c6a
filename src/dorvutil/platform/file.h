#pragma once

#include <cstdint>

/// Files as a whole. Paths are narrow: UTF-8 with `\` or `/` between folders; what is not UTF-8 means the system's own
/// bytes where file names are bytes. Empty, null and overlong paths name nothing.
namespace dorvutil::platform {

struct FileStatus {
    std::uint64_t m_size = 0;     ///< Bytes.
    std::uint64_t m_created = 0;  ///< Times in 100-nanosecond units since 1 January 1601 UTC.
    std::uint64_t m_accessed = 0;
    std::uint64_t m_written = 0;
    bool m_directory = false;
    bool m_device = false;  ///< Neither file nor folder: a device, a pipe.
    bool m_link = false;    ///< The entry itself is a link; the other fields are those of what it leads to.
};

/// False when there is nothing of that name, or a link that leads nowhere.
bool GetFileStatus(const char* path, FileStatus& status);

/// Whether both paths lead to the same existing file.
bool IsSameFile(const char* a, const char* b);

/// Deletes a file or a link, not a folder; with `evenReadOnly` also one that is marked as not to be changed.
bool RemoveFile(const char* path, bool evenReadOnly);

enum class MoveResult { kDone, kFailed, kOtherVolume };

/// Renames a file or folder; nothing that exists is replaced.
MoveResult MovePath(const char* from, const char* to);

}  // namespace dorvutil::platform
