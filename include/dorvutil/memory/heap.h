#pragma once

#include <cstddef>
#include <cstdint>

#include "dorvutil/concurrency/sync.h"
#include "dorvutil/frame/export.h"
#include "dorvutil/memory/vector.h"

/// The library's way to the heap of the C runtime, and what remains of heaps of its own: they keep a lock and
/// bookkeeping and forward every allocation. Any thread.
namespace dorvutil {

/// malloc, calloc, realloc and free of the C runtime.
[[nodiscard]] DORVUTIL_API void* Mem_Malloc(std::size_t size);
[[nodiscard]] DORVUTIL_API void* Mem_Calloc(std::size_t count, std::size_t size);
[[nodiscard]] DORVUTIL_API void* Mem_Realloc(void* p, std::size_t size);
DORVUTIL_API void Mem_Free(void* p);

/// A copy, ended with Mem_Free; null for null or when memory runs out.
[[nodiscard]] DORVUTIL_API char* Mem_StrDup(const char* text);
[[nodiscard]] DORVUTIL_API char16_t* Mem_WStrDup(const char16_t* text);

/// Reserves 16 MiB of address space, once: later calls change nothing. Nothing is allocated from it.
DORVUTIL_API void CP_AllocateGlobalHeap();
/// Releases the range.
DORVUTIL_API void CP_FreeGlobalHeap();

/// A block of a custom heap; none is ever made.
class CCustomHeapBlock {};

class DORVUTIL_API CCustomHeap : public CCustomSync {
public:
    CCustomHeap(std::uint32_t blockSize, tstype lock, bool flag);
    /// Copies the settings. Block pointers have one owner and stay where they are.
    CCustomHeap(const CCustomHeap& other);
    CCustomHeap& operator=(const CCustomHeap& other);
    ~CCustomHeap() override;

    void* MallocEntry(std::uint32_t size);
    void* ReallocEntry(void* p, std::uint32_t size);  ///< Null allocates.
    bool FreeEntry(void* p);                          ///< True.
    bool Contains(void* p);                           ///< False.
    CCustomHeapBlock* CreateBlock();                  ///< Null.
    /// Null; `index` stays.
    CCustomHeapBlock* FindEntry(void* p, std::uint32_t& index);

private:
    TVector<void*> m_blocks;  // owned
    std::uint32_t m_blockSize;
    bool m_flag;
};

class DORVUTIL_API HeapAllocMgr : public CCustomSync {
public:
    HeapAllocMgr();

private:
    TVector<CCustomHeap*> m_heaps;
};

class DORVUTIL_API CSharedMemoryReserve : public TCompactSync<critSec> {
public:
    explicit CSharedMemoryReserve(std::uint32_t size);

    std::uint32_t Size() const { return m_size; }

private:
    struct Slot {
        void* m_base = nullptr;
        bool m_taken = false;
    };

    [[maybe_unused]] Slot m_slots[16];
    [[maybe_unused]] bool m_flag = false;
    std::uint32_t m_size;
};

}  // namespace dorvutil
