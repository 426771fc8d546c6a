#pragma once

#include <cstdint>
#include <cstdio>

/// Files on disk as runtime streams. Paths are UTF-16; `\` and `/` both separate folders.
namespace dorvutil::platform {

/// The four ways of opening a file: existing for reading; created or emptied for writing; opened or created for reading
/// and appending; existing for reading and writing.
enum class StreamMode { kRead, kWrite, kAppend, kReadWrite };

/// Opens a stream; null when the system refuses (folders are refused). `text` asks for line-end translation on systems
/// that have it. The caller ends it with std::fclose.
std::FILE* OpenStream(const char16_t* path, StreamMode mode, bool text);

/// Writes the stream's buffer to the file and the file to the disk: 0 on success, -1 on failure.
std::int32_t CommitStream(std::FILE* stream);

/// Position and seeking in 64 bits; -1 on failure. `origin` is SEEK_SET, SEEK_CUR or SEEK_END.
std::int64_t StreamPosition(std::FILE* stream);
std::int32_t SeekStream(std::FILE* stream, std::int64_t offset, int origin);

/// Locks or unlocks `count` bytes from the stream's position against other processes; blocks only when `wait` is set.
bool LockStreamBytes(std::FILE* stream, std::uint32_t count, bool lock, bool wait);

}  // namespace dorvutil::platform
