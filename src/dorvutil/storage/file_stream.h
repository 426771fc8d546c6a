#pragma once

#include <cstdint>
#include <memory>

#include "dorvutil/platform/descriptor.h"

namespace dorvutil {

/// An open file with a small buffer against many small transfers. Positions have 64 bits. Unlike a stream of the
/// runtime it keeps what the system did not take: after a full disk the next Flush tries again. One thread at a time.
class FileStream {
public:
    /// Null when the system refuses or memory ran out.
    static std::unique_ptr<FileStream> Open(const char* path, platform::OpenMode mode, bool text);
    FileStream(const FileStream&) = delete;
    FileStream& operator=(const FileStream&) = delete;
    ~FileStream();

    bool Close();  ///< False when bytes were lost; the file is closed all the same.
    std::size_t Read(void* to, std::size_t n);
    std::size_t Write(const void* from, std::size_t n);  ///< Bytes taken.
    bool Seek(std::int64_t offset, platform::SeekOrigin origin);
    bool Flush(bool commit);  ///< Writes what is left; with `commit` as far as the disk.
    std::int64_t Tell() const;
    std::int64_t Length() const;
    bool LockBytes(std::uint32_t count, bool lock, bool wait);

private:
    FileStream(platform::Descriptor file, platform::OpenMode mode) : m_file(file), m_mode(mode) {}
    bool NeedBuffer();
    bool Drain();
    bool DropUnread();
    std::size_t WriteAll(const unsigned char* from, std::size_t n);

    static constexpr std::size_t kCapacity = 32768;

    platform::Descriptor m_file;
    platform::OpenMode m_mode;
    std::unique_ptr<unsigned char[]> m_buffer;  // made when first needed
    std::size_t m_pending = 0;                  // bytes from the buffer's start that are to be written, or
    std::size_t m_next = 0;                     // the unread bytes: from m_next
    std::size_t m_end = 0;                      // to m_end
};

}  // namespace dorvutil
