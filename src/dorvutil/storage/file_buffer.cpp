#include "dorvutil/storage/file_buffer.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "dorvutil/storage/transfer.h"

namespace dorvutil {
namespace {

constexpr std::int64_t kMaxPosition = std::numeric_limits<std::int32_t>::max();
constexpr std::uint32_t kCannot = 0xFFFFFFFFu;

std::int32_t Narrow(std::int64_t position) {
    return position <= kMaxPosition ? static_cast<std::int32_t>(position) : -1;
}

COrvFileOptions OptionsOr(const COrvFileOptions* options) { return options ? *options : COrvFileOptions{}; }

std::uint32_t SharedBufferSize(const COrvFileOptions* given) {
    const COrvFileOptions options = OptionsOr(given);
    const std::uint32_t size = std::max(options.m_readBufferSize, options.m_writeBufferSize);
    return size != 0 ? size : COrvFileOptions{}.m_writeBufferSize;
}

}  // namespace

COrvFileBuffer::COrvFileBuffer(COrvFileHandleBase* underlying, const ORVustring& path, eAccessMode access,
                               eBinaryMode binary, std::uint32_t flags, const COrvFileOptions* options,
                               std::uint32_t bufferSize)
    : COrvFileHandleBase(path, access, binary, flags, options),
      m_bufferSize(SetSize(bufferSize) ? bufferSize : 0),
      m_underlying(underlying) {
    Restart();
}

COrvFileBuffer::~COrvFileBuffer() { delete m_underlying; }

bool COrvFileBuffer::IsOpen() { return m_underlying && m_underlying->IsOpen(); }

std::int32_t COrvFileBuffer::Open() { return m_underlying ? m_underlying->Open() : -1; }

std::int32_t COrvFileBuffer::Close() {
    if (!m_underlying) return 1;
    const bool written = WriteOut();
    const bool closed = m_underlying->Close() == 0;
    delete m_underlying;
    m_underlying = nullptr;
    Restart();
    return written && closed ? 0 : 1;
}

std::int32_t COrvFileBuffer::Seek(std::int32_t offset, eSeekMode mode) {
    if (!IsOpen() || mode < eSeekSet || mode > eSeekEnd) return -1;
    const std::int32_t base = mode == eSeekSet ? 0 : mode == eSeekCur ? Tell() : Length();
    const std::int64_t target = std::int64_t{base} + offset;
    if (base < 0 || target < 0 || target > kMaxPosition) return -1;
    if (target >= m_start && target < BufferEnd()) {
        m_position = static_cast<std::uint32_t>(target - m_start);
        return 0;
    }
    if (!Settle()) return -1;
    const std::int32_t result = m_underlying->Seek(static_cast<std::int32_t>(target), eSeekSet);
    Restart();
    return result;
}

std::int32_t COrvFileBuffer::Tell() { return IsOpen() ? Narrow(std::int64_t{m_start} + m_position) : -1; }

std::int32_t COrvFileBuffer::Length() { return m_underlying ? m_underlying->Length() : -1; }

bool COrvFileBuffer::WriteOut() { return true; }

bool COrvFileBuffer::IsDirty() const { return false; }

bool COrvFileBuffer::Settle() {
    if (!WriteOut() || !MoveBelow(m_position)) return false;
    Restart();
    return true;
}

void COrvFileBuffer::Restart() {
    SetCount(0);
    m_position = m_below = 0;
    // Where an appending handle stands before its first write is the system's secret; it writes at the end.
    std::int32_t start = 0;
    if (m_underlying) start = AccessMode() == eAccessAppend ? m_underlying->Length() : m_underlying->Tell();
    m_start = start >= 0 ? static_cast<std::uint32_t>(start) : kUnknownStart;
}

bool COrvFileBuffer::Refill() {
    if (!SetCount(m_bufferSize)) return false;
    const std::uint32_t got = Transferred(m_underlying->Read(Data(), m_bufferSize, 1), m_bufferSize);
    SetCount(got);
    m_below = got;
    return got != 0;
}

bool COrvFileBuffer::MoveBelow(std::uint32_t index) {
    if (index == m_below) return true;
    // A place that 31 bits cannot name is reached from where the handle stands.
    const std::int64_t place = std::int64_t{m_start} + index;
    const bool moved = place <= kMaxPosition
                           ? m_underlying->Seek(static_cast<std::int32_t>(place), eSeekSet) == 0
                           : m_underlying->Seek(static_cast<std::int32_t>(index - m_below), eSeekCur) == 0;
    if (moved) m_below = index;
    return moved;
}

std::uint32_t COrvFileBuffer::TakeBuffered(unsigned char* to, std::uint32_t n) {
    n = std::min(n, Unread());
    std::memcpy(to, Data() + m_position, n);
    m_position += n;
    return n;
}

void COrvFileBuffer::DropFront(std::uint32_t n) {
    if (n == 0) return;
    Shift(-static_cast<std::int32_t>(n));
    m_position -= n;
    m_below -= n;
    if (m_start != kUnknownStart) m_start += n;
}

COrvReadBuffer::COrvReadBuffer(COrvFileHandleBase* underlying, const ORVustring& path, eAccessMode access,
                               eBinaryMode binary, std::uint32_t flags, const COrvFileOptions* options)
    : COrvFileBuffer(underlying, path, access, binary, flags, options, OptionsOr(options).m_readBufferSize) {}

std::uint32_t COrvReadBuffer::Read(void* buffer, std::uint32_t size, std::int32_t count) {
    if (!IsOpen()) return 0;
    const std::uint32_t n = LimitedByteCount(size, count);
    auto* const to = static_cast<unsigned char*>(buffer);
    std::uint32_t done = 0;
    while (done < n) {
        const std::uint32_t rest = n - done;
        if (Unread() == 0) {
            if (!Settle()) break;
            if (rest >= m_bufferSize) {
                done += Transferred(m_underlying->Read(to + done, rest, 1), rest);
                Restart();
                break;
            }
            if (!Refill()) break;
        }
        // A buffer that reading did not fill ends with the file; one that was written to need not.
        const bool mayGoOn = Buffered() == m_bufferSize || IsDirty();
        done += TakeBuffered(to + done, rest);
        if (!mayGoOn) break;
    }
    return done;
}

std::uint32_t COrvReadBuffer::Write(const void*, std::uint32_t, std::int32_t) { return kCannot; }

std::int32_t COrvReadBuffer::Flush() { return 0; }

COrvWriteBuffer::COrvWriteBuffer(COrvFileHandleBase* underlying, const ORVustring& path, eAccessMode access,
                                 eBinaryMode binary, std::uint32_t flags, const COrvFileOptions* options)
    : COrvFileBuffer(underlying, path, access, binary, flags, options, OptionsOr(options).m_writeBufferSize) {}

COrvWriteBuffer::~COrvWriteBuffer() { COrvFileBuffer::Close(); }

std::uint32_t COrvWriteBuffer::Read(void*, std::uint32_t, std::int32_t) { return kCannot; }

std::uint32_t COrvWriteBuffer::Write(const void* buffer, std::uint32_t size, std::int32_t count) {
    if (!IsOpen()) return 0;
    const std::uint32_t n = LimitedByteCount(size, count);
    const auto* const from = static_cast<const unsigned char*>(buffer);
    if (n > m_bufferSize) {
        if (!Settle()) return 0;
        const std::uint32_t written = Transferred(m_underlying->Write(from, n, 1), n);
        Restart();
        return written;
    }
    std::uint32_t done = std::min(n, m_bufferSize - m_position);
    if (done != 0) {
        PutBuffered(from, done);
        m_dirty = true;
    }
    if (done == n || !Settle()) return done;
    PutBuffered(from + done, n - done);
    m_dirty = true;
    return n;
}

std::int32_t COrvWriteBuffer::Flush() {
    if (!IsOpen()) return -1;
    return Settle() && m_underlying->Flush() == 0 ? 0 : -1;
}

std::int32_t COrvWriteBuffer::Length() {
    const std::int32_t length = COrvFileBuffer::Length();
    if (!m_dirty || length < 0) return length;
    return Narrow(std::max(std::int64_t{length}, BufferEnd()));
}

bool COrvWriteBuffer::WriteOut() {
    if (!m_dirty) return true;
    if (!m_underlying || !MoveBelow(0)) return false;
    const std::uint32_t written = Transferred(m_underlying->Write(Bytes(), Buffered(), 1), Buffered());
    m_below = written;
    m_dirty = written != Buffered();
    // An appending handle must not get these bytes again.
    if (m_dirty && written <= m_position) DropFront(written);
    return !m_dirty;
}

bool COrvWriteBuffer::IsDirty() const { return m_dirty; }

COrvAppendBuffer::COrvAppendBuffer(COrvFileHandleBase* underlying, const ORVustring& path, eAccessMode access,
                                   eBinaryMode binary, std::uint32_t flags, const COrvFileOptions* options)
    : COrvFileBuffer(underlying, path, access, binary, flags, options, OptionsOr(options).m_writeBufferSize),
      COrvWriteBuffer(underlying, path, access, binary, flags, options) {}

std::int32_t COrvAppendBuffer::Seek(std::int32_t, eSeekMode) { return 0; }

COrvReadWriteBuffer::COrvReadWriteBuffer(COrvFileHandleBase* underlying, const ORVustring& path, eAccessMode access,
                                         eBinaryMode binary, std::uint32_t flags, const COrvFileOptions* options)
    : COrvFileBuffer(underlying, path, access, binary, flags, options, SharedBufferSize(options)),
      COrvReadBuffer(underlying, path, access, binary, flags, options),
      COrvWriteBuffer(underlying, path, access, binary, flags, options) {}

std::uint32_t COrvReadWriteBuffer::Read(void* buffer, std::uint32_t size, std::int32_t count) {
    return COrvReadBuffer::Read(buffer, size, count);
}

std::uint32_t COrvReadWriteBuffer::Write(const void* buffer, std::uint32_t size, std::int32_t count) {
    return COrvWriteBuffer::Write(buffer, size, count);
}

std::int32_t COrvReadWriteBuffer::Flush() { return COrvWriteBuffer::Flush(); }

}  // namespace dorvutil
