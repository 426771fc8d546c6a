#include "dorvutil/memory/pool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <list>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "memory/failing_heap.h"

namespace dorvutil {
namespace {

std::uintptr_t AddressOf(const void* p) { return reinterpret_cast<std::uintptr_t>(p); }

TEST(PoolGeometry, FitsHeaderBitmapAndElements) {
    static constexpr struct {
        std::uint32_t size, block, rounded, perBlock;
        bool large;
    } kCases[] = {
        {92, 4096, 92, 44, false},     {16, 4096, 16, 252, false},    {1, 4096, 4, 986, false},
        {0, 4096, 4, 986, false},      {90, 4096, 92, 44, false},     {4096, 4096, 4096, 0, false},
        {2000, 4096, 2000, 2, false},  {100, 0, 100, 0, false},       {0xFFFFFFFFu, 4096, 0xFFFFFFFCu, 0, false},
        {4, 0x200000, 4, 65535, true}, {8, 0x1FFFFF, 8, 65535, false}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.size << " in " << c.block);
        const BlockStruct geometry(c.size, c.block);
        EXPECT_EQ(geometry.m_elementSize, c.rounded);
        EXPECT_EQ(geometry.m_elementsPerBlock, c.perBlock);
        EXPECT_EQ(geometry.m_large, c.large);
        EXPECT_GE(geometry.m_bitmapSize * 8, geometry.m_elementsPerBlock);
        EXPECT_GE(geometry.m_dataOffset, geometry.m_bitmapSize);
        if (c.perBlock == 0) continue;
        EXPECT_LE(sizeof(HeapBlock) + geometry.m_dataOffset +
                      std::uint64_t{geometry.m_elementsPerBlock} * geometry.m_elementSize,
                  c.block);
    }
}

TEST(PoolBlocks, TheFortyFifthElementNeedsASecondBlock) {
    Allocator pool(92, ts_critSec, 4096);
    const FailingHeap heap(0);
    std::vector<void*> elements;
    while (elements.size() < 44) elements.push_back(pool.Alloc());
    const int before = FailingHeap::Calls();
    EXPECT_EQ(AddressOf(elements[43]) - AddressOf(elements[0]), 43u * 92);
    elements.push_back(pool.Alloc());
    EXPECT_EQ(FailingHeap::Calls(), before + 1);
    EXPECT_EQ(pool.LiveCount(), 45u);
    for (void* const element : elements) {
        EXPECT_TRUE(pool.Contains(element));
        pool.Free(element);
    }
    EXPECT_EQ(pool.Contains(elements[0]) + pool.Contains(elements[44]), 1) << "one empty block stays, one goes";
}

TEST(PoolFree, IgnoresWhatIsNoElementInUse) {
    Allocator pool(92, ts_critSec, 4096);
    std::vector<char*> elements;
    for (int i = 0; i < 44; ++i) elements.push_back(static_cast<char*>(pool.Alloc()));
    pool.Free(nullptr);
    pool.Free(&pool);
    pool.Free(elements[3] + 4);
    pool.Free(elements[0] - 1);
    pool.Free(elements[43] + 92);
    pool.Free(reinterpret_cast<void*>(~std::uintptr_t{0}));
    EXPECT_EQ(pool.LiveCount(), 44u);
    pool.Free(elements[7]);
    pool.Free(elements[7]);
    EXPECT_EQ(pool.LiveCount(), 43u);
    EXPECT_EQ(pool.Alloc(), elements[7]);
    EXPECT_NE(pool.Alloc(), nullptr) << "a full block offered again would yield nothing";
    EXPECT_EQ(pool.LiveCount(), 45u);
}

TEST(PoolFailure, NoMemoryGivesNullAndThePoolGoesOn) {
    for (int failing = 1; failing <= 3; ++failing) {
        SCOPED_TRACE(failing);
        Allocator pool(92, ts_critSec, 4096);
        {
            const FailingHeap heap(failing);
            EXPECT_EQ(pool.Alloc(), nullptr);
        }
        void* const p = pool.Alloc();
        EXPECT_NE(p, nullptr);
        EXPECT_TRUE(pool.Contains(p));
    }
    Allocator tooSmall(4096, ts_critSec, 4096);
    const FailingHeap heap(0);
    EXPECT_EQ(tooSmall.Alloc(), nullptr);
    EXPECT_EQ(FailingHeap::Calls(), 0);
}

TEST(PoolParent, IsAskedFirst) {
    static constexpr struct {
        const char* name;
        bool dedicated, inParent, inChild, contains;
    } kCases[] = {{"nowhere", false, false, false, false},
                  {"open parent that has it not", false, false, true, false},
                  {"open parent that has it", false, true, false, false},
                  {"dedicated parent that has it not", true, false, true, false},
                  {"dedicated parent that has it", true, true, false, true}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Allocator parent(4000, ts_critSec, 4096), child(92, ts_critSec, 4096, &parent, c.dedicated);
        void* const p = c.inParent ? parent.Alloc() : c.inChild ? child.Alloc() : nullptr;
        EXPECT_EQ(child.Contains(p), c.contains);
        EXPECT_EQ(parent.Dedicate(), !c.dedicated) << "only the first call finds it free";
        EXPECT_EQ(child.Contains(p), c.inParent) << "dedicated now";
    }
}

TEST(PoolCleanup, ForgetsItsBlocks) {
    auto pool = std::make_unique<Allocator>(92, ts_critSec, 4096);
    char* const p = static_cast<char*>(pool->Alloc());
    pool->Cleanup();
    EXPECT_FALSE(pool->Contains(p));
    EXPECT_EQ(pool->LiveCount(), 0u);
    void* const q = pool->Alloc();
    EXPECT_NE(q, nullptr);
    pool.reset();
    std::memset(p, 1, 92);  // its element stays valid
}

// What a pool must do, written as plainly as possible: the available blocks in a list that is walked step by step.
class PoolModel {
public:
    struct Block {
        std::vector<bool> m_bits;
        std::uint32_t m_used = 0;
        char* m_base = nullptr;  // where the real pool put element 0, once it is known
    };

