#include "dorvutil/memory/block_map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "dorvutil/memory/pool.h"

namespace dorvutil {
namespace {

// Blocks that are only addresses: nothing of them is read.
HeapBlock* At(std::uintptr_t address) { return reinterpret_cast<HeapBlock*>(address); }

struct Layout {
    const char* name;
    std::uint32_t blockSize;
    std::uintptr_t mostBetween;  // bytes from the end of a block to the start of the next
    bool mapped;                 // close enough for a map in the end
};

constexpr Layout kLayouts[] = {
    {"side by side", 4096, 16, true},
    {"a size that is no power of two", 6000, 64, true},
    {"some room between them", 4096, 20000, true},
    {"far apart", 4096, std::uintptr_t{1} << 32, false},
};

TEST(BlockMap, FindsWhatASearchFinds) {
    std::mt19937_64 random(11);
    for (const Layout& layout : kLayouts) {
        SCOPED_TRACE(layout.name);
        BlockMap map(layout.blockSize);
        TVector<HeapBlock*> blocks;
        std::uintptr_t end = 0x5000'0000'0000;
        std::vector<std::uintptr_t> order;
        for (int i = 0; i < 2000; ++i) {
            order.push_back(end + random() % layout.mostBetween);
            end = order.back() + layout.blockSize;
        }
        // From the middle outwards, so that the map has to grow on both sides.
        std::rotate(order.begin(), order.begin() + 1000, order.end());
        for (const std::uintptr_t start : order) {
            std::uint32_t place = 0;
            while (place < blocks.Count() && blocks[place] < At(start)) ++place;
            ASSERT_GE(blocks.Insert(At(start), place), 0);
            map.Add(blocks, At(start));
            ASSERT_TRUE(!map.IsThere() || map.Find(start + layout.blockSize - 1) == At(start));
        }
        EXPECT_EQ(map.IsThere(), layout.mapped);
        if (!map.IsThere()) continue;
        map.Remove(At(order[7]));
        for (const std::uintptr_t start : order) {
            for (const std::uintptr_t p : {start, start + 1, start + layout.blockSize - 1}) {
                EXPECT_EQ(map.Find(p) == At(start), start != order[7]) << p - start;
            }
        }
        for (const std::uintptr_t p : {std::uintptr_t{0}, std::uintptr_t{8}, ~std::uintptr_t{0}}) {
            EXPECT_EQ(map.Find(p), nullptr) << p;
        }
    }
}

}  // namespace
}  // namespace dorvutil
