#include "dorvutil/platform/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "dorvutil/platform/posix/file_status.h"
#include "dorvutil/platform/posix/path.h"

namespace dorvutil::platform {
namespace {

constexpr std::int64_t kEpoch = 11'644'473'600;  // seconds from 1601 to 1970
constexpr std::int64_t kTicksPerSecond = 10'000'000;

// Wraps for dates outside the range, which only a damaged file system has.
template <class Timestamp>
std::uint64_t FileTime(const Timestamp& time) {
    return (static_cast<std::uint64_t>(time.tv_sec) + kEpoch) * kTicksPerSecond +
           static_cast<std::uint64_t>(time.tv_nsec) / 100;
}

void Fill(const struct statx& found, FileStatus& status) {
    status.m_size = found.stx_size;
    status.m_accessed = FileTime(found.stx_atime);
    status.m_written = FileTime(found.stx_mtime);
    status.m_created = (found.stx_mask & STATX_BTIME) != 0 ? FileTime(found.stx_btime) : FileTime(found.stx_ctime);
    status.m_directory = S_ISDIR(found.stx_mode);
    status.m_device = !S_ISDIR(found.stx_mode) && !S_ISREG(found.stx_mode) && !S_ISLNK(found.stx_mode);
}

}  // namespace

bool StatusAt(int descriptor, const char* name, bool danglingToo, FileStatus& status) {
    constexpr unsigned kWanted = STATX_BASIC_STATS | STATX_BTIME;
    struct statx found {};
    if (::statx(descriptor, name, AT_SYMLINK_NOFOLLOW, kWanted, &found) != 0) return false;
    status.m_link = S_ISLNK(found.stx_mode);
    struct statx target {};
    if (status.m_link && ::statx(descriptor, name, 0, kWanted, &target) == 0) {
        found = target;
    } else if (status.m_link && !danglingToo) {
        return false;
    }
    Fill(found, status);
    return true;
}

bool GetFileStatus(const char* path, FileStatus& status) {
    return StatusAt(AT_FDCWD, NativePath(path).c_str(), false, status);
}

bool IsSameFile(const char* a, const char* b) {
    struct stat first {};
    struct stat second {};
    return ::stat(NativePath(a).c_str(), &first) == 0 && ::stat(NativePath(b).c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

// Deleting asks for the right to change the folder only, never the file.
bool RemoveFile(const char* path, bool) { return ::unlink(NativePath(path).c_str()) == 0; }

MoveResult MovePath(const char* from, const char* to) {
    const NativePath source(from);
    const NativePath target(to);
    if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0)
        return MoveResult::kDone;
    if (errno == EXDEV) return MoveResult::kOtherVolume;
    if (errno != EINVAL && errno != ENOSYS) return MoveResult::kFailed;
    // The file system has no rename that keeps what exists: look first.
    struct stat existing {};
    const bool isFree = ::lstat(target.c_str(), &existing) != 0 && errno == ENOENT;
    return isFree && ::rename(source.c_str(), target.c_str()) == 0 ? MoveResult::kDone : MoveResult::kFailed;
}

}  // namespace dorvutil::platform
