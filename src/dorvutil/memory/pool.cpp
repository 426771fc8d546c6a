#include "dorvutil/memory/pool.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <limits>

#include "dorvutil/concurrency/crit_sec_inl.h"
#include "dorvutil/memory/heap.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kLargeBlock = 0x200000;
constexpr std::uint32_t kMostElements = std::numeric_limits<std::uint16_t>::max();

HeapBlock* Unlisted() { return reinterpret_cast<HeapBlock*>(~std::uintptr_t{0}); }

bool IsListed(const HeapBlock* block) { return block->m_next != Unlisted(); }

constexpr std::uint32_t kHeader = sizeof(HeapBlock);
constexpr std::uint32_t kWordBits = 64;

static_assert(std::endian::native == std::endian::little, "the bitmap is read in 64-bit words");

std::uint64_t* BitmapOf(HeapBlock* block) { return reinterpret_cast<std::uint64_t*>(block + 1); }

std::uint32_t WordCount(std::uint32_t elements) { return (elements + kWordBits - 1) / kWordBits; }

std::uint32_t BitmapSize(std::uint32_t elements) { return WordCount(elements) * kWordBits / 8; }

// The first element follows the bitmap's words at a multiple of 16 bytes from the block's start if its size is one.
std::uint32_t DataOffset(std::uint32_t elementSize, std::uint32_t elements) {
    const std::uint32_t alignment = elementSize % 16 == 0 ? 16 : 8;
    const std::uint32_t end = kHeader + BitmapSize(elements);
    return (end + alignment - 1) / alignment * alignment - kHeader;
}

// Takes the lowest free element of a block that has one; returns its index.
std::uint32_t TakeElement(HeapBlock* block) {
    std::uint64_t* const words = BitmapOf(block);
    std::uint32_t i = 0;
    while (~words[i] == 0) ++i;
    const std::uint64_t word = words[i];
    words[i] = word | (word + 1);
    ++block->m_used;
    return i * kWordBits + static_cast<std::uint32_t>(std::countr_one(word));
}

// Gives an element back; false when it is not in use.
bool GiveElement(HeapBlock* block, std::uint64_t index) {
    std::uint64_t& word = BitmapOf(block)[index / kWordBits];
    const std::uint64_t bit = std::uint64_t{1} << index % kWordBits;
    if ((word & bit) == 0) return false;
    word ^= bit;
    --block->m_used;
    return true;
}

// The inverse modulo 2^64 by Newton's iteration: each step doubles the number of right bits, 3 at the start.
std::uint64_t InverseOfOdd(std::uint64_t odd) {
    std::uint64_t inverse = odd;
    for (int i = 0; i < 5; ++i) inverse *= 2 - odd * inverse;
    return inverse;
}

// A new block: out of every list, no element in use.
void PrepareBlock(HeapBlock* block, std::uint32_t elements) {
    *block = HeapBlock{Unlisted(), Unlisted(), 0};
    std::uint64_t* const words = BitmapOf(block);
    const std::uint32_t count = WordCount(elements);
    std::fill_n(words, count, 0);
    if (elements % kWordBits != 0) words[count - 1] = ~std::uint64_t{0} << elements % kWordBits;
}

// Blocks that pools have forgotten, linked by their heads: kept for good, and in sight of leak checkers.
constinit std::atomic<HeapBlock*> g_forgotten{nullptr};

void Remember(HeapBlock* block) {
    HeapBlock* before = g_forgotten.load(std::memory_order_relaxed);
    do {
        block->m_next = before;
    } while (!g_forgotten.compare_exchange_weak(before, block, std::memory_order_release, std::memory_order_relaxed));
}

}  // namespace

BlockStruct::BlockStruct(std::uint32_t elementSize, std::uint32_t blockSize)
    : m_elementSize(std::max(elementSize, 4u)), m_blockSize(blockSize), m_large(blockSize >= kLargeBlock) {
    m_elementSize =
        static_cast<std::uint32_t>(std::min<std::uint64_t>((std::uint64_t{m_elementSize} + 3) & ~3ull, ~3u));
    std::uint32_t n = std::min(blockSize / m_elementSize, kMostElements);
    const std::uint64_t start = kHeader + DataOffset(m_elementSize, n);
    while (n != 0 && std::uint64_t{n} * m_elementSize + start > blockSize) --n;
    m_elementsPerBlock = static_cast<std::uint16_t>(n);
    m_bitmapSize = static_cast<std::uint16_t>(BitmapSize(n));
    m_dataOffset = static_cast<std::uint16_t>(DataOffset(m_elementSize, n));
}

