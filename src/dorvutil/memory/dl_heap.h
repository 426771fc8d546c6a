#pragma once

#include <cstddef>

#include "dorvutil/memory/dl_segment.h"
#include "dorvutil/memory/dl_small_bins.h"
#include "dorvutil/memory/dl_tree_bins.h"

namespace dorvutil::dl {

/// The heap without its lock and without the chunks on pages of their own. Every byte of its segments belongs to one
/// chunk: in use, in a bin, the designated victim (what was left of the chunk that was split last; small requests that
/// have no chunk of their own size are served from it, and so stand side by side) or the top (what no bin may have,
/// because it ends where the newest segment can grow). Free chunks never touch: they are merged when they are freed.
///
/// Sizes are those of chunks, from ChunkSizeFor. One thread at a time. Nothing is given back when a heap ends.
class Heap {
public:
    constexpr Heap() = default;
    Heap(const Heap&) = delete;
    Heap& operator=(const Heap&) = delete;

    /// A chunk in use, from memory the heap has; null when nothing is large enough.
    [[nodiscard]] Chunk* Take(std::size_t size);
    /// The same, after asking the system for more; null when that is refused.
    [[nodiscard]] Chunk* TakeNew(std::size_t size);
    /// Takes a chunk back.
    void Free(Chunk* chunk);
    /// Gives a chunk another size where it is; false, with nothing changed, when what follows is in use or too small.
    [[nodiscard]] bool Resize(Chunk* chunk, std::size_t size);

    /// Ends the process when `chunk` cannot be one in use. Mapped ones pass.
    void Require(Chunk* chunk) const {
        // Without seals the segments are not searched unless something is wrong already.
        if (kSealed || !LooksUsed(chunk)) [[unlikely]]
            RequireClosely(chunk);
    }

private:
    friend class HeapCheck;

    static constexpr std::size_t kTrimAt = std::size_t{2} << 20;

    Chunk* TakeSmall(std::size_t size);
    Chunk* TakeLarge(std::size_t size);
    Chunk* TakeVictim(std::size_t size);
    Chunk* TakeTop(std::size_t size);
    bool Absorb(Chunk* chunk, std::size_t size);

    void Insert(Chunk* chunk, std::size_t size);
    void Remove(Chunk* chunk, std::size_t size);
    void SetVictim(Chunk* chunk, std::size_t size);
    void SetTop(Chunk* chunk, std::size_t size);
    bool GrowTop(std::size_t size);
    bool AddSegment(std::size_t size);
    void CloseTop();
    void Drop(Segment* segment);
    void Trim();
    bool IsInSegment(const Chunk* chunk) const;
    void RequireClosely(Chunk* chunk) const;
    static bool LooksUsed(const Chunk* chunk) {
        return reinterpret_cast<std::uintptr_t>(chunk) % kAlignment == 0 && chunk->IsInUse() &&
               (chunk->IsMapped() || chunk->At(chunk->Size())->IsPreviousInUse());
    }

    SmallBins m_small;
    TreeBins m_trees;
    Chunk* m_victim = nullptr;
    std::size_t m_victimSize = 0;
    Chunk* m_top = nullptr;
    std::size_t m_topSize = 0;  // 0, or at least kLeastChunk
    std::size_t m_trimAt = kTrimAt;
    Segment* m_segments = nullptr;  // owned; newest first, which holds the top
};

}  // namespace dorvutil::dl
