#pragma once

#include <unistd.h>

#include <climits>
#include <cstddef>
#include <cstdint>

namespace dorvutil::platform {

/// Reads all of `size` bytes at `offset`, or answers false.
inline bool ReadAt(int file, void* out, std::size_t size, std::uint64_t offset) {
    if (offset > static_cast<std::uint64_t>(LLONG_MAX)) return false;
    return ::pread(file, out, size, static_cast<off_t>(offset)) == static_cast<ssize_t>(size);
}

}  // namespace dorvutil::platform
