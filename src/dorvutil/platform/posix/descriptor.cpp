#include "dorvutil/platform/descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "dorvutil/platform/posix/path.h"

namespace dorvutil::platform {
namespace {

constexpr int kOpenFlags[] = {O_RDONLY, O_WRONLY | O_CREAT | O_TRUNC, O_RDWR | O_CREAT | O_APPEND, O_RDWR};
constexpr int kOrigins[] = {SEEK_SET, SEEK_CUR, SEEK_END};

// Locks belong to the open file where the system can do that, so that two descriptors of one process lock each other
// out and closing another descriptor of the same file does not drop the lock.
#if defined(F_OFD_SETLK)
constexpr int kTryLock = F_OFD_SETLK;
constexpr int kWaitLock = F_OFD_SETLKW;
#else
constexpr int kTryLock = F_SETLK;
constexpr int kWaitLock = F_SETLKW;
#endif

int Number(Descriptor file) { return static_cast<int>(file); }

template <class Call>
auto Repeat(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) result = call();
    return result;
}

}  // namespace

Descriptor OpenDescriptor(const char* path, OpenMode mode, bool) {
    const NativePath native(path);
    const int flags = kOpenFlags[static_cast<int>(mode)] | O_CLOEXEC;
    const int number = Repeat([&] { return ::open(native.c_str(), flags, 0666); });
    struct stat status {};
    if (number == -1) return kNoDescriptor;
    if (::fstat(number, &status) == 0 && !S_ISDIR(status.st_mode)) return number;
    ::close(number);
    return kNoDescriptor;
}

// Closing is not repeated: the number is free again whatever the result, and may be another file's by now.
bool CloseDescriptor(Descriptor file) { return ::close(Number(file)) == 0 || errno == EINTR; }

std::int64_t ReadDescriptor(Descriptor file, void* to, std::size_t n) {
    return Repeat([&] { return ::read(Number(file), to, n); });
}

std::int64_t WriteDescriptor(Descriptor file, const void* from, std::size_t n) {
    return Repeat([&] { return ::write(Number(file), from, n); });
}

std::int64_t SeekDescriptor(Descriptor file, std::int64_t offset, SeekOrigin origin) {
    return ::lseek(Number(file), static_cast<off_t>(offset), kOrigins[static_cast<int>(origin)]);
}

std::int64_t DescriptorLength(Descriptor file) {
    struct stat status {};
    if (::fstat(Number(file), &status) != 0) return -1;
    if (S_ISREG(status.st_mode)) return status.st_size;
    const std::int64_t position = SeekDescriptor(file, 0, SeekOrigin::kCurrent);
    const std::int64_t end = SeekDescriptor(file, 0, SeekOrigin::kEnd);
    return SeekDescriptor(file, position, SeekOrigin::kStart) >= 0 ? end : -1;
}

bool CommitDescriptor(Descriptor file) {
    const int result = Repeat([&] { return ::fsync(Number(file)); });
    return result == 0 || errno == EINVAL || errno == EROFS;
}

bool LockDescriptorBytes(Descriptor file, std::int64_t position, std::uint32_t count, bool lock, bool wait) {
    const int access = ::fcntl(Number(file), F_GETFL);
    if (count == 0 || position < 0 || access < 0) return false;
    struct flock range {};
    const short held = (access & O_ACCMODE) == O_RDONLY ? F_RDLCK : F_WRLCK;
    range.l_type = lock ? held : static_cast<short>(F_UNLCK);
    range.l_whence = SEEK_SET;
    range.l_start = static_cast<off_t>(position);
    range.l_len = static_cast<off_t>(count);
    return Repeat([&] { return ::fcntl(Number(file), lock && wait ? kWaitLock : kTryLock, &range); }) == 0;
}

}  // namespace dorvutil::platform
