#include "dorvutil/memory/dlmalloc.h"

#include <algorithm>
#include <cstring>

#include "dorvutil/memory/dl_checks.h"
#include "dorvutil/memory/dl_heap.h"
#include "dorvutil/memory/dl_mapped.h"
#include "dorvutil/memory/dl_spin_lock.h"

namespace dorvutil {
namespace {

using dl::Chunk;

constinit dl::SpinLock g_lock;
constinit dl::Heap g_heap;  // guarded by g_lock

Chunk* TakeFromHeap(std::size_t size) {
    const dl::SpinGuard guard(g_lock);
    Chunk* const chunk = g_heap.Take(size);
    return chunk || size >= dl::kLeastMapped ? chunk : g_heap.TakeNew(size);
}

// The system is asked for pages without the lock. When it has none to map, the heap may yet be able to grow.
Chunk* TakeMapped(std::size_t size) {
    if (Chunk* const chunk = dl::MapChunk(size)) return chunk;
    const dl::SpinGuard guard(g_lock);
    Chunk* const chunk = g_heap.Take(size);
    return chunk ? chunk : g_heap.TakeNew(size);
}

// Bytes of a chunk that belong to its block.
std::size_t RoomOf(const Chunk* chunk) {
    return chunk->Size() - (chunk->IsMapped() ? 2 * dl::kWord + (dl::kSealed ? dl::kWord : 0) : dl::kOverhead);
}

// Where it is, or on pages that move as a whole; null when it must be copied. A mapped chunk that becomes small moves
// to the heap.
Chunk* ResizeChunk(Chunk* chunk, std::size_t size, std::size_t& room) {
    {
        const dl::SpinGuard guard(g_lock);
        g_heap.Require(chunk);
        room = RoomOf(chunk);
        if (!chunk->IsMapped()) return g_heap.Resize(chunk, size) ? chunk : nullptr;
    }
    dl::RequireMapped(chunk);
    return size >= dl::kLeastMapped ? dl::RemapChunk(chunk, size) : nullptr;
}

}  // namespace

void* dlmalloc(std::size_t size) {
    if (size > dl::kMostRequest) return nullptr;
    const std::size_t chunkSize = dl::ChunkSizeFor(size);
    Chunk* chunk = TakeFromHeap(chunkSize);
    if (!chunk && chunkSize >= dl::kLeastMapped) chunk = TakeMapped(chunkSize);
    return chunk ? chunk->Block() : nullptr;
}

void dlfree(void* p) {
    if (!p) return;
    Chunk* const chunk = Chunk::Of(p);
    {
        const dl::SpinGuard guard(g_lock);
        g_heap.Require(chunk);
        if (!chunk->IsMapped()) return g_heap.Free(chunk);
    }
    dl::RequireMapped(chunk);
    dl::UnmapChunk(chunk);
}

void* dlrealloc(void* p, std::size_t size) {
    if (!p) return dlmalloc(size);
    if (size > dl::kMostRequest) return nullptr;
    std::size_t room = 0;
    if (Chunk* const chunk = ResizeChunk(Chunk::Of(p), dl::ChunkSizeFor(size), room)) return chunk->Block();
    void* const moved = dlmalloc(size);
    if (!moved) return size <= room ? p : nullptr;  // what is to shrink may also stay as it is
    std::memcpy(moved, p, std::min(size, room));
    dlfree(p);
    return moved;
}

dl::HeapReport dl::CheckSharedHeap() {
    const SpinGuard guard(g_lock);
    return CheckHeap(g_heap);
}

}  // namespace dorvutil
