#include "dorvutil/storage/memory_handle.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "dorvutil/storage/transfer.h"

namespace dorvutil {
namespace {

constexpr std::int64_t kMaxPosition = std::numeric_limits<std::int32_t>::max();

bool MayRead(eAccessMode access) {
    return access == eAccessRead || access == eAccessAppend || access == eAccessReadWrite;
}

bool MayWrite(eAccessMode access) {
    return access == eAccessWrite || access == eAccessAppend || access == eAccessReadWrite;
}

}  // namespace

COrvFileHandleMemory::COrvFileHandleMemory(eAccessMode access)
    : COrvFileHandleBase(ORVustring(), access, eBinary, 0, nullptr) {}

COrvFileHandleMemory::COrvFileHandleMemory(TVector<char>& bytes, bool copy, eAccessMode access)
    : COrvFileHandleMemory(bytes.Data(), bytes.Count(), copy, access) {}

COrvFileHandleMemory::COrvFileHandleMemory(const void* data, std::uint32_t size, bool copy, eAccessMode access)
    : COrvFileHandleMemory(access) {
    if (!data) return;
    const TVector<char> wrapped(static_cast<char*>(const_cast<void*>(data)), size, false);
    if (copy) {
        m_bytes.Add(wrapped.Data(), wrapped.Count());
    } else {
        m_bytes = wrapped;  // shares the memory: assignment follows the source's ownership
    }
}

COrvFileHandleMemory::~COrvFileHandleMemory() = default;

bool COrvFileHandleMemory::IsOpen() { return m_open; }

std::int32_t COrvFileHandleMemory::Open() {
    m_position = 0;
    m_open = true;
    return 0;
}

std::int32_t COrvFileHandleMemory::Close() {
    m_open = false;
    return 0;
}

std::uint32_t COrvFileHandleMemory::Read(void* buffer, std::uint32_t size, std::int32_t count) {
    if (!m_open || !MayRead(m_access) || m_position >= m_bytes.Count()) return 0;
    const auto n =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(ByteCount(size, count), m_bytes.Count() - m_position));
    if (n != 0) std::memcpy(buffer, m_bytes.Data() + m_position, n);
    m_position += n;
    return n;
}

std::uint32_t COrvFileHandleMemory::Write(const void* buffer, std::uint32_t size, std::int32_t count) {
    const std::uint64_t n = ByteCount(size, count);
    if (!m_open || !MayWrite(m_access) || n == 0) return 0;
    const std::uint64_t end = m_position + n;
    if (end > static_cast<std::uint64_t>(kMaxPosition)) return 0;
    if (end > m_bytes.Count() && !m_bytes.OwnsMemory()) return 0;
    m_bytes.Replace(static_cast<const char*>(buffer), m_position, static_cast<std::uint32_t>(n));
    if (m_bytes.Count() < end) return 0;  // memory ran out
    m_position = static_cast<std::uint32_t>(end);
    return static_cast<std::uint32_t>(n);
}

std::int32_t COrvFileHandleMemory::Seek(std::int32_t offset, eSeekMode mode) {
    if (!m_open) return -1;
    std::int64_t base = 0;
    switch (mode) {
        case eSeekSet:
            break;
        case eSeekCur:
            base = m_position;
            break;
        case eSeekEnd:
            base = m_bytes.Count();
            break;
        default:
            return -1;
    }
    const std::int64_t target = base + offset;
    if (target < 0 || target > kMaxPosition) return -1;
    m_position = static_cast<std::uint32_t>(target);
    return 0;
}

std::int32_t COrvFileHandleMemory::Flush() { return m_open ? 0 : -1; }

std::int32_t COrvFileHandleMemory::Tell() { return m_open ? static_cast<std::int32_t>(m_position) : -1; }

std::int32_t COrvFileHandleMemory::Length() { return m_open ? static_cast<std::int32_t>(m_bytes.Count()) : -1; }

}  // namespace dorvutil