    explicit PoolModel(std::uint32_t elementsPerBlock) : m_perBlock(elementsPerBlock) {}

    std::pair<Block*, std::uint32_t> Alloc() {
        if (m_available.empty()) {
            m_blocks.push_back(std::make_unique<Block>());
            m_blocks.back()->m_bits.assign(m_perBlock, false);
            m_available.push_front(m_blocks.back().get());
        }
        Block* const block = m_available.front();
        const auto bit = std::find(block->m_bits.begin(), block->m_bits.end(), false);
        *bit = true;
        if (++block->m_used == m_perBlock) m_available.pop_front();
        return {block, static_cast<std::uint32_t>(bit - block->m_bits.begin())};
    }

    void Free(Block* block, std::uint32_t index) {
        block->m_bits[index] = false;
        --block->m_used;
        auto at = std::find(m_available.begin(), m_available.end(), block);
        if (at == m_available.end()) {
            m_available.push_front(block);
            at = m_available.begin();
        }
        while (std::next(at) != m_available.end() && (*std::next(at))->m_used > block->m_used) {
            std::iter_swap(at, std::next(at));
            ++at;
        }
        const auto next = std::next(at);
        if (block->m_used != 0 || next == m_available.end() || (*next)->m_used != 0) return;
        std::erase_if(m_blocks, [released = *next](const auto& owned) { return owned.get() == released; });
        m_available.erase(next);
    }

    std::size_t BlockCount() const { return m_blocks.size(); }

private:
    std::uint32_t m_perBlock;
    std::vector<std::unique_ptr<Block>> m_blocks;
    std::list<Block*> m_available;
};

struct Live {
    PoolModel::Block* m_block;
    std::uint32_t m_index;
    char* m_address;
};

void AllocateAsModel(Allocator& pool, PoolModel& model, std::vector<Live>& live) {
    const auto [block, index] = model.Alloc();
    char* const p = static_cast<char*>(pool.Alloc());
    if (!block->m_base) block->m_base = p - std::size_t{index} * pool.ElemSize();
    ASSERT_EQ(p, block->m_base + std::size_t{index} * pool.ElemSize());
    ASSERT_EQ(AddressOf(p) % std::min(pool.ElemSize() & (0u - pool.ElemSize()), 16u), 0u) << "alignment";
    std::memset(p, 0xFF, pool.ElemSize());  // must spoil no bookkeeping
    live.push_back({block, index, p});
}

TEST(PoolModelled, TakesExactlyTheElementsItShould) {
    static constexpr struct {
        std::uint32_t size, block;
    } kCases[] = {{92, 4096}, {12, 256}, {200, 480}, {40, 200}, {8, 0x200000}, {64, 700}};
    const std::uint32_t seed = std::random_device{}();
    std::mt19937 random(seed);
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.size << " in " << c.block << ", seed " << seed);
        Allocator pool(c.size, ts_nullSync, c.block);
        PoolModel model(BlockStruct(c.size, c.block).m_elementsPerBlock);
        std::vector<Live> live;
        for (int phase = 0; phase < 8; ++phase) {
            for (int step = 0; step < 500; ++step) {
                if (live.empty() || random() % 10 < (phase % 2 == 0 ? 7u : 3u)) {
                    ASSERT_NO_FATAL_FAILURE(AllocateAsModel(pool, model, live));
                    continue;
                }
                std::swap(live[random() % live.size()], live.back());
                pool.Free(live.back().m_address);
                model.Free(live.back().m_block, live.back().m_index);
                live.pop_back();
            }
            ASSERT_EQ(pool.LiveCount(), live.size());
        }
        for (const auto& element : live) pool.Free(element.m_address);
        EXPECT_EQ(pool.LiveCount(), 0u);
    }
}

TEST(PoolThreads, NoElementIsHandedOutTwice) {
    static constexpr int kThreads = 4, kRounds = 4000;
    Allocator pool(92, ts_critSec, 4096);
    std::vector<std::thread> threads;
    std::atomic<int> torn{0};
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            std::mt19937 random(static_cast<unsigned>(t));
            std::vector<std::uint32_t*> mine;
            for (std::uint32_t i = 0; i < kRounds; ++i) {
                if (mine.empty() || random() % 2 == 0) {
                    mine.push_back(static_cast<std::uint32_t*>(pool.Alloc()));
                    mine.back()[0] = mine.back()[22] = i * kThreads + static_cast<std::uint32_t>(t);
                    continue;
                }
                std::swap(mine[random() % mine.size()], mine.back());
                torn += mine.back()[0] != mine.back()[22] || mine.back()[0] % kThreads != static_cast<unsigned>(t);
                pool.Free(mine.back());
                mine.pop_back();
            }
            for (auto* const element : mine) pool.Free(element);
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(pool.LiveCount(), 0u);
}

}  // namespace
}  // namespace dorvutil
