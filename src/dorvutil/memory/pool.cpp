#include "dorvutil/memory/pool.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstring>
#include <limits>

#include "dorvutil/memory/heap.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kLargeBlock = 0x200000;
constexpr std::uint32_t kMostElements = std::numeric_limits<std::uint16_t>::max();

// Up to this block size the multiplication in ElementIndex is exact and fits 64 bits.
constexpr std::uint32_t kReciprocalLimit = 0x100000;
constexpr unsigned kReciprocalShift = 40;

HeapBlock* Unlisted() { return reinterpret_cast<HeapBlock*>(~std::uintptr_t{0}); }

bool IsListed(const HeapBlock* block) { return block->m_next != Unlisted(); }

unsigned char* BitmapOf(const HeapBlock* block) {
    return reinterpret_cast<unsigned char*>(const_cast<HeapBlock*>(block)) + HeapBlock::kHeaderBytes;
}

std::uint32_t BitmapSize(std::uint32_t elements) { return (((elements + 7) / 8 + 1) & ~3u) + 2; }

std::uint32_t DataOffset(std::uint32_t elementSize, std::uint32_t bitmapSize) {
    const std::uint32_t alignment = elementSize % 16 == 0 ? 16 : elementSize % 8 == 0 ? 8 : 4;
    const auto header = static_cast<std::uint32_t>(HeapBlock::kHeaderBytes);
    return (header + bitmapSize + alignment - 1) / alignment * alignment - header;
}

std::uint64_t LoadWord(const unsigned char* at) {
    std::uint64_t word = 0;
    std::memcpy(&word, at, sizeof(word));
    return word;
}

void StoreWord(unsigned char* at, std::uint64_t word) { std::memcpy(at, &word, sizeof(word)); }

// Holds a pool's lock for a scope, past the virtual call: pools are entered at a high rate.
class Guard {
public:
    explicit Guard(const CCustomSync& lock) : m_lock(lock) { m_lock.CCustomSync::Enter(); }
    ~Guard() { m_lock.CCustomSync::Exit(); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

private:
    const CCustomSync& m_lock;
};

// Blocks that pools have forgotten, linked by their heads: kept for good, and in sight of leak checkers.
constinit std::atomic<HeapBlock*> g_forgotten{nullptr};

void Remember(HeapBlock* block) {
    HeapBlock* before = g_forgotten.load(std::memory_order_relaxed);
    do {
        block->m_next = before;
    } while (!g_forgotten.compare_exchange_weak(before, block, std::memory_order_release, std::memory_order_relaxed));
}

static_assert(std::endian::native == std::endian::little, "bits are counted through 64-bit words");

// The bitmap is read and written in words of 64 bits, always the same ones: bytes written one by one would have to
// reach the cache before a word over them could be read back. The last word ends with the bitmap, and its low bits
// repeat bits of the word before or, in a short bitmap, bytes of the head: the used count, which then changes with the
// same store.
class BitmapWords {
public:
    explicit BitmapWords(std::uint32_t bitmapSize)
        : m_size(bitmapSize), m_wholeWords(bitmapSize / 8), m_tailShift(64 - bitmapSize % 8 * 8) {}

    // Takes the lowest free element of a block that has one; returns its index.
    std::uint32_t Take(HeapBlock* block) const {
        unsigned char* at = BitmapOf(block);
        for (std::uint32_t i = 0; i < m_wholeWords; ++i, at += 8) {
            const std::uint64_t word = LoadWord(at);
            if (~word == 0) continue;
            ++block->m_used;
            StoreWord(at, word | (word + 1));
            return i * 64 + static_cast<std::uint32_t>(std::countr_zero(~word));
        }
        at = LastWord(block);
        const std::uint64_t word = LoadWord(at);
        const std::uint64_t clear = ~word >> m_tailShift << m_tailShift;
        StoreWord(at, (word | (clear & (0 - clear))) + UsedStep(block, 1));
        return m_wholeWords * 64 + static_cast<std::uint32_t>(std::countr_zero(clear)) - m_tailShift;
    }

