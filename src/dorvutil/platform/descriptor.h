#pragma once

#include <cstddef>
#include <cstdint>

/// Open files of the system, without a buffer of ours. Paths are narrow, as file.h has them. Every call goes to the
/// system; interrupted ones are repeated.
namespace dorvutil::platform {

/// The four ways of opening a file: existing for reading; created or emptied for writing; opened or created for reading
/// and, from its end on, appending; existing for reading and writing.
enum class OpenMode { kRead, kWrite, kAppend, kReadWrite };
enum class SeekOrigin { kStart, kCurrent, kEnd };

using Descriptor = std::intptr_t;
inline constexpr Descriptor kNoDescriptor = -1;

/// kNoDescriptor when the system refuses (folders are refused). `text` asks for line-end translation on systems that
/// have it. Programs that are started do not get the file.
Descriptor OpenDescriptor(const char* path, OpenMode mode, bool text);
/// The descriptor is gone also when the system reports a failure.
bool CloseDescriptor(Descriptor file);

/// Bytes moved, at most `n`, perhaps fewer; 0 at the end of the file, -1 on failure.
std::int64_t ReadDescriptor(Descriptor file, void* to, std::size_t n);
std::int64_t WriteDescriptor(Descriptor file, const void* from, std::size_t n);

/// The new position; -1 on failure, and for what has no positions (a pipe).
std::int64_t SeekDescriptor(Descriptor file, std::int64_t offset, SeekOrigin origin);
/// Bytes; -1 on failure.
std::int64_t DescriptorLength(Descriptor file);

/// Brings what was written to the disk itself. True also for what has no disk behind it.
bool CommitDescriptor(Descriptor file);

/// Locks or unlocks `count` bytes from `position` against other processes and other descriptors; blocks only when
/// `wait` is set. A descriptor that cannot write keeps writers away only.
bool LockDescriptorBytes(Descriptor file, std::int64_t position, std::uint32_t count, bool lock, bool wait);

}  // namespace dorvutil::platform
