#include "dorvutil/logging/message_ring.h"

#include <algorithm>
#include <cstring>

namespace dorvutil {

void LogMessageRing::SetOverflowRecord(const LogDataMsg& record) {
    std::memcpy(m_bytes + kRingSize, &record, kOverflowSize);
}

std::int32_t LogMessageRing::Store(const LogDataMsg& record) {
    if (m_overflowPending) return 0;
    const std::uint32_t size = kLogMessageOverhead + static_cast<std::uint32_t>(record.m_textUsed);
    if (BytesUsed() + size >= kRingSize || m_sizeCount + 1 >= m_slots) return -1;
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&record);
    const std::uint32_t first = std::min(size, kRingSize - m_write);
    std::memcpy(m_bytes + m_write, bytes, first);
    std::memcpy(m_bytes, bytes + first, size - first);
    m_write = (m_write + size) % kRingSize;
    PushSize(static_cast<std::int16_t>(size));
    m_markerQueued = false;
    return static_cast<std::int32_t>(size);
}

void LogMessageRing::NoteDrop() {
    if (m_markerQueued) return;
    if (m_slots < kMostSlots) {
        ++m_slots;
        PushSize(kMarker);
    }
    m_markerQueued = true;
    m_overflowPending = true;
}

std::int32_t LogMessageRing::Read(void* out, std::int32_t limit) {
    std::uint32_t delivered = 0;
    if (m_sizeCount != 0) {
        const std::int16_t size = PopSize();
        const std::uint32_t wanted = size == kMarker ? kOverflowSize : static_cast<std::uint32_t>(size);
        delivered = std::min(wanted, static_cast<std::uint32_t>(std::max(limit, 0)));
        if (size == kMarker) {
            std::memcpy(out, m_bytes + kRingSize, delivered);
        } else {
            CopyOut(out, delivered);
            m_read = (m_read + wanted) % kRingSize;
        }
    }
    m_overflowPending = false;
    return static_cast<std::int32_t>(delivered);
}

void LogMessageRing::TakeAll(LogBatch& batch) {
    CopyOut(batch.m_bytes, BytesUsed());
    m_read = m_write = 0;
    batch.m_count = m_sizeCount;
    const std::uint32_t first = std::min(m_sizeCount, kMostSlots - m_firstSize);
    std::copy_n(m_sizes + m_firstSize, first, batch.m_sizes);
    std::copy_n(m_sizes, m_sizeCount - first, batch.m_sizes + first);
    m_firstSize = m_sizeCount = 0;
    m_overflowPending = false;
}

void LogMessageRing::PushSize(std::int16_t size) {
    m_sizes[(m_firstSize + m_sizeCount) % kMostSlots] = size;
    ++m_sizeCount;
}

std::int16_t LogMessageRing::PopSize() {
    const std::int16_t size = m_sizes[m_firstSize];
    m_firstSize = (m_firstSize + 1) % kMostSlots;
    --m_sizeCount;
    return size;
}

void LogMessageRing::CopyOut(void* out, std::uint32_t count) const {
    const std::uint32_t first = std::min(count, kRingSize - m_read);
    if (count == 0) return;
    std::memcpy(out, m_bytes + m_read, first);
    std::memcpy(static_cast<std::uint8_t*>(out) + first, m_bytes, count - first);
}

}  // namespace dorvutil
