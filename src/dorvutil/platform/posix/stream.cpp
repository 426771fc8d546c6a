#include "dorvutil/platform/stream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "dorvutil/platform/posix/path.h"

namespace dorvutil::platform {
namespace {

// By StreamMode; "e" keeps the descriptor from started programs.
constexpr const char* kModes[] = {"re", "we", "a+e", "r+e"};

// Locks belong to the open file where the system can do that, so that two streams of one process lock each other out
// and closing another stream of the same file does not drop the lock.
#if defined(F_OFD_SETLK)
constexpr int kTryLock = F_OFD_SETLK;
constexpr int kWaitLock = F_OFD_SETLKW;
#else
constexpr int kTryLock = F_SETLK;
constexpr int kWaitLock = F_SETLKW;
#endif

}  // namespace

std::FILE* OpenStream(const char16_t* path, StreamMode mode, bool) {
    std::FILE* const stream = std::fopen(NativePath(path).c_str(), kModes[static_cast<int>(mode)]);
    if (!stream) return nullptr;
    struct stat status {};
    if (::fstat(::fileno(stream), &status) == 0 && !S_ISDIR(status.st_mode)) return stream;
    std::fclose(stream);
    return nullptr;
}

std::int32_t CommitStream(std::FILE* stream) {
    if (std::fflush(stream) != 0) return -1;
    // A stream without a disk behind it (a pipe, a terminal) has nothing to commit.
    return ::fsync(::fileno(stream)) == 0 || errno == EINVAL || errno == EROFS ? 0 : -1;
}

std::int64_t StreamPosition(std::FILE* stream) { return ::ftello(stream); }

std::int32_t SeekStream(std::FILE* stream, std::int64_t offset, int origin) {
    return ::fseeko(stream, static_cast<off_t>(offset), origin);
}

bool LockStreamBytes(std::FILE* stream, std::uint32_t count, bool lock, bool wait) {
    const off_t position = ::ftello(stream);
    if (count == 0 || position < 0) return false;
    const int descriptor = ::fileno(stream);
    const int access = ::fcntl(descriptor, F_GETFL);
    if (access < 0) return false;
    struct flock range {};
    // A stream that cannot write may only keep writers away.
    const short exclusive = (access & O_ACCMODE) == O_RDONLY ? F_RDLCK : F_WRLCK;
    range.l_type = lock ? exclusive : static_cast<short>(F_UNLCK);
    range.l_whence = SEEK_SET;
    range.l_start = position;
    range.l_len = static_cast<off_t>(count);
    int result = 0;
    do {
        result = ::fcntl(descriptor, lock && wait ? kWaitLock : kTryLock, &range);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

}  // namespace dorvutil::platform
