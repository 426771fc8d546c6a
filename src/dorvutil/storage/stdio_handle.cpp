#include "dorvutil/storage/stdio_handle.h"

#include <limits>
#include <optional>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/memory/heap.h"
#include "dorvutil/memory/pool.h"
#include "dorvutil/storage/file_stream.h"
#include "dorvutil/storage/file_system.h"
#include "dorvutil/storage/transfer.h"

namespace dorvutil {
namespace {

std::optional<platform::OpenMode> OpenModeOf(eAccessMode access) {
    switch (access) {
        case eAccessRead:
            return platform::OpenMode::kRead;
        case eAccessWrite:
            return platform::OpenMode::kWrite;
        case eAccessAppend:
            return platform::OpenMode::kAppend;
        case eAccessReadWrite:
            return platform::OpenMode::kReadWrite;
        default:
            return std::nullopt;
    }
}

std::optional<platform::SeekOrigin> OriginOf(eSeekMode mode) {
    switch (mode) {
        case eSeekSet:
            return platform::SeekOrigin::kStart;
        case eSeekCur:
            return platform::SeekOrigin::kCurrent;
        case eSeekEnd:
            return platform::SeekOrigin::kEnd;
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

COrvFileHandleStdio::~COrvFileHandleStdio() = default;

bool COrvFileHandleStdio::IsOpen() { return m_stream != nullptr; }

std::int32_t COrvFileHandleStdio::Open() {
    if (m_stream) return 0;
    const auto mode = OpenModeOf(m_access);
    if (!mode || (m_access == eAccessRead && !FileExists(m_path))) return -1;
    m_stream = FileStream::Open(m_path.c_str(), *mode, m_binary == eText);
    return m_stream ? 0 : -1;
}

std::int32_t COrvFileHandleStdio::Close() {
    if (!m_stream) return -1;
    const bool closed = m_stream->Close();
    m_stream.reset();
    return closed ? 0 : -1;
}

std::uint32_t COrvFileHandleStdio::Read(void* buffer, std::uint32_t size, std::int32_t count) {
    if (!m_stream || count <= 0) return 0;
    const std::uint64_t n = ByteCount(size, count);
    return static_cast<std::uint32_t>(m_stream->Read(buffer, n) / static_cast<std::uint32_t>(count));
}

std::uint32_t COrvFileHandleStdio::Write(const void* buffer, std::uint32_t size, std::int32_t count) {
    if (!m_stream || count <= 0) return 0;
    const std::uint64_t n = ByteCount(size, count);
    return static_cast<std::uint32_t>(m_stream->Write(buffer, n) / static_cast<std::uint32_t>(count));
}

std::int32_t COrvFileHandleStdio::Seek(std::int32_t offset, eSeekMode mode) {
    const auto origin = OriginOf(mode);
    return m_stream && origin && m_stream->Seek(offset, *origin) ? 0 : -1;
}

std::int32_t COrvFileHandleStdio::Flush() { return m_stream && m_stream->Flush(m_access != eAccessRead) ? 0 : -1; }

std::int32_t COrvFileHandleStdio::Tell() { return m_stream ? Narrow(m_stream->Tell()) : -1; }

std::int32_t COrvFileHandleStdio::Length() { return m_stream ? Narrow(m_stream->Length()) : -1; }

bool COrvFileHandleStdio::LockBytes(std::uint32_t count, bool lock, bool wait) {
    return m_stream && m_stream->LockBytes(count, lock, wait);
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

}  // namespace dorvutil
