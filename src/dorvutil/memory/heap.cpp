#include "dorvutil/memory/heap.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "dorvutil/memory/heap_hook.h"
#include "dorvutil/platform/host.h"

namespace dorvutil {
namespace {

constexpr std::size_t kGlobalHeapSize = 0x1000000;

constinit std::atomic<AllocationHook> g_allocationHook{nullptr};
constinit std::atomic<void*> g_globalHeap{nullptr};

bool MayAllocate(std::size_t bytes) {
    const AllocationHook hook = g_allocationHook.load(std::memory_order_relaxed);
    return !hook || hook(bytes);
}

template <class C>
C* Duplicate(const C* text) {
    if (!text) return nullptr;
    const std::size_t bytes = (std::char_traits<C>::length(text) + 1) * sizeof(C);
    void* const copy = Mem_Malloc(bytes);
    if (copy) std::memcpy(copy, text, bytes);
    return static_cast<C*>(copy);
}

}  // namespace

void SetAllocationHook(AllocationHook hook) { g_allocationHook.store(hook); }

void* GlobalHeapBase() { return g_globalHeap.load(); }

void* Mem_Malloc(std::size_t size) { return MayAllocate(size) ? std::malloc(size) : nullptr; }

void* Mem_Calloc(std::size_t count, std::size_t size) {
    const bool countable = size == 0 || count <= std::numeric_limits<std::size_t>::max() / size;
    return countable && MayAllocate(count * size) ? std::calloc(count, size) : nullptr;
}

void* Mem_Realloc(void* p, std::size_t size) { return MayAllocate(size) ? std::realloc(p, size) : nullptr; }

void Mem_Free(void* p) { std::free(p); }

char* Mem_StrDup(const char* text) { return Duplicate(text); }

char16_t* Mem_WStrDup(const char16_t* text) { return Duplicate(text); }

void CP_AllocateGlobalHeap() {
    if (g_globalHeap.load()) return;
    void* base = platform::ReserveRange(kGlobalHeapSize);
    if (!base) base = platform::ReserveRange(kGlobalHeapSize);
    void* recorded = nullptr;
    if (base && !g_globalHeap.compare_exchange_strong(recorded, base)) platform::ReleaseRange(base, kGlobalHeapSize);
}

void CP_FreeGlobalHeap() {
    if (void* const base = g_globalHeap.exchange(nullptr)) platform::ReleaseRange(base, kGlobalHeapSize);
}

CCustomHeap::CCustomHeap(std::uint32_t blockSize, tstype lock, bool flag)
    : CCustomSync(lock), m_blockSize(blockSize), m_flag(flag) {
    m_blocks.SetChunkSize(16);
    if (m_blocks.OwnsMemory()) m_blocks.SetSize(16);
}

CCustomHeap::CCustomHeap(const CCustomHeap& other) : CCustomHeap(other.m_blockSize, ts_critSec, other.m_flag) {}

CCustomHeap& CCustomHeap::operator=(const CCustomHeap& other) {
    m_blockSize = other.m_blockSize;
    m_flag = other.m_flag;
    return *this;
}

CCustomHeap::~CCustomHeap() {
    for (void* const block : m_blocks) Mem_Free(block);
}

void* CCustomHeap::MallocEntry(std::uint32_t size) { return Mem_Malloc(size); }

void* CCustomHeap::ReallocEntry(void* p, std::uint32_t size) { return Mem_Realloc(p, size); }

bool CCustomHeap::FreeEntry(void* p) {
    Mem_Free(p);
    return true;
}

bool CCustomHeap::Contains(void*) { return false; }

CCustomHeapBlock* CCustomHeap::CreateBlock() { return nullptr; }

CCustomHeapBlock* CCustomHeap::FindEntry(void*, std::uint32_t&) { return nullptr; }

HeapAllocMgr::HeapAllocMgr() : CCustomSync(ts_critSec) { m_heaps.SetChunkSize(32); }

CSharedMemoryReserve::CSharedMemoryReserve(std::uint32_t size) : m_size(size) {}

}  // namespace dorvutil