    // Gives an element back; false when it is not in use.
    bool Give(HeapBlock* block, std::uint32_t index) const {
        const bool last = index / 64 == m_wholeWords;
        unsigned char* const at = last ? LastWord(block) : BitmapOf(block) + std::size_t{index / 64} * 8;
        const std::uint64_t bit = std::uint64_t{1} << (index % 64 + (last ? m_tailShift : 0));
        const std::uint64_t word = LoadWord(at);
        if ((word & bit) == 0) return false;
        StoreWord(at, (word ^ bit) + UsedStep(block, -1));
        return true;
    }

private:
    unsigned char* LastWord(HeapBlock* block) const { return BitmapOf(block) + std::ptrdiff_t{m_size} - 8; }

    // Changes the used count, or returns what to add to the word that holds it.
    std::uint64_t UsedStep(HeapBlock* block, std::int32_t step) const {
        if (m_wholeWords == 0) return static_cast<std::uint64_t>(std::int64_t{step}) << (m_tailShift - 16);
        block->m_used = static_cast<std::uint16_t>(block->m_used + step);
        return 0;
    }

    std::uint32_t m_size;  // 2 more than a multiple of 4: the last word always holds some bits of its own
    std::uint32_t m_wholeWords;
    std::uint32_t m_tailShift;  // bits of the last word that are not its own
};

}  // namespace

BlockStruct::BlockStruct(std::uint32_t elementSize, std::uint32_t blockSize)
    : m_elementSize(std::max(elementSize, 4u)), m_blockSize(blockSize), m_large(blockSize >= kLargeBlock) {
    m_elementSize =
        static_cast<std::uint32_t>(std::min<std::uint64_t>((std::uint64_t{m_elementSize} + 3) & ~3ull, ~3u));
    std::uint32_t n = std::min(blockSize / m_elementSize, kMostElements);
    const auto header = static_cast<std::uint32_t>(HeapBlock::kHeaderBytes);
    const std::uint64_t start = header + DataOffset(m_elementSize, BitmapSize(n));
    while (n != 0 && std::uint64_t{n} * m_elementSize + start > blockSize) --n;
    m_elementsPerBlock = static_cast<std::uint16_t>(n);
    m_bitmapSize = static_cast<std::uint16_t>(BitmapSize(n));
    m_dataOffset = static_cast<std::uint16_t>(DataOffset(m_elementSize, m_bitmapSize));
}

Allocator::Allocator(std::uint32_t elementSize, tstype lock, std::uint32_t blockSize, Allocator* parent,
                     bool dedicateParent, bool isPrivate)
    : CCustomSync(lock), m_parent(parent), m_geometry(elementSize, blockSize), m_reciprocal(0) {
    m_blocks.SetChunkSize(6);
    m_blocks.SetPrivate(isPrivate);
    if (blockSize <= kReciprocalLimit) {
        m_reciprocal = (std::uint64_t{1} << kReciprocalShift) / m_geometry.m_elementSize + 1;
    }
    if (m_parent && dedicateParent && !m_geometry.m_large) m_parent->Dedicate();
}

Allocator::~Allocator() {
    for (std::uint32_t i = m_blocks.Count(); i-- > 0;) Mem_Free(m_blocks[i]);
    Mem_Free(m_lastOf);
}

void* Allocator::Alloc() {
    const Guard lock(*this);
    HeapBlock* const block = m_available ? m_available : ReserveBlock();
    if (!block) return nullptr;
    const std::uint32_t index = BitmapWords(m_geometry.m_bitmapSize).Take(block);
    ++m_live;
    MoveBlockUp(block);
    return BitmapOf(block) + m_geometry.m_dataOffset + std::size_t{index} * m_geometry.m_elementSize;
}

void Allocator::Free(void* element) {
    const Guard lock(*this);
    HeapBlock* const block = FindBlock(element);
    if (!block) return;
    const std::uint32_t index = ElementIndex(block, element);
    if (index >= m_geometry.m_elementsPerBlock) return;
    if (!BitmapWords(m_geometry.m_bitmapSize).Give(block, index)) return;
    --m_live;
    SetAvailable(block, true);
}

bool Allocator::Contains(const void* p) const {
    if (!p) return false;
    if (m_parent) {
        const Guard parentLock(*m_parent);
        const bool inParent = m_parent->Contains(p);
        if (!inParent || m_parent->m_dedicated) return inParent;
    }
    const Guard lock(*this);
    return FindBlock(p) != nullptr;
}

bool Allocator::Dedicate() {
    const Guard lock(*this);
    const bool before = m_dedicated;
    m_dedicated = true;
    return !before;
}

