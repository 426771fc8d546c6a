#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "dorvutil/memory/dl_fault.h"

/// How the heap's memory is laid out: chunks without gaps between them, each with its size at its head. A free chunk
/// repeats the size behind its end, in the first word of the next chunk, so that neighbours on both sides are found
/// from the chunk itself (boundary tags). While a chunk is in use, that word belongs to its block.
namespace dorvutil::dl {

static_assert(sizeof(std::size_t) == sizeof(void*));

#ifdef NDEBUG
inline constexpr bool kSealed = false;
#else
/// Blocks in use leave that word alone and have their seal there.
inline constexpr bool kSealed = true;
#endif

inline constexpr std::size_t kWord = sizeof(void*);
inline constexpr std::size_t kAlignment = 2 * kWord;  ///< Of chunks, blocks and sizes of chunks.
inline constexpr std::size_t kOverhead = kSealed ? 2 * kWord : kWord;
inline constexpr std::size_t kLeastChunk = 4 * kWord;
/// The heap takes memory from the system in steps of this size. A multiple of the page size.
inline constexpr std::size_t kStep = 0x10000;
/// Sizes up to this one can be rounded up to chunks, pages and steps without wrapping.
inline constexpr std::size_t kMostRequest = std::numeric_limits<std::size_t>::max() / 2 - 16 * kStep;

/// `unit` is a power of two.
constexpr std::size_t RoundUp(std::size_t n, std::size_t unit) { return (n + unit - 1) & ~(unit - 1); }

/// Size of the chunk for a block of `request` bytes, at most kMostRequest.
constexpr std::size_t ChunkSizeFor(std::size_t request) {
    const std::size_t size = RoundUp(request + kOverhead, kAlignment);
    return size < kLeastChunk ? kLeastChunk : size;
}

/// What stands before every block.
struct Chunk {
    static constexpr std::size_t kPreviousInUse = 1;  ///< The chunk before this one is in use.
    static constexpr std::size_t kInUse = 2;
    static constexpr std::size_t kMapped = 4;  ///< On pages of its own, without neighbours.
    static constexpr std::size_t kFlags = kAlignment - 1;

    std::size_t m_foot;  ///< Of the chunk before: its size while it is free, its seal or its data while it is in use.
    std::size_t m_head;  ///< Size of this chunk, and flags.

    static Chunk* Of(void* block) { return static_cast<Chunk*>(block) - 1; }
    void* Block() { return this + 1; }

    std::size_t Size() const { return m_head & ~kFlags; }
    bool IsInUse() const { return (m_head & kInUse) != 0; }
    bool IsPreviousInUse() const { return (m_head & kPreviousInUse) != 0; }
    bool IsMapped() const { return (m_head & kMapped) != 0; }

    Chunk* At(std::size_t offset) { return reinterpret_cast<Chunk*>(reinterpret_cast<std::uintptr_t>(this) + offset); }
    const Chunk* At(std::size_t offset) const { return const_cast<Chunk*>(this)->At(offset); }
    /// Only when it is free.
    Chunk* Previous() { return At(std::size_t{0} - m_foot); }

    /// What a block closes with.
    std::size_t Seal() const { return reinterpret_cast<std::uintptr_t>(this) ^ std::size_t{0x9E3779B9}; }

    /// In use, with `size` bytes; the chunk behind is about to be made, and learns it then.
    void UseFront(std::size_t size) {
        m_head = size | kInUse | (m_head & kPreviousInUse);
        if constexpr (kSealed) At(size)->m_foot = Seal();
    }
    /// The same, and the chunk behind knows.
    void Use(std::size_t size) {
        UseFront(size);
        At(size)->m_head |= kPreviousInUse;
    }
    /// Free: the chunk before is in use then, or both would be one. The chunk behind learns the size, not the state.
    void SetFree(std::size_t size) {
        m_head = size | kPreviousInUse;
        At(size)->m_foot = size;
    }
};

/// Place in a ring of free chunks.
struct Links {
    Links* m_next;
    Links* m_previous;

    constexpr void MakeRing() { m_next = m_previous = this; }

    void InsertAfter(Links* place) {
        m_next = place->m_next;
        m_previous = place;
        m_next->m_previous = this;
        place->m_next = this;
    }

    Links* Next() {
        if (m_next->m_previous != this) [[unlikely]]
            HeapFault("a freed block was written to", this);
        return m_next;
    }

    void Unlink() {
        if (m_next->m_previous != this || m_previous->m_next != this) [[unlikely]]
            HeapFault("a freed block was written to", this);
        m_next->m_previous = m_previous;
        m_previous->m_next = m_next;
    }
};

/// A free chunk, in a bin or on its own.
struct FreeChunk : Chunk, Links {};

/// A free chunk that is large enough for a tree bin.
struct TreeChunk : FreeChunk {
    TreeChunk* m_child[2];
    TreeChunk* m_parent;  ///< Itself at the root; null in the ring of another chunk of the same size.
};

static_assert(sizeof(FreeChunk) == kLeastChunk);
static_assert(Chunk::kMapped < kAlignment);

}  // namespace dorvutil::dl
