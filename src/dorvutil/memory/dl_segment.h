#pragma once

#include <cstddef>

#include "dorvutil/memory/dl_chunk.h"

namespace dorvutil::dl {

/// A reserved range of addresses with memory behind its front part: this record, then chunks, then room for a fence.
/// The newest segment grows and shrinks, and its last chunk is the heap's top. In all others the fence has taken the
/// place behind the last chunk.
class alignas(kAlignment) Segment {
public:
    /// Reserves a segment, with memory for chunks of `size` bytes in all; null when the system refuses.
    [[nodiscard]] static Segment* Create(std::size_t size);
    /// Gives the whole range back.
    void Destroy();

    /// Puts memory behind `size` more bytes, whole steps; false when the range is at its end or the system refuses.
    bool Grow(std::size_t size);
    /// Gives the memory of the last `size` bytes back; false when the system refuses.
    bool Shrink(std::size_t size);

    Chunk* First() const { return Place(sizeof(Segment)); }
    Chunk* End() const { return Place(m_committed - kLeastChunk); }
    /// Bytes between them.
    std::size_t Span() const { return m_committed - sizeof(Segment) - kLeastChunk; }
    /// Whether a chunk or the fence may stand there.
    bool Holds(const Chunk* chunk) const { return chunk >= First() && chunk <= End(); }

    /// Closes a segment that no longer grows.
    void PutFence();

    Segment* m_older = nullptr;

private:
    explicit Segment(std::size_t reserved) : m_reserved(reserved) {}

    Chunk* Place(std::size_t offset) const {
        return reinterpret_cast<Chunk*>(reinterpret_cast<std::uintptr_t>(this) + offset);
    }

    std::size_t m_reserved;
    std::size_t m_committed = 0;
};

/// What a closed segment ends with: a chunk without size, in use for good.
struct Fence : Chunk {
    Segment* m_segment;

    /// The segment that ends here when `chunk` is a fence, else null. Not for the top.
    static Segment* SegmentAt(Chunk* chunk) {
        return chunk->Size() == 0 ? static_cast<Fence*>(chunk)->m_segment : nullptr;
    }
};

static_assert(sizeof(Fence) <= kLeastChunk);

/// No segment has fewer bytes of chunks.
inline constexpr std::size_t kLeastSpan = kStep - sizeof(Segment) - kLeastChunk;

}  // namespace dorvutil::dl
