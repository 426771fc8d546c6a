#include "dorvutil/memory/dl_heap.h"

#include <limits>

#include "dorvutil/platform/pages.h"

namespace dorvutil::dl {
namespace {

// Uses the front of a chunk that is in no bin. Returns the size of the rest, which the caller finds a place for; 0 when
// it would be too small for a chunk and was left to this one.
std::size_t UseFront(Chunk* chunk, std::size_t chunkSize, std::size_t size) {
    const std::size_t rest = chunkSize - size;
    if (rest < kLeastChunk) {
        chunk->Use(chunkSize);
        return 0;
    }
    chunk->UseFront(size);
    chunk->At(size)->SetFree(rest);
    return rest;
}

// The closed segment in which a free chunk is all there is; null when there is more.
Segment* SoleChunkOf(Chunk* chunk, std::size_t size) {
    if (size < kLeastSpan) return nullptr;
    Segment* const segment = Fence::SegmentAt(chunk->At(size));
    return segment && segment->First() == chunk ? segment : nullptr;
}

}  // namespace

Chunk* Heap::Take(std::size_t size) {
    Chunk* const chunk = size < kLeastLarge ? TakeSmall(size) : TakeLarge(size);
    if (chunk) return chunk;
    if (size <= m_victimSize) return TakeVictim(size);
    return size + kLeastChunk <= m_topSize ? TakeTop(size) : nullptr;
}

Chunk* Heap::TakeNew(std::size_t size) { return GrowTop(size) || AddSegment(size) ? TakeTop(size) : nullptr; }

// From the bin of the size; else, when the victim cannot serve either, from the smallest chunk that can, whose rest is
// the next victim.
Chunk* Heap::TakeSmall(std::size_t size) {
    if (FreeChunk* const chunk = m_small.TakeFitting(size)) {
        chunk->Use(chunk->Size());
        return chunk;
    }
    if (size <= m_victimSize) return nullptr;
    FreeChunk* chunk = m_small.TakeLarger(size);
    if (!chunk) {
        if (m_trees.IsEmpty()) return nullptr;
        TreeChunk* const least = m_trees.Least();
        m_trees.Remove(least, least->Size());
        chunk = least;
    }
    const std::size_t rest = UseFront(chunk, chunk->Size(), size);
    if (rest != 0) {
        if (m_victim) Insert(m_victim, m_victimSize);
        SetVictim(chunk->At(size), rest);
    }
    return chunk;
}

// The best fitting chunk, unless the victim fits better.
Chunk* Heap::TakeLarge(std::size_t size) {
    TreeChunk* const chunk = m_trees.HasNone(size) ? nullptr : m_trees.BestFit(size);
    if (!chunk) return nullptr;
    const std::size_t chunkSize = chunk->Size();
    if (m_victimSize >= size && m_victimSize <= chunkSize) return nullptr;
    m_trees.Remove(chunk, chunkSize);
    const std::size_t rest = UseFront(chunk, chunkSize, size);
    if (rest != 0) Insert(chunk->At(size), rest);
    return chunk;
}

Chunk* Heap::TakeVictim(std::size_t size) {
    Chunk* const chunk = m_victim;
    const std::size_t rest = UseFront(chunk, m_victimSize, size);
    SetVictim(rest != 0 ? chunk->At(size) : nullptr, rest);
    return chunk;
}

Chunk* Heap::TakeTop(std::size_t size) {
    Chunk* const chunk = m_top;
    const std::size_t rest = m_topSize - size;
    chunk->UseFront(size);
    SetTop(chunk->At(size), rest);
    return chunk;
}

void Heap::Free(Chunk* chunk) {
    std::size_t size = chunk->Size();
    Chunk* const next = chunk->At(size);
    chunk->m_head &= ~Chunk::kInUse;  // to be seen should it be freed again while it lies within another
    bool isVictim = false;
    if (!chunk->IsPreviousInUse()) {
        chunk = chunk->Previous();
        const std::size_t more = chunk->Size();
        size += more;
        isVictim = chunk == m_victim;
        if (!isVictim) Remove(chunk, more);
    }
    if (next == m_top) {
        if (isVictim) SetVictim(nullptr, 0);
        SetTop(chunk, size + m_topSize);
        if (m_topSize > m_trimAt) Trim();
        return;
    }
    if (next->IsInUse()) {
        next->m_head &= ~Chunk::kPreviousInUse;
    } else {
        const std::size_t more = next->Size();
        size += more;
        if (next == m_victim) {
            isVictim = true;
        } else {
            Remove(next, more);
        }
    }
    chunk->SetFree(size);
    if (Segment* const segment = SoleChunkOf(chunk, size)) {
        if (isVictim) SetVictim(nullptr, 0);
        Drop(segment);
    } else if (isVictim) {
        SetVictim(chunk, size);
    } else {
        Insert(chunk, size);
    }
}

bool Heap::Resize(Chunk* chunk, std::size_t size) {
    if (chunk->Size() < size && !Absorb(chunk, size)) return false;
    const std::size_t rest = chunk->Size() - size;
    if (rest < kLeastChunk) return true;
    Chunk* const tail = chunk->At(size);
    chunk->UseFront(size);
    tail->m_head = Chunk::kPreviousInUse;
    tail->Use(rest);
    Free(tail);
    return true;
}

// Takes what follows a chunk into it, so that it has at least `size` bytes.
bool Heap::Absorb(Chunk* chunk, std::size_t size) {
    const std::size_t ownSize = chunk->Size();
    Chunk* const next = chunk->At(ownSize);
    if (next == m_top) {
        const std::size_t missing = size - ownSize;
        if (missing + kLeastChunk > m_topSize && !GrowTop(missing)) return false;
        const std::size_t rest = m_topSize - missing;
        chunk->UseFront(size);
        SetTop(chunk->At(size), rest);
        return true;
    }
    if (next->IsInUse() || ownSize + next->Size() < size) return false;
    const std::size_t wholeSize = ownSize + next->Size();
    if (next == m_victim) {
        SetVictim(nullptr, 0);
    } else {
        Remove(next, next->Size());
    }
    chunk->Use(wholeSize);
    return true;
}

void Heap::Insert(Chunk* chunk, std::size_t size) {
    if (size < kLeastLarge) {
        m_small.Insert(static_cast<FreeChunk*>(chunk), size);
    } else {
        m_trees.Insert(static_cast<TreeChunk*>(chunk), size);
    }
}

void Heap::Remove(Chunk* chunk, std::size_t size) {
    if (size < kLeastLarge) {
        m_small.Remove(static_cast<FreeChunk*>(chunk), size);
    } else {
        m_trees.Remove(static_cast<TreeChunk*>(chunk), size);
    }
}

void Heap::SetVictim(Chunk* chunk, std::size_t size) {
    m_victim = chunk;
    m_victimSize = size;
}

// The top has no foot: nothing behind it could ask.
void Heap::SetTop(Chunk* chunk, std::size_t size) {
    m_top = chunk;
    m_topSize = size;
    chunk->m_head = size | Chunk::kPreviousInUse;
}

// Memory behind the top, for a chunk of `size` bytes in it.
bool Heap::GrowTop(std::size_t size) {
    if (!m_segments) return false;
    const std::size_t missing = RoundUp(size + kLeastChunk - m_topSize, kStep);
    if (!m_segments->Grow(missing)) return false;
    SetTop(m_top, m_topSize + missing);
    return true;
}

bool Heap::AddSegment(std::size_t size) {
    Segment* const segment = Segment::Create(size + kLeastChunk);
    if (!segment) return false;
    if (m_segments) CloseTop();
    segment->m_older = m_segments;
    m_segments = segment;
    SetTop(segment->First(), segment->Span());
    return true;
}

// The top becomes a chunk like others; an empty segment goes.
void Heap::CloseTop() {
    Segment* const segment = m_segments;
    if (m_top == segment->First()) return Drop(segment);
    segment->PutFence();
    m_top->SetFree(m_topSize);
    Insert(m_top, m_topSize);
}

void Heap::Drop(Segment* segment) {
    Segment** link = &m_segments;
    while (*link != segment) link = &(*link)->m_older;
    *link = segment->m_older;
    segment->Destroy();
}

// Whole steps of the top go back, but for what is left of one.
void Heap::Trim() {
    const std::size_t surplus = (m_topSize - kLeastChunk) & ~(kStep - 1);
    if (m_segments->Shrink(surplus)) {
        SetTop(m_top, m_topSize - surplus);
    } else {
        m_trimAt = std::numeric_limits<std::size_t>::max();  // a system that does not take it is not asked again
    }
}

bool Heap::IsInSegment(const Chunk* chunk) const {
    const Segment* segment = m_segments;
    while (segment && !segment->Holds(chunk)) segment = segment->m_older;
    return segment != nullptr;
}

void Heap::RequireClosely(Chunk* chunk) const {
    // What lies in no segment has pages of its own.
    const bool mapped = !IsInSegment(chunk);
    if (reinterpret_cast<std::uintptr_t>(chunk) % (mapped ? platform::PageSize() : kAlignment) != 0)
        HeapFault("not a block of this heap", chunk->Block());
    if (!chunk->IsInUse()) HeapFault("a block that is not in use was freed or resized", chunk->Block());
    if (mapped && chunk->IsMapped()) return;
    Chunk* const next = chunk->At(chunk->Size());
    if (chunk->Size() < kLeastChunk || !IsInSegment(next) || !next->IsPreviousInUse())
        HeapFault("the memory before or behind a block was overwritten", chunk->Block());
    if (kSealed && next->m_foot != chunk->Seal()) HeapFault("a block was written to beyond its end", chunk->Block());
}

}  // namespace dorvutil::dl
