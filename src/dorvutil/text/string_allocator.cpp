#include "dorvutil/text/string_allocator.h"

#include <cstdint>
#include <new>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/memory/heap.h"
#include "dorvutil/text/string.h"
#include "dorvutil/text/string_storage.h"

namespace dorvutil {
namespace {

// In front of every string object: tells the heap from the pool even when the allocator, and with it the pool that
// could be asked, is gone.
struct alignas(alignof(void*)) ObjectOrigin {
    GutsSource m_source;
};

constexpr std::uint32_t kLargestPooled = 8 * CORVStringAllocator::kPoolsPerWidth;
constexpr std::uint32_t kObjectElementSize = sizeof(ObjectOrigin) + sizeof(ORVustring);
static_assert(sizeof(ORVustring) == sizeof(ORVwstring) && alignof(ORVustring) <= alignof(ObjectOrigin));

// Elements start at multiples of 8 when their size is one.
template <class T>
constexpr std::uint32_t BlockBytes(std::uint32_t capacity) {
    return static_cast<std::uint32_t>((sizeof(StringGuts<T>) + (std::size_t{capacity} + 1) * sizeof(T) + 7) &
                                      ~std::size_t{7});
}

template <class T>
void AddPools(ListMgr<Allocator>& pools) {
    for (std::uint32_t k = 1; k <= CORVStringAllocator::kPoolsPerWidth; ++k) {
        auto* const pool =
            new (std::nothrow) Allocator(BlockBytes<T>(8 * k), ts_critSec, CORVStringAllocator::kPoolBlockSize);
        if (pool != nullptr && pools.Add(pool) < 0) delete pool;
    }
}

void AbandonUsed(Allocator& pool) {
    if (pool.LiveCount() != 0) pool.Cleanup();
}

void AbandonUsed(const ListMgr<Allocator>& pools) {
    for (std::uint32_t i = 0; i < pools.Count(); ++i) AbandonUsed(*pools[i]);
}

}  // namespace

CORVStringAllocator::CORVStringAllocator() : m_objectPool(kObjectElementSize, ts_critSec, kPoolBlockSize) {
    AddPools<char16_t>(m_widePools);
    AddPools<char>(m_narrowPools);
}

CORVStringAllocator::~CORVStringAllocator() {
    AbandonUsed(m_objectPool);
    AbandonUsed(m_widePools);
    AbandonUsed(m_narrowPools);
}

// A pool that could not be made would shift the ones behind it: then none of the width is used.
template <class T>
Allocator* CORVStringAllocator::BlockPool(std::uint32_t k) {
    const ListMgr<Allocator>& pools = sizeof(T) == 1 ? m_narrowPools : m_widePools;
    return k == 0 || pools.Count() != kPoolsPerWidth ? nullptr : pools[k - 1];
}

template DORVUTIL_API Allocator* CORVStringAllocator::BlockPool<char>(std::uint32_t k);
template DORVUTIL_API Allocator* CORVStringAllocator::BlockPool<char16_t>(std::uint32_t k);

namespace {

template <class T>
Allocator* PoolFor(std::uint32_t capacity) {
    CORVStringAllocator* const allocator = GetStringAllocator();
    return allocator ? allocator->BlockPool<T>(capacity / 8) : nullptr;
}

}  // namespace

template <class T>
void* AllocBlock(std::uint32_t capacity, GutsSource& source) noexcept {
    if (capacity <= kLargestPooled) {
        if (Allocator* const pool = PoolFor<T>(capacity)) {
            source = GutsSource::kPool;
            return pool->Alloc();
        }
    }
    source = GutsSource::kHeap;
    return Mem_Malloc(BlockBytes<T>(capacity));
}

template <class T>
void FreeBlock(void* block, std::uint32_t capacity, GutsSource source) noexcept {
    Allocator* const pool = source == GutsSource::kHeap || capacity > kLargestPooled ? nullptr : PoolFor<T>(capacity);
    if (pool && (source == GutsSource::kPool || pool->Contains(block))) {
        pool->Free(block);  // ignored when the block is of a pool before this one
    } else if (source == GutsSource::kHeap || pool || capacity > kLargestPooled) {
        Mem_Free(block);
    }
}

template void* AllocBlock<char>(std::uint32_t, GutsSource&) noexcept;
template void* AllocBlock<char16_t>(std::uint32_t, GutsSource&) noexcept;
template void FreeBlock<char>(void*, std::uint32_t, GutsSource) noexcept;
template void FreeBlock<char16_t>(void*, std::uint32_t, GutsSource) noexcept;

std::uint32_t StringObjectElementSize() noexcept { return kObjectElementSize; }

// Derived classes are larger than an element: they come from the heap.
void* AllocStringObject(std::size_t size) noexcept {
    CORVStringAllocator* const allocator = size <= sizeof(ORVustring) ? GetStringAllocator() : nullptr;
    const ObjectOrigin origin{allocator ? GutsSource::kPool : GutsSource::kHeap};
    void* const storage = allocator ? allocator->ObjectPool().Alloc() : Mem_Malloc(sizeof(ObjectOrigin) + size);
    return storage ? ::new (storage) ObjectOrigin(origin) + 1 : nullptr;
}

void FreeStringObject(void* object) noexcept {
    if (object == nullptr) return;
    ObjectOrigin* const origin = static_cast<ObjectOrigin*>(object) - 1;
    if (origin->m_source == GutsSource::kHeap) {
        Mem_Free(origin);
    } else if (CORVStringAllocator* const allocator = GetStringAllocator()) {
        allocator->ObjectPool().Free(origin);
    }
}

}  // namespace dorvutil
