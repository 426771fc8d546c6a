#include "dorvutil/memory/dlmalloc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "dorvutil/memory/dl_checks.h"
#include "dorvutil/memory/dl_mapped.h"
#include "dorvutil/platform/pages.h"

namespace dorvutil {
namespace {

constexpr std::size_t kMiB = 1 << 20;
constexpr std::size_t kMax = std::numeric_limits<std::size_t>::max();
constexpr dl::HeapReport (*kCheck)() = dl::CheckSharedHeap;

unsigned Seed() { return static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()) + 1; }

void Fill(void* p, std::size_t size) {
    std::memset(p, static_cast<int>((reinterpret_cast<std::uintptr_t>(p) >> 4 ^ size) & 0xFF), size);
}

bool IsFilled(const void* p, std::size_t size, const void* filledAt, std::size_t filledSize) {
    const auto expected = static_cast<unsigned char>(reinterpret_cast<std::uintptr_t>(filledAt) >> 4 ^ filledSize);
    const auto* const bytes = static_cast<const unsigned char*>(p);
    return size == 0 || (bytes[0] == expected && std::memcmp(bytes, bytes + 1, size - 1) == 0);
}

// A block that knows its content.
struct Block {
    void* m_at = nullptr;
    std::size_t m_size = 0;

    void Take(std::size_t size) {
        m_at = dlmalloc(m_size = size);
        ASSERT_NE(m_at, nullptr);
        Fill(m_at, size);
    }
    void Resize(std::size_t size) {
        void* const resized = dlrealloc(m_at, size);
        ASSERT_NE(resized, nullptr);
        EXPECT_TRUE(IsFilled(resized, std::min(size, m_size), m_at, m_size)) << m_size << " to " << size;
        m_at = resized;
        Fill(m_at, m_size = size);
    }
    void Give() {
        EXPECT_TRUE(IsFilled(m_at, m_size, m_at, m_size)) << m_size;
        dlfree(m_at);
        m_at = nullptr;
    }
};

// Sizes of all magnitudes up to 512 KiB, small ones more often.
std::size_t AnySize(std::mt19937& random) { return random() % (std::size_t{1} << random() % 20); }

struct Refusal {
    Refusal() { platform::RefusePages(true); }
    ~Refusal() { platform::RefusePages(false); }
};

TEST(DlMalloc, BlocksAreAlignedApartAndFullyUsable) {
    std::vector<Block> blocks;
    for (std::size_t power = 1; power <= 2 * kMiB; power *= 2) {
        for (const std::size_t size : {power - 1, power, power + 1, power + power / 2}) {
            blocks.emplace_back().Take(size);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(blocks.back().m_at) % (2 * sizeof(void*)), 0u) << size;
        }
    }
    EXPECT_STREQ(kCheck().m_fault, nullptr);
    for (Block& block : blocks) block.Give();
    dlfree(nullptr);
    EXPECT_STREQ(kCheck().m_fault, nullptr);
}

TEST(DlMalloc, RandomChurnKeepsContentAndOrder) {
    SCOPED_TRACE("seed " + std::to_string(Seed()));
    std::mt19937 random(Seed());
    std::array<Block, 1500> blocks;
    for (int step = 0; step < 60000; ++step) {
        Block& block = blocks[random() % blocks.size()];
        if (!block.m_at) {
            block.Take(AnySize(random));
        } else if (random() % 4 == 0) {
            block.Resize(random() % 2 ? block.m_size + random() % 64 : AnySize(random));
        } else {
            block.Give();
        }
        if (step % 3000 == 0) {
            ASSERT_STREQ(kCheck().m_fault, nullptr) << step;
        }
    }
    const std::size_t used = kCheck().m_chunksInUse;
    EXPECT_GT(used, 100u);
    for (Block& block : blocks) {
        if (block.m_at) block.Give();
    }
    EXPECT_STREQ(kCheck().m_fault, nullptr);
    EXPECT_LT(kCheck().m_chunksInUse, used);
}

