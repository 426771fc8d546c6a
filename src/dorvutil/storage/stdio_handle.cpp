#include "dorvutil/storage/stdio_handle.h"

#include <limits>
#include <optional>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/memory/heap.h"
#include "dorvutil/memory/pool.h"
#include "dorvutil/platform/stream.h"

namespace dorvutil {
namespace {

std::optional<platform::StreamMode> StreamModeOf(eAccessMode access) {
    switch (access) {
        case eAccessRead:
            return platform::StreamMode::kRead;
        case eAccessWrite:
            return platform::StreamMode::kWrite;
        case eAccessAppend:
            return platform::StreamMode::kAppend;
        case eAccessReadWrite:
            return platform::StreamMode::kReadWrite;
        default:
            return std::nullopt;
    }
}

std::optional<int> OriginOf(eSeekMode mode) {
    switch (mode) {
        case eSeekSet:
            return SEEK_SET;
        case eSeekCur:
            return SEEK_CUR;
        case eSeekEnd:
            return SEEK_END;
        default:
            return std::nullopt;
    }
}

std::int32_t Narrow(std::int64_t position) {
    return position <= std::numeric_limits<std::int32_t>::max() ? static_cast<std::int32_t>(position) : -1;
}

}  // namespace

COrvFileHandleStdio::COrvFileHandleStdio(const ORVustring& path, eAccessMode access, eBinaryMode binary,
                                         std::uint32_t flags, const COrvFileOptions* options)
    : COrvFileHandleBase(path, access, binary, flags, options) {}

COrvFileHandleStdio::~COrvFileHandleStdio() {
    if (m_stream) std::fclose(m_stream);
}

bool COrvFileHandleStdio::IsOpen() { return m_stream != nullptr; }

std::int32_t COrvFileHandleStdio::Open() {
    if (m_stream) return 0;
    const auto mode = StreamModeOf(m_access);
    if (!mode) return -1;
    m_stream = platform::OpenStream(m_path.wc_str(false), *mode, m_binary == eText);
    m_direction = Direction::kNone;
    return m_stream ? 0 : -1;
}

std::int32_t COrvFileHandleStdio::Close() {
    if (!m_stream) return -1;
    // The runtime frees the stream even when its last write fails: it must not be touched again.
    const int result = std::fclose(m_stream);
    m_stream = nullptr;
    return result;
}

std::uint32_t COrvFileHandleStdio::Read(void* buffer, std::uint32_t size, std::int32_t count) {
    if (!m_stream || count < 0) return 0;
    Turn(Direction::kReading);
    return static_cast<std::uint32_t>(std::fread(buffer, static_cast<std::size_t>(count), size, m_stream));
}

std::uint32_t COrvFileHandleStdio::Write(const void* buffer, std::uint32_t size, std::int32_t count) {
    if (!m_stream || count < 0) return 0;
    Turn(Direction::kWriting);
    return static_cast<std::uint32_t>(std::fwrite(buffer, static_cast<std::size_t>(count), size, m_stream));
}

std::int32_t COrvFileHandleStdio::Seek(std::int32_t offset, eSeekMode mode) {
    const auto origin = OriginOf(mode);
    if (!m_stream || !origin) return -1;
    m_direction = Direction::kNone;
    return platform::SeekStream(m_stream, offset, *origin);
}

std::int32_t COrvFileHandleStdio::Flush() {
    if (!m_stream) return -1;
    return m_access == eAccessRead ? std::fflush(m_stream) : platform::CommitStream(m_stream);
}

std::int32_t COrvFileHandleStdio::Tell() { return m_stream ? Narrow(platform::StreamPosition(m_stream)) : -1; }

std::int32_t COrvFileHandleStdio::Length() {
    if (!m_stream) return -1;
    const std::int64_t position = platform::StreamPosition(m_stream);
    if (position < 0 || platform::SeekStream(m_stream, 0, SEEK_END) != 0) return -1;
    const std::int64_t end = platform::StreamPosition(m_stream);
    m_direction = Direction::kNone;
    return platform::SeekStream(m_stream, position, SEEK_SET) == 0 ? Narrow(end) : -1;
}

bool COrvFileHandleStdio::LockBytes(std::uint32_t count, bool lock, bool wait) {
    return m_stream && platform::LockStreamBytes(m_stream, count, lock, wait);
}

void* COrvFileHandleStdio::operator new(std::size_t size) noexcept {
    if (Allocator* const pool = FileHandlePool(); pool && size <= pool->ElemSize()) {
        if (void* const block = pool->Alloc()) return block;
    }
    return Mem_Malloc(size);
}

void COrvFileHandleStdio::operator delete(void* block) {
    if (Allocator* const pool = FileHandlePool(); pool && pool->Contains(block)) {
        pool->Free(block);
    } else {
        Mem_Free(block);
    }
}

void COrvFileHandleStdio::Turn(Direction direction) {
    if (m_direction != Direction::kNone && m_direction != direction) platform::SeekStream(m_stream, 0, SEEK_CUR);
    m_direction = direction;
}

}  // namespace dorvutil
