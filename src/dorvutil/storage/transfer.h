#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/storage/file_handle.h"

namespace dorvutil {

/// Bytes that a Read or Write of `count` pieces of `size` asks for.
inline std::uint64_t ByteCount(std::uint32_t size, std::int32_t count) {
    return count > 0 ? std::uint64_t{size} * static_cast<std::uint32_t>(count) : 0;
}

/// The same for handles that move at most what fits 31 bits in one call.
inline std::uint32_t LimitedByteCount(std::uint32_t size, std::int32_t count) {
    constexpr std::uint64_t kMost = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::uint32_t>(std::min(ByteCount(size, count), kMost));
}

/// How many of `wanted` bytes a handle that answered `result` has moved: all bits set means that it cannot.
constexpr std::uint32_t Transferred(std::uint32_t result, std::uint64_t wanted) {
    return result <= wanted ? result : 0;
}

/// Whether the flat functions may use a handle.
inline bool IsUsable(const COrvFileHandleBase* handle) { return handle && GetFileMgr(); }

}  // namespace dorvutil
