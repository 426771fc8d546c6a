#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/memory/vector.h"

namespace dorvutil {

struct HeapBlock;

/// Tells which block of a pool an address lies in without a search: one entry for each stretch of the address range
/// that the blocks span, a stretch being no longer than a block, with the block that starts there. While the blocks lie
/// too far apart, or memory is short, there is no map. The pool's lock guards it.
class DORVUTIL_API BlockMap {
public:
    explicit BlockMap(std::uint32_t blockSize);
    ~BlockMap();
    BlockMap(const BlockMap&) = delete;
    BlockMap& operator=(const BlockMap&) = delete;

    /// Notes `block`, which is one of `blocks`, all of them in the order of their addresses.
    void Add(const TVector<HeapBlock*>& blocks, HeapBlock* block);
    void Remove(const HeapBlock* block);
    void Clear();

    bool IsThere() const { return m_starts != nullptr; }
    /// The block that holds `address`, when one does; else null or another block. There is a map.
    const HeapBlock* Find(std::uintptr_t address) const {
        const std::uintptr_t at = (address >> m_shift) - m_first;
        if (at - kBefore >= m_count) return nullptr;
        const std::uintptr_t* start = m_starts + at;
        start -= *start > address;  // no branches: their outcome is a coin toss
        start -= *start > address;
        return reinterpret_cast<const HeapBlock*>(*start > address ? 0 : *start);
    }

private:
    static constexpr std::uintptr_t kBefore =
        2;  // a block may reach into the two stretches behind the one it starts in
    static constexpr std::uintptr_t kNone = ~std::uintptr_t{0};

    bool Rebuild(const TVector<HeapBlock*>& blocks);
    void Drop();
    std::uintptr_t& EntryOf(const HeapBlock* block);

    std::uintptr_t* m_starts = nullptr;  // kBefore empty entries, then m_count
    std::uintptr_t m_first = 0;          // number of the stretch of entry 0
    std::uintptr_t m_count = 0;
    int m_shift;  // a stretch is 2 to this power in bytes
};

}  // namespace dorvutil
