#include "dorvutil/memory/list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "dorvutil/memory/sorted.h"
#include "memory/failing_heap.h"
#include "memory/list_items.h"

namespace dorvutil {

template <class T>
requires std::is_base_of_v<Item, T>
struct DefaultListOrder<T> {
    static int Compare(T* const* a, T* const* b) { return (*a)->m_key - (*b)->m_key; }
};

namespace {

using Keys = std::vector<std::int32_t>;

struct ListTest : testing::Test {
    void SetUp() override { Item::Reset(); }
    void TearDown() override { EXPECT_EQ(Item::s_alive, 0); }

    template <class L>
    static Keys KeysOf(const L& list) {
        Keys keys;
        for (std::uint32_t i = 0; i < list.Count(); ++i) keys.push_back(list[i] ? list[i]->m_key : -1);
        return keys;
    }
    template <class L>
    static void Fill(L& list, const Keys& keys) {
        for (const auto key : keys) EXPECT_GT(list.Add(new Item(key)), 0);
    }
};

TEST_F(ListTest, DisposesOfWhatLeavesIt) {
    {
        ListMgr<Item> list;
        Fill(list, {1, 2, 3, 4});
        EXPECT_TRUE(list.DeleteAt(1));
        EXPECT_FALSE(list.DeleteAt(3));
        EXPECT_TRUE(list.Set(0, new Item(5)));
        delete list.Detach(1);
        EXPECT_EQ(list.Detach(7), nullptr);
        EXPECT_EQ(Item::s_deaths, (Keys{2, 1, 3}));
        EXPECT_TRUE(list.SetSize(1));
        EXPECT_EQ(list.Insert(new Item(6), 2), 2);
        EXPECT_EQ(KeysOf(list), (Keys{5, -1, 6}));
        const std::uint32_t capacity = list.Capacity();
        list.Flush();
        EXPECT_EQ(list.Count(), 0u);
        EXPECT_EQ(list.Capacity(), capacity);
        Fill(list, {7});
    }
    EXPECT_EQ(Item::s_deaths, (Keys{2, 1, 3, 4, 5, 6, 7}));
}

TEST_F(ListTest, ForgetsWhatItDoesNotOwnAndCopiesOnlyWhatItOwns) {
    Item item(1);
    TextItem text(5);
    {
        ListMgr<Item> list(false);
        for (int i = 0; i < 3; ++i) list.Add(&item);
        list.Set(0, &item);
        list.DeleteAt(0);
        ListMgr<TextItem> holding(false), copying, full;
        TSortedListMgr<TextItem> sorted;
        EXPECT_EQ(holding.Add(&text) + copying.Add(&text) + sorted.Add(&text), 3);
        EXPECT_EQ(holding[0], &text);
        EXPECT_NE(copying[0], &text);
        EXPECT_NE(sorted[0], &text);
        sorted.SetSize(1);
        const FailingHeap heap(1);
        EXPECT_EQ(full.Add(&text) + sorted.Add(&text), -2);
    }
    EXPECT_EQ(Item::s_alive, 2) << "the copies are gone, also those that found no slot";
}

TEST_F(ListTest, SettingGrowsWithinAndBeyondTheCapacity) {
    static const struct {
        std::uint32_t index;
        Keys keys;
    } kCases[] = {{0, {9, 2}}, {2, {1, 2, 9}}, {5, {1, 2, -1, -1, -1, 9}}, {8, {1, 2, -1, -1, -1, -1, -1, -1, 9}}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.index);
        ListMgr<Item> list;
        Fill(list, {1, 2});
        EXPECT_TRUE(list.Set(c.index, new Item(9)));
        EXPECT_TRUE(list.Set(c.index, list[c.index])) << "the same element stays alive";
        EXPECT_EQ(KeysOf(list), c.keys);
    }
}

TEST_F(ListTest, StealingTakesTheArrayOrAppends) {
    ListMgr<Item> from(true, 20), list;
    Fill(from, {1, 2});
    Item* const* const array = from.Data();
    from.SetOwnsItems(false);
    EXPECT_TRUE(list.StealList(from));
    EXPECT_EQ(list.Data(), array);
    EXPECT_EQ(list.Capacity(), 20u);
    EXPECT_TRUE(!list.OwnsItems() && from.OwnsItems());
    EXPECT_EQ(from.Count() + from.Capacity(), 0u);

    list.SetOwnsItems(true);
    Fill(from, {3});
    from.SetOwnsItems(false);
    EXPECT_TRUE(list.StealList(from));
    EXPECT_TRUE(list.OwnsItems() && !from.OwnsItems());
    EXPECT_EQ(from.Capacity(), 0u);
    EXPECT_TRUE(list.StealList(from)) << "nothing to take";
    EXPECT_TRUE(list.StealList(list));
    EXPECT_EQ(KeysOf(list), (Keys{1, 2, 3}));
}

TEST_F(ListTest, NoMemoryLeavesTheListAndTheItemAlone) {
    ListMgr<Item> list, other;
    Fill(list, {1});
    list.SetSize(1);
    Item* const item = new Item(2);
    {
        const FailingHeap heap(1);
        EXPECT_EQ(list.Add(item), -1);
        EXPECT_EQ(list.Insert(item, 0), -1);
        EXPECT_FALSE(list.Set(4, item));
        EXPECT_EQ(KeysOf(list), Keys{1});
        EXPECT_TRUE(other.StealList(list)) << "taking over an array needs no memory";
    }
    EXPECT_EQ(item->m_key, 2);
    delete item;
}

TEST_F(ListTest, SortsAndFinds) {
    ListMgr<Item> list;
    TSortedListMgr<Item> sorted;
    Fill(list, {3, 1, 2, 2});
    Fill(sorted, {3, 1, 2, 2});
    list.QSort(Item::Compare);
    EXPECT_EQ(KeysOf(list), (Keys{1, 2, 2, 3}));
    EXPECT_EQ(KeysOf(sorted), (Keys{1, 2, 2, 3}));
    const Item key(2), missing(7);
    EXPECT_EQ(list.BinSearch(&key, true, Item::Compare), 1u);
    EXPECT_EQ(sorted.BinSearch(&missing, false), kVectorNotFound);
    EXPECT_EQ(list.FindInsertionIndex(&missing, false, Item::Compare), 4u);
    EXPECT_EQ(list.FindR(list.Last()), 3u);
    Item* found = nullptr;
    EXPECT_TRUE(sorted.FindFirst(&key, found));
    EXPECT_EQ(found, sorted[1]);
    EXPECT_FALSE(list.FindFirst(&missing, Item::Compare, found));
    EXPECT_EQ(found, nullptr);
}

TEST_F(ListTest, NestedDeferralsSortOnceAtTheOutermostEnd) {
    static int s_comparisons;
    s_comparisons = 0;
    TSortedListMgr<Item> list([](Item* const* a, Item* const* b) {
        ++s_comparisons;
        return Item::Compare(a, b);
    });
    Fill(list, {4});
    {
        const SortDeferral outer(list);
        Fill(list, {3});
        {
            const SortDeferral inner(list);
            Fill(list, {9, 1});
        }
        Fill(list, {0});
        EXPECT_EQ(KeysOf(list), (Keys{4, 3, 9, 1, 0}));
        EXPECT_EQ(s_comparisons, 0);
    }
    EXPECT_EQ(KeysOf(list), (Keys{0, 1, 3, 4, 9}));
    Fill(list, {2});
    EXPECT_EQ(KeysOf(list), (Keys{0, 1, 2, 3, 4, 9}));
}

TEST(SortedVector, KeepsLongsSorted) {
    TSortedVector<std::int32_t> v;
    Keys model;
    std::mt19937 random(1);
    for (int i = 0; i < 500; ++i) {
        model.push_back(static_cast<std::int32_t>(random() % 100) - 50);
        EXPECT_EQ(v.Add(model.back()), static_cast<std::int32_t>(model.size()));
    }
    std::sort(model.begin(), model.end());
    EXPECT_EQ(Keys(v.begin(), v.end()), model);
    {
        const SortDeferral deferral(v);
        v.Add(-1000);
        EXPECT_EQ(v.Last(), -1000);
    }
    EXPECT_EQ(v[0], -1000);
}

TEST(ListRc, DisposesByDroppingOneReference) {
    auto* const shared = new Shared(1);
    shared->Ref();
    {
        ListMgr_RC<Shared> list, other;
        for (std::int32_t references = 2; references <= 4; ++references) {
            EXPECT_EQ(shared->Ref(), references);
            list.Add(shared);
        }
        list.DeleteAt(0);
        EXPECT_TRUE(other.StealList(list));
        EXPECT_EQ(shared->References(), 3);
    }
    EXPECT_EQ(shared->Unref(), 0);
    EXPECT_EQ(Shared::s_alive, 0);
}

}  // namespace
}  // namespace dorvutil