Allocator::Allocator(std::uint32_t elementSize, tstype lock, std::uint32_t blockSize, Allocator* parent,
                     bool dedicateParent, bool isPrivate)
    : CCustomSync(lock),
      m_parent(parent),
      m_map(blockSize),
      m_geometry(elementSize, blockSize),
      m_evenBits(std::countr_zero(m_geometry.m_elementSize)),
      m_inverse(InverseOfOdd(m_geometry.m_elementSize >> m_evenBits)) {
    m_blocks.SetChunkSize(6);
    m_blocks.SetPrivate(isPrivate);
    if (m_parent && dedicateParent && !m_geometry.m_large) m_parent->Dedicate();
}

Allocator::~Allocator() {
    for (std::uint32_t i = m_blocks.Count(); i-- > 0;) Mem_Free(m_blocks[i]);
    Mem_Free(m_lastOf);
}

void* Allocator::Alloc() {
    const QuickGuard lock(*this);
    HeapBlock* const block = m_available ? m_available : ReserveBlock();
    if (!block) return nullptr;
    const std::uint32_t index = TakeElement(block);
    MoveBlockUp(block);
    return FirstElement(block) + std::size_t{index} * m_geometry.m_elementSize;
}

[[gnu::flatten]] void Allocator::Free(void* element) {
    const QuickGuard lock(*this);
    HeapBlock* const block = FindBlock(element);
    if (!block) return;
    const std::uint64_t index = ElementIndex(block, element);
    if (index < m_geometry.m_elementsPerBlock && GiveElement(block, index)) SetAvailable(block, true);
}

bool Allocator::Contains(const void* p) const {
    if (!p) return false;
    if (m_parent) {
        const QuickGuard parentLock(*m_parent);
        const bool inParent = m_parent->Contains(p);
        if (!inParent || m_parent->m_dedicated) return inParent;
    }
    const QuickGuard lock(*this);
    return FindBlock(p) != nullptr;
}

bool Allocator::Dedicate() {
    const QuickGuard lock(*this);
    const bool before = m_dedicated;
    m_dedicated = true;
    return !before;
}

void Allocator::Cleanup() {
    const QuickGuard lock(*this);
    for (HeapBlock* const block : m_blocks) Remember(block);
    m_blocks.Flush();
    m_map.Clear();
    m_available = nullptr;
    if (m_lastOf) std::fill_n(m_lastOf, m_geometry.m_elementsPerBlock, nullptr);
}

std::uint32_t Allocator::LiveCount() const {
    const QuickGuard lock(*this);
    std::uint64_t live = 0;
    for (const HeapBlock* const block : m_blocks) live += block->m_used;
    return static_cast<std::uint32_t>(live);
}

[[gnu::noinline, gnu::cold]] HeapBlock* Allocator::ReserveBlock() {
    if (m_geometry.m_elementsPerBlock == 0) return nullptr;
    if (!m_lastOf) {
        m_lastOf = static_cast<HeapBlock**>(Mem_Calloc(m_geometry.m_elementsPerBlock, sizeof(HeapBlock*)));
        if (!m_lastOf) return nullptr;
    }
    auto* const block = static_cast<HeapBlock*>(Mem_Malloc(m_geometry.m_blockSize));
    if (!block) return nullptr;
    PrepareBlock(block, m_geometry.m_elementsPerBlock);
    if (m_blocks.Insert(block, FindHeapIndex(block, true)) < 0) {
        Mem_Free(block);
        return nullptr;
    }
    m_map.Add(m_blocks, block);
    AddToAvailable(block);
    return block;
}

void Allocator::ReleaseBlock(HeapBlock* block, std::uint32_t index) {
    m_blocks.DeleteAt(index);
    m_map.Remove(block);
    Mem_Free(block);
}

[[gnu::noinline, gnu::cold]] void Allocator::UnlinkBlock(HeapBlock* block) {
    RemoveFromAvailable(block);
    ReleaseBlock(block, FindHeapIndex(block, false));
}

// A second empty block goes back to the heap. Empty blocks stand last, so it is the successor of the one just emptied.
void Allocator::TryUnlinkBlock(HeapBlock* block) {
    if (block->m_used == 0 && block->m_next && block->m_next->m_used == 0) UnlinkBlock(block->m_next);
}

// Puts a block at the head, where the fullest belong: one that was full until now, or the only one.
void Allocator::AddToAvailable(HeapBlock* block) {
    block->m_previous = nullptr;
    block->m_next = m_available;
    if (m_available) m_available->m_previous = block;
    m_available = block;
    if (!m_lastOf[block->m_used]) m_lastOf[block->m_used] = block;
}

