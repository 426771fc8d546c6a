#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "dorvutil/memory/dl_chunk.h"

namespace dorvutil::dl {

inline constexpr unsigned kSmallBins = 64;
/// Chunks below this size are small.
inline constexpr std::size_t kLeastLarge = kSmallBins * kAlignment;

/// Free chunks of the small sizes: a ring for each size, the last one freed in front, and a bit for each ring that is
/// not empty.
class SmallBins {
public:
    constexpr SmallBins() {
        for (Links& ring : m_rings) ring.MakeRing();
    }
    SmallBins(const SmallBins&) = delete;
    SmallBins& operator=(const SmallBins&) = delete;

    void Insert(FreeChunk* chunk, std::size_t size) {
        const unsigned bin = BinOf(size);
        m_map |= std::uint64_t{1} << bin;
        chunk->InsertAfter(&m_rings[bin]);
    }

    void Remove(FreeChunk* chunk, std::size_t size) {
        chunk->Unlink();
        const unsigned bin = BinOf(size);
        if (m_rings[bin].m_next == &m_rings[bin]) m_map &= ~(std::uint64_t{1} << bin);
    }

    /// Takes a chunk of `size`, or of the next size, whose rest would be too small for a chunk; null when there is
    /// none.
    FreeChunk* TakeFitting(std::size_t size) {
        const unsigned bin = BinOf(size);
        const std::uint64_t fitting = m_map >> bin & 3;
        return fitting == 0 ? nullptr : TakeFirst(bin + static_cast<unsigned>(~fitting & 1));
    }

    /// Takes one of the smallest chunks of at least `size`; null when there is none.
    FreeChunk* TakeLarger(std::size_t size) {
        const unsigned bin = BinOf(size);
        const std::uint64_t larger = m_map >> bin;
        return larger == 0 ? nullptr : TakeFirst(bin + static_cast<unsigned>(std::countr_zero(larger)));
    }

    static constexpr unsigned BinOf(std::size_t size) { return static_cast<unsigned>(size / kAlignment); }

private:
    friend class HeapCheck;

    FreeChunk* TakeFirst(unsigned bin) {
        auto* const chunk = static_cast<FreeChunk*>(m_rings[bin].m_next);
        Remove(chunk, bin * kAlignment);
        return chunk;
    }

    std::uint64_t m_map = 0;
    Links m_rings[kSmallBins]{};
};

}  // namespace dorvutil::dl
