#include "dorvutil/memory/hash.h"

#include <gtest/gtest.h>

#include <vector>

#include "memory/failing_heap.h"
#include "memory/list_items.h"

namespace dorvutil {
namespace {

struct Collect : TIterator<Item> {
    void OnElement(Item* element) override { m_keys.push_back(element->m_key); }
    std::vector<std::int32_t> m_keys;
};

TEST(Hash, FindsWhatWasAddedLastAmongEquals) {
    for (const bool pooled : {false, true}) {
        for (const std::uint32_t buckets : {1u, 7u, 63u}) {
            SCOPED_TRACE(testing::Message() << buckets << " buckets, pooled " << pooled);
            Item::Reset();
            {
                TORVIHash<Item> table(buckets, pooled);
                EXPECT_EQ(table.Find(Item(1)), nullptr) << "before there are buckets";
                for (std::int32_t key = 0; key < 300; ++key) EXPECT_TRUE(table.Add(new Item(key)));
                EXPECT_TRUE(table.Add(new Item(17, 1)));
                EXPECT_EQ(table.Count(), 301u);
                EXPECT_EQ(table.Find(Item(17))->m_serial, 1);
                for (std::int32_t key = 0; key < 300; ++key) ASSERT_EQ(table.Find(Item(key))->m_key, key);
                EXPECT_EQ(table.Find(Item(300)), nullptr);
                table.Flush();
                EXPECT_EQ(table.Count(), 0u);
                EXPECT_EQ(table.Find(Item(5)), nullptr);
                EXPECT_EQ(Item::s_alive, 0);
                table.Add(new Item(1));
            }
            EXPECT_EQ(Item::s_alive, 0);
        }
    }
}

TEST(Hash, IteratesBucketByBucketNewestFirstAndForgetsWhatItDoesNotOwn) {
    Item::Reset();
    const std::vector<Item> items{Item(0), Item(1), Item(2), Item(3), Item(4), Item(5), Item(6)};
    const int alive = Item::s_alive;
    {
        TORVIHash_TS<Item> table(3);
        table.SetOwnsItems(false);
        for (const Item& item : items) table.Add(const_cast<Item*>(&item));
        Collect collect;
        table.Iterate(collect);
        EXPECT_EQ(collect.m_keys, (std::vector<std::int32_t>{6, 3, 0, 4, 1, 5, 2}));
        EXPECT_EQ(table.Find(Item(4)), &items[4]);
    }
    EXPECT_EQ(Item::s_alive, alive);
}

TEST(Hash, RefusesWhatItCannotHold) {
    Item item(1);
    TORVIHash<Item> none(0);
    EXPECT_FALSE(none.Add(&item));
    EXPECT_EQ(none.Find(item), nullptr);
    TORVIHash<Item> table(63, true);
    EXPECT_FALSE(table.Add(nullptr));
    for (int failing = 1; failing <= 3; ++failing) {
        const FailingHeap heap(failing);
        TORVIHash<Item> starved(63, true);
        EXPECT_FALSE(starved.Add(&item)) << failing;
        EXPECT_EQ(starved.Count(), 0u);
    }
}

}  // namespace
}  // namespace dorvutil
