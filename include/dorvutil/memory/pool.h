#pragma once

#include <cstddef>
#include <cstdint>

#include "dorvutil/concurrency/sync.h"
#include "dorvutil/frame/export.h"
#include "dorvutil/memory/block_map.h"
#include "dorvutil/memory/vector.h"

namespace dorvutil {

/// Head of one block of a pool: a bitmap of the elements in use follows it (element i at bit i mod 8 of byte i / 8;
/// bits behind the last element are set for good), then the elements.
struct HeapBlock {
    HeapBlock* m_next;  ///< In the available list; both links hold a mark while the block is not in it.
    HeapBlock* m_previous;
    std::uint64_t m_used;  ///< Elements in use.

    /// Blocks are told apart by their address only.
    bool operator==(const HeapBlock&) const { return true; }
};

/// How a pool divides its blocks. Elements start at multiples of 8 or 16 bytes when their size is one, else of 4.
struct DORVUTIL_API BlockStruct {
    /// `elementSize` is rounded up to a multiple of 4 (at least 4); `blockSize` is in bytes. No elements fit when the
    /// block is too small.
    BlockStruct(std::uint32_t elementSize, std::uint32_t blockSize);

    void MemCommit(void*) {}    ///< Blocks are ordinary heap memory:
    void MemDecommit(void*) {}  ///< nothing to do.

    std::uint32_t m_elementSize;
    std::uint32_t m_blockSize;
    std::uint16_t m_elementsPerBlock;
    std::uint16_t m_bitmapSize;  ///< Bytes, whole 64-bit words.
    std::uint16_t m_dataOffset;  ///< From the start of the bitmap to the first element.
    bool m_large;                ///< 2 MiB and above.
};

/// Pool of elements of one size, carved out of larger blocks. Allocation takes the lowest free element of the fullest
/// block; of blocks that become empty one is kept, the others go back to the heap. Any thread, when its lock is one;
/// the lock is its base. Destroying the pool frees all blocks: elements still in use become invalid.
class DORVUTIL_API Allocator : public CCustomSync {
public:
    /// `parent`: see Contains; with `dedicateParent` it is marked dedicated (blocks below 2 MiB only). `isPrivate` is
    /// kept as an attribute of the block list.
    Allocator(std::uint32_t elementSize, tstype lock, std::uint32_t blockSize, Allocator* parent = nullptr,
              bool dedicateParent = false, bool isPrivate = false);
    ~Allocator() override;

    /// Memory for one element, uninitialised; null when memory runs out.
    [[nodiscard]] void* Alloc();
    /// Takes an element back. Null, foreign pointers, pointers into the middle of an element and elements not in use
    /// are ignored; none of them is dereferenced.
    void Free(void* element);
    /// Whether `p` lies in a block. A parent is asked first; its answer is final when it is no, or when it is
    /// dedicated.
    bool Contains(const void* p) const;
    /// Marks the pool dedicated; true when it was not.
    bool Dedicate();
    /// Forgets all blocks without freeing them: elements in use stay valid for good.
    void Cleanup();

    std::uint32_t ElemSize() const { return m_geometry.m_elementSize; }
    std::uint32_t BlockSize() const { return m_geometry.m_blockSize; }
    /// Elements in use, counted block by block.
    std::uint32_t LiveCount() const;

private:
    HeapBlock* ReserveBlock();
    void ReleaseBlock(HeapBlock* block, std::uint32_t index);
    void UnlinkBlock(HeapBlock* block);
    void TryUnlinkBlock(HeapBlock* block);
    void AddToAvailable(HeapBlock* block);
    void RemoveFromAvailable(HeapBlock* block);
    void SetAvailable(HeapBlock* block, bool available);
    void MoveBlockUp(HeapBlock* block);
    void MoveBlockDown(HeapBlock* block);
    std::uint32_t FindHeapIndex(const void* p, bool forInsert) const;
    HeapBlock* FindBlock(const void* p) const;
    unsigned char* FirstElement(HeapBlock* block) const;
    std::uint64_t ElementIndex(HeapBlock* block, const void* p) const;

    Allocator* m_parent;
    TVector<HeapBlock*> m_blocks;  // owned, sorted by address
    BlockMap m_map;                // of m_blocks
    BlockStruct m_geometry;
    HeapBlock* m_available = nullptr;  // fullest first
    bool m_dedicated = false;
    HeapBlock** m_lastOf = nullptr;  // the last available block of each used count; made with the first block
    int m_evenBits;                  // the element size is an odd number times 2 to this power;
    std::uint64_t m_inverse;         // times the odd number it gives 1 modulo 2^64
};

}  // namespace dorvutil
