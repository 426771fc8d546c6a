#include "input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <limits>
#include <system_error>

#include "input_error.h"

namespace roadlyn {
namespace {

[[noreturn]] void Fail(const std::string& path, const std::string& reason) { throw InputError(path, 0, reason); }

// Whether the file may be read, too: the library only says that it failed.
struct stat StatusOf(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    struct stat status = {};
    const bool known = file >= 0 && ::fstat(file, &status) == 0;
    const int error = errno;
    if (file >= 0) ::close(file);
    if (!known) Fail(path, std::generic_category().message(error));
    return status;
}

}  // namespace

std::uint32_t SizeOfInput(const std::string& path) {
    const struct stat status = StatusOf(path);
    if (!S_ISREG(status.st_mode)) Fail(path, S_ISDIR(status.st_mode) ? "is a folder" : "is no ordinary file");
    if (status.st_size > std::numeric_limits<std::int32_t>::max()) Fail(path, "has 2 GiB or more");
    return static_cast<std::uint32_t>(status.st_size);
}

void NeedContent(const std::string& path) {
    if (SizeOfInput(path) == 0) Fail(path, "is empty");
}

dorvutil::ORVustring LibraryPath(const std::string& path) {
    return dorvutil::ORVustring(path.data(), static_cast<std::int32_t>(path.size()));
}

}  // namespace roadlyn