void Allocator::Cleanup() {
    const Guard lock(*this);
    for (HeapBlock* const block : m_blocks) Remember(block);
    m_blocks.Flush();
    m_available = nullptr;
    m_live = 0;
    if (m_lastOf) std::fill_n(m_lastOf, m_geometry.m_elementsPerBlock, nullptr);
}

std::uint32_t Allocator::LiveCount() const {
    const Guard lock(*this);
    return m_live;
}

HeapBlock* Allocator::ReserveBlock() {
    if (m_geometry.m_elementsPerBlock == 0) return nullptr;
    if (!m_lastOf) {
        m_lastOf = static_cast<HeapBlock**>(Mem_Calloc(m_geometry.m_elementsPerBlock, sizeof(HeapBlock*)));
        if (!m_lastOf) return nullptr;
    }
    auto* const block = static_cast<HeapBlock*>(Mem_Malloc(m_geometry.m_blockSize));
    if (!block) return nullptr;
    std::memset(static_cast<void*>(block), 0, HeapBlock::kHeaderBytes + m_geometry.m_bitmapSize);
    block->m_next = block->m_previous = Unlisted();
    if (m_blocks.Insert(block, FindHeapIndex(block, true)) < 0) {
        Mem_Free(block);
        return nullptr;
    }
    MeasureSpacing();
    AddToAvailable(block);
    return block;
}

// What FindBlock guesses with.
void Allocator::MeasureSpacing() {
    const std::uint32_t last = m_blocks.Count() - 1;
    const auto span = reinterpret_cast<std::uintptr_t>(m_blocks[last]) - reinterpret_cast<std::uintptr_t>(m_blocks[0]);
    m_indexPerByte = last == 0 ? 0.0 : static_cast<double>(last) / static_cast<double>(span);
}

void Allocator::ReleaseBlock(HeapBlock* block, std::uint32_t index) {
    m_blocks.DeleteAt(index);
    Mem_Free(block);
    MeasureSpacing();
}

void Allocator::UnlinkBlock(HeapBlock* block) {
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
    const std::uint32_t used = block->m_used;
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
std::uint32_t Allocator::FindHeapIndex(const void* p, bool forInsert) const {
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

HeapBlock* Allocator::FindBlock(const void* p) const {
    const std::uint32_t count = m_blocks.Count();
    if (count == 0) return nullptr;
    HeapBlock* const* const blocks = m_blocks.Data();
    const auto address = reinterpret_cast<std::uintptr_t>(p);
    const auto offset = [address](const HeapBlock* block) { return address - reinterpret_cast<std::uintptr_t>(block); };
    const std::uint32_t size = m_geometry.m_blockSize;

    // Blocks mostly stand side by side, so that the place of the address between the lowest and the highest block tells
    // the index, give or take one. Elsewhere the bisection finds it.
    const double distance = static_cast<double>(static_cast<std::int64_t>(offset(blocks[0])));
    const auto guess = static_cast<std::uint64_t>(static_cast<std::int64_t>(distance * m_indexPerByte));
    std::uint32_t index = guess < count ? static_cast<std::uint32_t>(guess) : count - 1;
    if (offset(blocks[index]) >= size) {
        const std::uint32_t beside = address < reinterpret_cast<std::uintptr_t>(blocks[index]) ? index - 1 : index + 1;
        index = beside < count && offset(blocks[beside]) < size ? beside : FindHeapIndex(p, false);
        if (index >= count || offset(blocks[index]) >= size) return nullptr;
    }
    return blocks[index];
}

// Index of the element that starts at `p`; at least the number of elements when none does.
std::uint32_t Allocator::ElementIndex(const HeapBlock* block, const void* p) const {
    const auto start = reinterpret_cast<std::uintptr_t>(BitmapOf(block)) + m_geometry.m_dataOffset;
    const auto address = reinterpret_cast<std::uintptr_t>(p);
    if (address < start) return kMostElements;
    const std::uint64_t offset = address - start;
    const std::uint64_t index =
        m_reciprocal != 0 ? offset * m_reciprocal >> kReciprocalShift : offset / m_geometry.m_elementSize;
    return index * m_geometry.m_elementSize == offset ? static_cast<std::uint32_t>(index) : kMostElements;
}

}  // namespace dorvutil
