#include "dorvutil/storage/file_stream.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace dorvutil {

using platform::OpenMode;
using platform::SeekOrigin;

std::unique_ptr<FileStream> FileStream::Open(const char* path, OpenMode mode, bool text) {
    const platform::Descriptor file = platform::OpenDescriptor(path, mode, text);
    if (file == platform::kNoDescriptor) return nullptr;
    if (mode == OpenMode::kAppend) platform::SeekDescriptor(file, 0, SeekOrigin::kEnd);
    std::unique_ptr<FileStream> stream(new (std::nothrow) FileStream(file, mode));
    if (!stream) platform::CloseDescriptor(file);
    return stream;
}

FileStream::~FileStream() { Close(); }

bool FileStream::Close() {
    if (m_file == platform::kNoDescriptor) return false;
    const bool written = Drain();
    const bool closed = platform::CloseDescriptor(m_file);
    m_file = platform::kNoDescriptor;
    m_pending = 0;
    return written && closed;
}

std::size_t FileStream::Read(void* to, std::size_t n) {
    if (!Drain()) return 0;
    auto* const out = static_cast<unsigned char*>(to);
    std::size_t done = 0;
    while (done < n) {
        const std::size_t rest = n - done;
        if (m_next == m_end) {
            const bool direct = rest >= kCapacity || !NeedBuffer();
            const std::int64_t got = direct ? platform::ReadDescriptor(m_file, out + done, rest)
                                            : platform::ReadDescriptor(m_file, m_buffer.get(), kCapacity);
            if (got <= 0) break;
            if (direct) {
                done += static_cast<std::size_t>(got);
                continue;
            }
            m_next = 0;
            m_end = static_cast<std::size_t>(got);
        }
        const std::size_t part = std::min(rest, m_end - m_next);
        std::memcpy(out + done, m_buffer.get() + m_next, part);
        m_next += part;
        done += part;
    }
    return done;
}

std::size_t FileStream::Write(const void* from, std::size_t n) {
    const auto* const bytes = static_cast<const unsigned char*>(from);
    if (m_mode == OpenMode::kRead || !DropUnread() || (n > kCapacity - m_pending && !Drain())) return 0;
    if (n >= kCapacity || !NeedBuffer()) return WriteAll(bytes, n);
    if (n != 0) std::memcpy(m_buffer.get() + m_pending, bytes, n);
    m_pending += n;
    return n;
}

// A step forward within what has been read costs nothing: many small ones would else read the file again and again.
bool FileStream::Seek(std::int64_t offset, SeekOrigin origin) {
    if (origin == SeekOrigin::kCurrent && offset >= 0 && static_cast<std::uint64_t>(offset) < m_end - m_next) {
        m_next += static_cast<std::size_t>(offset);
        return true;
    }
    return Drain() && DropUnread() && platform::SeekDescriptor(m_file, offset, origin) >= 0;
}

bool FileStream::Flush(bool commit) { return Drain() && (!commit || platform::CommitDescriptor(m_file)); }

std::int64_t FileStream::Tell() const {
    const auto origin = m_mode == OpenMode::kAppend && m_pending != 0 ? SeekOrigin::kEnd : SeekOrigin::kCurrent;
    const std::int64_t position = platform::SeekDescriptor(m_file, 0, origin);
    return position < 0 ? -1
                        : position + static_cast<std::int64_t>(m_pending) - static_cast<std::int64_t>(m_end - m_next);
}

std::int64_t FileStream::Length() const {
    const std::int64_t length = platform::DescriptorLength(m_file);
    return m_pending == 0 || length < 0 ? length : std::max(length, Tell());
}

bool FileStream::LockBytes(std::uint32_t count, bool lock, bool wait) {
    return platform::LockDescriptorBytes(m_file, Tell(), count, lock, wait);
}

// Without memory transfers go straight to the system.
bool FileStream::NeedBuffer() {
    if (!m_buffer) m_buffer.reset(new (std::nothrow) unsigned char[kCapacity]);
    return m_buffer != nullptr;
}

// Writes the pending bytes; those the system did not take stay for the next time.
bool FileStream::Drain() {
    if (m_pending == 0) return true;
    const std::size_t written = WriteAll(m_buffer.get(), m_pending);
    m_pending -= written;
    std::memmove(m_buffer.get(), m_buffer.get() + written, m_pending);
    return m_pending == 0;
}

// Puts the system's position back to where the caller is.
bool FileStream::DropUnread() {
    const auto unread = static_cast<std::int64_t>(m_end - m_next);
    m_next = m_end = 0;
    return unread == 0 || platform::SeekDescriptor(m_file, -unread, SeekOrigin::kCurrent) >= 0;
}

std::size_t FileStream::WriteAll(const unsigned char* from, std::size_t n) {
    std::size_t done = 0;
    while (done < n) {
        const std::int64_t written = platform::WriteDescriptor(m_file, from + done, n - done);
        if (written <= 0) break;
        done += static_cast<std::size_t>(written);
    }
    return done;
}

}  // namespace dorvutil
