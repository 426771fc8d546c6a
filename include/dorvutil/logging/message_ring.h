#pragma once

#include <cstdint>

#include "dorvutil/logging/log_message.h"

namespace dorvutil {

/// Records taken out of the ring together, in order.
struct LogBatch;

/// The buffer between publishers and delivery: records back to back in a circle of bytes, their sizes in a circle of
/// numbers beside it, and markers among the sizes where records were dropped. Guarded by the owner's lock.
class LogMessageRing {
public:
    static constexpr std::uint32_t kBufferSize = 16384;                      ///< Bytes.
    static constexpr std::uint32_t kOverflowSize = 128;                      ///< Of the overflow record, at the end.
    static constexpr std::uint32_t kRingSize = kBufferSize - kOverflowSize;  ///< One byte of it is always free.
    static constexpr std::uint32_t kRecordSlots = 315;                       ///< For sizes, one always free.
    static constexpr std::uint32_t kMostSlots = 630;                         ///< With those that markers have added.
    static constexpr std::int16_t kMarker = -1;                              ///< In place of a size.

    /// What comes out where a marker stands.
    void SetOverflowRecord(const LogDataMsg& record);

    /// Its size when the record was stored, -1 when there is no room, 0 while records are dropped since an overflow.
    std::int32_t Store(const LogDataMsg& record);
    /// Notes that a record was dropped for lack of room: the first time since one was stored this leaves a marker (each
    /// takes a slot for good; when they are used up there is none), and no record is stored before the next read.
    void NoteDrop();
    /// Takes out the next record; `out` gets its first `limit` bytes. How many those are; 0 when there is none.
    std::int32_t Read(void* out, std::int32_t limit);
    bool IsFilling() const { return BytesUsed() >= kRingSize / 4 * 3; }  ///< It is time to take something out.
    /// Takes out all there is.
    void TakeAll(LogBatch& batch);

private:
    std::uint32_t BytesUsed() const { return (m_write + kRingSize - m_read) % kRingSize; }
    void PushSize(std::int16_t size);
    std::int16_t PopSize();
    void CopyOut(void* out, std::uint32_t count) const;

    std::uint8_t m_bytes[kBufferSize] = {};
    std::uint32_t m_read = 0;
    std::uint32_t m_write = 0;
    std::int16_t m_sizes[kMostSlots] = {};
    std::uint32_t m_firstSize = 0;
    std::uint32_t m_sizeCount = 0;
    std::uint32_t m_slots = kRecordSlots;
    bool m_overflowPending = false;  // no record is stored
    bool m_markerQueued = false;     // since the last record stored
};

struct LogBatch {
    std::uint32_t m_count = 0;
    std::int16_t m_sizes[LogMessageRing::kMostSlots];  // kMarker stands for the overflow record
    std::uint8_t m_bytes[LogMessageRing::kRingSize];   // the records back to back
};

}  // namespace dorvutil
