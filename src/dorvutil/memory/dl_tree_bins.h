#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "dorvutil/memory/dl_small_bins.h"

namespace dorvutil::dl {

/// Free chunks that are not small. There are two bins for each power of two of sizes, and one for all beyond. Each is a
/// bitwise trie: a node holds a chunk and under its two children the chunks whose sizes have 0 respectively 1 in the
/// bit that belongs to its depth, the highest in which the sizes of the bin differ being that of the root. A node's own
/// size agrees with its place but has no order among those below it. Chunks of one size hang on a ring at one node.
class TreeBins {
public:
    static constexpr unsigned kBins = 32;

    constexpr TreeBins() = default;
    TreeBins(const TreeBins&) = delete;
    TreeBins& operator=(const TreeBins&) = delete;

    bool IsEmpty() const { return m_map == 0; }
    /// Whether all chunks are too small for `size` by their bins alone.
    bool HasNone(std::size_t size) const { return m_map >> BinOf(size) == 0; }

    void Insert(TreeChunk* chunk, std::size_t size);
    void Remove(TreeChunk* chunk, std::size_t size);

    /// A smallest chunk of all, which stays in its bin. Not for empty bins.
    TreeChunk* Least() const;
    /// A smallest chunk of at least `size`, which stays in its bin; null when there is none.
    TreeChunk* BestFit(std::size_t size) const;

    static constexpr unsigned BinOf(std::size_t size) {
        const unsigned power = static_cast<unsigned>(std::bit_width(size)) - kLeastWidth;
        if (power >= kBins / 2) return kBins - 1;
        return 2 * power + (static_cast<unsigned>(size >> (power + kLeastWidth - 2)) & 1);
    }

    /// By how much a size of that bin is shifted up for the bit of the root to be the highest.
    static constexpr unsigned KeyShift(unsigned bin) {
        constexpr unsigned kBits = std::numeric_limits<std::size_t>::digits;
        return bin == kBins - 1 ? 0 : kBits - (bin / 2 + kLeastWidth - 2);
    }

    static constexpr unsigned HighestBit(std::size_t key) {
        return static_cast<unsigned>(key >> (std::numeric_limits<std::size_t>::digits - 1));
    }

private:
    friend class HeapCheck;

    static constexpr unsigned kLeastWidth = static_cast<unsigned>(std::bit_width(kLeastLarge));

    void Replace(TreeChunk* chunk, TreeChunk* heir, unsigned bin);

    std::uint32_t m_map = 0;
    TreeChunk* m_roots[kBins]{};
};

}  // namespace dorvutil::dl