void Allocator::RemoveFromAvailable(HeapBlock* block) {
    HeapBlock* const previous = block->m_previous;
    if (m_lastOf[block->m_used] == block) {
        m_lastOf[block->m_used] = previous && previous->m_used == block->m_used ? previous : nullptr;
    }
    (previous ? previous->m_next : m_available) = block->m_next;
    if (block->m_next) block->m_next->m_previous = previous;
    block->m_next = block->m_previous = Unlisted();
}

void Allocator::SetAvailable(HeapBlock* block, bool available) {
    if (!available) {
        if (IsListed(block)) RemoveFromAvailable(block);
    } else if (!IsListed(block)) {
        AddToAvailable(block);
    } else {
        MoveBlockDown(block);
    }
    if (available) TryUnlinkBlock(block);
}

// The head of the list, the fullest block, has gained an element: it stays where it is, or is full and leaves the list.
void Allocator::MoveBlockUp(HeapBlock* block) {
    if (m_lastOf[block->m_used - 1] == block) m_lastOf[block->m_used - 1] = nullptr;
    if (block->m_used == m_geometry.m_elementsPerBlock) {
        m_available = block->m_next;
        if (m_available) m_available->m_previous = nullptr;
        block->m_next = block->m_previous = Unlisted();
    } else {
        m_lastOf[block->m_used] = block;
    }
}

// A block in the list has lost an element: it moves behind the last block that still has as many as it had.
void Allocator::MoveBlockDown(HeapBlock* block) {
    const std::uint64_t used = block->m_used;
    HeapBlock* const last = m_lastOf[used + 1];
    if (last == block) {
        HeapBlock* const previous = block->m_previous;
        m_lastOf[used + 1] = previous && previous->m_used == used + 1 ? previous : nullptr;
    } else {
        (block->m_previous ? block->m_previous->m_next : m_available) = block->m_next;
        block->m_next->m_previous = block->m_previous;
        block->m_previous = last;
        block->m_next = last->m_next;
        if (last->m_next) last->m_next->m_previous = block;
        last->m_next = block;
    }
    if (!m_lastOf[used]) m_lastOf[used] = block;
}

// Index of the first block above `p`, or for a look-up the one before it: the block that may hold `p` (all bits set
// when `p` lies below every block).
[[gnu::noinline]] std::uint32_t Allocator::FindHeapIndex(const void* p, bool forInsert) const {
    const auto address = reinterpret_cast<std::uintptr_t>(p);
    HeapBlock* const* const blocks = m_blocks.Data();
    std::uint32_t above = 0;
    std::uint32_t n = m_blocks.Count();
    while (n != 0) {
        const std::uint32_t half = (n + 1) / 2;
        const bool higher = reinterpret_cast<std::uintptr_t>(blocks[above + half - 1]) <= address;
        above += half & (0 - static_cast<std::uint32_t>(higher));  // no branch: its outcome is a coin toss
        n -= half;
    }
    return forInsert ? above : above - 1;
}

// The block that holds `p`, null when none does.
HeapBlock* Allocator::FindBlock(const void* p) const {
    const auto address = reinterpret_cast<std::uintptr_t>(p);
    const HeapBlock* block = nullptr;
    if (m_map.IsThere()) [[likely]] {
        block = m_map.Find(address);
    } else {
        const std::uint32_t index = FindHeapIndex(p, false);
        if (index < m_blocks.Count()) block = m_blocks[index];
    }
    const bool holds = address - reinterpret_cast<std::uintptr_t>(block) < m_geometry.m_blockSize;
    return holds ? const_cast<HeapBlock*>(block) : nullptr;
}

unsigned char* Allocator::FirstElement(HeapBlock* block) const {
    return reinterpret_cast<unsigned char*>(block + 1) + m_geometry.m_dataOffset;
}

// Index of the element that starts at `p`; at least the number of elements when none does. Multiplied by the inverse of
// the size's odd part modulo 2^64, then turned by its even part, a multiple of the size gives the quotient and any
// other number something larger than every quotient (Granlund and Montgomery 1994, section 9).
std::uint64_t Allocator::ElementIndex(HeapBlock* block, const void* p) const {
    const std::uint64_t offset =
        reinterpret_cast<std::uintptr_t>(p) - reinterpret_cast<std::uintptr_t>(FirstElement(block));
    return std::rotr(offset * m_inverse, m_evenBits);
}

}  // namespace dorvutil
