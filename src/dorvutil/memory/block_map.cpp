#include "dorvutil/memory/block_map.h"

#include <algorithm>
#include <bit>

#include "dorvutil/memory/heap.h"

namespace dorvutil {
namespace {

// Beyond this many entries for each block the map costs more than it saves.
constexpr std::uintptr_t kMostPerBlock = 8;
constexpr std::uintptr_t kAlwaysAllowed = 1024;

std::uintptr_t AddressOf(const HeapBlock* block) { return reinterpret_cast<std::uintptr_t>(block); }

}  // namespace

BlockMap::BlockMap(std::uint32_t blockSize) : m_shift(static_cast<int>(std::bit_width(blockSize | 1u)) - 1) {}

BlockMap::~BlockMap() { Mem_Free(m_starts); }

void BlockMap::Add(const TVector<HeapBlock*>& blocks, HeapBlock* block) {
    const std::uintptr_t at = (AddressOf(block) >> m_shift) - m_first - kBefore;
    const bool fits = at < m_count && m_count - at > kBefore;  // with the stretches that the block reaches into
    if (fits)
        EntryOf(block) = AddressOf(block);
    else if (!Rebuild(blocks))
        Drop();
}

void BlockMap::Remove(const HeapBlock* block) {
    if (m_starts) EntryOf(block) = kNone;
}

void BlockMap::Clear() { Drop(); }

// With room on both sides, so that a pool that grows rebuilds its map but now and then.
bool BlockMap::Rebuild(const TVector<HeapBlock*>& blocks) {
    const std::uintptr_t lowest = AddressOf(blocks[0]) >> m_shift;
    const std::uintptr_t highest = AddressOf(blocks[blocks.Count() - 1]) >> m_shift;
    const std::uintptr_t span = highest - lowest + 1;
    if (span > kAlwaysAllowed + kMostPerBlock * blocks.Count()) return false;
    const std::uintptr_t room = span / 4 + 16;
    const std::uintptr_t below = std::min(room, lowest - std::min(lowest, kBefore));
    const std::uintptr_t count = below + span + room + kBefore;
    auto* const starts = static_cast<std::uintptr_t*>(Mem_Malloc((kBefore + count) * sizeof(std::uintptr_t)));
    if (!starts) return false;
    std::fill_n(starts, kBefore + count, kNone);
    Drop();
    m_starts = starts;
    m_first = lowest - below - kBefore;
    m_count = count;
    for (const HeapBlock* const block : blocks) EntryOf(block) = AddressOf(block);
    return true;
}

void BlockMap::Drop() {
    Mem_Free(m_starts);
    m_starts = nullptr;
    m_count = 0;
}

std::uintptr_t& BlockMap::EntryOf(const HeapBlock* block) { return m_starts[(AddressOf(block) >> m_shift) - m_first]; }

}  // namespace dorvutil