TEST(DlMalloc, ThreadsPassBlocksToEachOther) {
    const std::size_t usedBefore = kCheck().m_chunksInUse;
    std::array<std::atomic<unsigned char*>, 200> slots{};
    std::atomic<int> damaged{0};
    // A block holds its size and then as many bytes of its low part.
    const auto check = [&damaged](unsigned char* p) {
        std::uint32_t size = 0;
        std::memcpy(&size, p, sizeof(size));
        if (std::count(p + 4, p + size, static_cast<unsigned char>(size)) != size - 4) ++damaged;
        dlfree(p);
    };
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 4; ++t) {
        threads.emplace_back([&slots, &check, t] {
            std::mt19937 random(t);
            for (int step = 0; step < 15000; ++step) {
                const auto size = static_cast<std::uint32_t>(4 + random() % (random() % 500 ? 2000 : 300000));
                auto* p = static_cast<unsigned char*>(dlrealloc(dlmalloc(4), size));
                std::memcpy(p, &size, sizeof(size));
                std::memset(p + 4, static_cast<unsigned char>(size), size - 4);
                if ((p = slots[random() % slots.size()].exchange(p))) check(p);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (auto& slot : slots) {
        if (unsigned char* const p = slot.load()) check(p);
    }
    EXPECT_EQ(damaged, 0);
    EXPECT_STREQ(kCheck().m_fault, nullptr);
    EXPECT_EQ(kCheck().m_chunksInUse, usedBefore);
}

TEST(DlRealloc, KeepsContentBetweenAllKindsOfBlocks) {
    const std::size_t sizes[] = {0, 24, 25, 1000, 5000, 100'000, 262'144, 300'000, 1'000'000, 5'000'000};
    for (const std::size_t from : sizes) {
        for (const std::size_t to : sizes) {
            Block block, behind;
            block.Take(from);
            behind.Take(100);  // in the way, or not
            if (to % 1000 == 0) behind.Give();
            block.Resize(to);
            if (behind.m_at) behind.Give();
            block.Give();
        }
    }
    void* const p = dlrealloc(nullptr, 10);
    EXPECT_EQ(dlrealloc(p, 0), p) << "the smallest block stays";
    dlfree(p);
    EXPECT_STREQ(kCheck().m_fault, nullptr);
}

TEST(DlMalloc, ImpossibleSizesGiveNull) {
    Block block;
    block.Take(100);
    for (const std::size_t size : {kMax, kMax - 1, kMax - 15, kMax - 4096, kMax - kMiB, kMax / 2 + 1, kMax / 2,
                                   kMax / 2 - 16 * kMiB, kMax / 4}) {
        EXPECT_EQ(dlmalloc(size), nullptr) << size;
        EXPECT_EQ(dlrealloc(block.m_at, size), nullptr) << size;
        EXPECT_EQ(dlrealloc(nullptr, size), nullptr) << size;
    }
    block.Give();
}

TEST(DlMalloc, ASystemWithoutMemoryLeavesTheHeapWhole) {
    Block small, mapped;
    small.Take(100);
    mapped.Take(65 * kMiB);  // more than any segment can have
    std::vector<void*> taken;
    {
        const Refusal refusal;
        EXPECT_EQ(dlmalloc(65 * kMiB), nullptr);
        EXPECT_EQ(dlrealloc(mapped.m_at, 66 * kMiB), nullptr);
        while (void* const p = dlmalloc(1000)) taken.push_back(p);
        EXPECT_EQ(dlrealloc(small.m_at, 70'000), nullptr);
        EXPECT_EQ(dlrealloc(mapped.m_at, 90'000), mapped.m_at) << "shrinking never fails";
        EXPECT_STREQ(kCheck().m_fault, nullptr);
    }
    for (void* const p : taken) dlfree(p);
    EXPECT_TRUE(IsFilled(mapped.m_at, 90'000, mapped.m_at, mapped.m_size));
    dlfree(mapped.m_at);
    small.Give();
    EXPECT_STREQ(kCheck().m_fault, nullptr);
}

TEST(DlMalloc, UnusedMemoryGoesBackToTheSystem) {
    for (const std::size_t size : {std::size_t{1000}, std::size_t{200'000}, 3 * kMiB}) {
        SCOPED_TRACE(size);
        const std::size_t before = platform::CommittedBytes();
        std::vector<void*> taken;
        for (std::size_t sum = 0; sum < 200 * kMiB; sum += size) taken.push_back(dlmalloc(size));
        EXPECT_GT(platform::CommittedBytes(), before + 190 * kMiB);
        std::shuffle(taken.begin(), taken.end(), std::mt19937(1));
        for (void* const p : taken) dlfree(p);
        EXPECT_LE(platform::CommittedBytes(), before + 2 * kMiB + dl::kStep);
        EXPECT_STREQ(kCheck().m_fault, nullptr);
        EXPECT_LE(kCheck().m_segments, 2u);  // where blocks of other tests live, and the newest
    }
}

struct OwnHeap : testing::TestWithParam<std::size_t> {
    dl::Chunk* Take(std::size_t size) {
        dl::Chunk* const chunk = m_heap->Take(size);
        return chunk ? chunk : m_heap->TakeNew(size);
    }
    dl::HeapReport Check() const {
        const dl::HeapReport report = dl::CheckHeap(*m_heap);
        EXPECT_STREQ(report.m_fault, nullptr);
        return report;
    }

    std::unique_ptr<dl::Heap> m_heap = std::make_unique<dl::Heap>();
};
INSTANTIATE_TEST_SUITE_P(ChunkSizes, OwnHeap, testing::Values(32, 64, 1008, 1024, 4096, 100'000));

TEST_P(OwnHeap, FreeNeighboursBecomeOne) {
    for (const bool before : {false, true}) {
        for (const bool behind : {false, true}) {
            dl::Chunk* row[5];
            for (dl::Chunk*& chunk : row) chunk = Take(GetParam());
            if (before) m_heap->Free(row[1]);
            if (behind) m_heap->Free(row[3]);
            m_heap->Free(row[2]);
            const dl::HeapReport report = Check();
            EXPECT_EQ(report.m_freeChunks, 1u) << before << behind;
            EXPECT_EQ(report.m_freeBytes, GetParam() * (1u + before + behind));
            m_heap->Free(row[0]);
            if (!before) m_heap->Free(row[1]);
            if (!behind) m_heap->Free(row[3]);
            m_heap->Free(row[4]);
            EXPECT_EQ(Check().m_freeChunks + Check().m_chunksInUse, 0u) << "all back in the top";
        }
    }
}

TEST_P(OwnHeap, ChunksGrowAndShrinkInPlace) {
    const std::size_t size = GetParam();
    dl::Chunk* const chunk = Take(size);
    dl::Chunk* const next = Take(2 * size);
    dl::Chunk* const last = Take(size);
    EXPECT_FALSE(m_heap->Resize(chunk, size + 32));
    m_heap->Free(next);
    EXPECT_FALSE(m_heap->Resize(chunk, 3 * size + 32));
    EXPECT_TRUE(m_heap->Resize(chunk, 2 * size));  // into what follows
    EXPECT_EQ(Check().m_freeBytes, size);
    EXPECT_TRUE(m_heap->Resize(chunk, size));
    EXPECT_EQ(Check().m_freeBytes, 2 * size);
    if (size >= 64) {
        dl::Chunk* const part = Take(size - 32);  // makes the rest the victim when it is small
        EXPECT_TRUE(m_heap->Resize(part, 2 * size - 32));
        m_heap->Free(part);
    }
    EXPECT_TRUE(m_heap->Resize(last, size + 3 * kMiB));  // into the top, which must grow
    EXPECT_TRUE(m_heap->Resize(last, size));
    EXPECT_LE(Check().m_topBytes, 2 * kMiB);
    m_heap->Free(chunk);
    m_heap->Free(last);
    EXPECT_EQ(Check().m_chunksInUse, 0u);
}

TEST_P(OwnHeap, WritingToAFreedBlockIsNoticed) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    dl::Chunk* const chunk = Take(GetParam());
    Take(GetParam());
    m_heap->Free(chunk);
    dl::Links foreign;
    foreign.MakeRing();
    auto& links = *static_cast<dl::FreeChunk*>(chunk);
    links.m_next = links.m_previous = &foreign;
    EXPECT_DEATH(Take(GetParam()), "dorvutil heap: a freed block was written to");
}

TEST(DlTreeBins, FindTheBestFitOfAnyMix) {
    SCOPED_TRACE("seed " + std::to_string(Seed()));
    std::mt19937_64 random(Seed());
    dl::TreeBins bins;
    std::multiset<std::size_t> model;
    std::vector<dl::TreeChunk> chunks(400);
    std::vector<dl::TreeChunk*> outside;
    for (dl::TreeChunk& chunk : chunks) outside.push_back(&chunk);
    for (int step = 0; step < 40000; ++step) {
        const std::size_t size =
            dl::kLeastLarge + (step % 3 ? random() % 8000 : random() >> random() % 40 >> 20) / 16 * 16;
        if (!outside.empty() && random() % 2) {
            outside.back()->m_head = size | dl::Chunk::kPreviousInUse;
            bins.Insert(outside.back(), size);
            outside.pop_back();
            model.insert(size);
        } else if (!model.empty()) {
            dl::TreeChunk* const found = bins.BestFit(size);
            const auto expected = model.lower_bound(size);
            ASSERT_EQ(found == nullptr, expected == model.end());
            dl::TreeChunk* const out = found ? found : bins.Least();
            ASSERT_EQ(out->Size(), found ? *expected : *model.begin()) << size;
            model.erase(model.find(out->Size()));
            bins.Remove(out, out->Size());
            outside.push_back(out);
        }
    }
    EXPECT_EQ(bins.IsEmpty(), model.empty());
}

TEST(DlMallocDeathTest, DamageEndsTheProcess) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    auto* const p = static_cast<char*>(dlmalloc(48));
    auto* const q = static_cast<char*>(dlmalloc(48));
    EXPECT_DEATH((dlfree(p), dlfree(p)), "dorvutil heap: a block that is not in use was freed or resized");
    EXPECT_DEATH(dlfree(p + 8), "dorvutil heap: not a block of this heap");
    if (dl::kSealed) {
        EXPECT_DEATH((p[48] = 1, dlfree(p)), "dorvutil heap: a block was written to beyond its end");
        EXPECT_DEATH((std::memset(p, 0, 64), static_cast<void>(dlrealloc(p, 9))), "dorvutil heap: ");
        auto* const mapped = static_cast<char*>(dlmalloc(kMiB));
        const std::size_t room = dl::Chunk::Of(mapped)->Size() - 3 * sizeof(void*);
        EXPECT_DEATH((mapped[room] = 1, dlfree(mapped)), "dorvutil heap: a block was written to beyond its end");
        dlfree(mapped);
        int local[8] = {};
        EXPECT_DEATH(dlfree(local + 4), "dorvutil heap: ");
    }
    dlfree(q);
    dlfree(p);
}

}  // namespace
}  // namespace dorvutil
