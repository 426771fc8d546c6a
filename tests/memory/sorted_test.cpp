#include "dorvutil/memory/sorted.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "memory/failing_heap.h"
#include "memory/list_items.h"

namespace dorvutil {

template <>
struct DefaultListOrder<Item> {
    static int Compare(Item* const* a, Item* const* b) { return Item::Compare(a, b); }
};
template <>
struct DefaultListOrder<TextItem> {
    static int Compare(TextItem* const* a, TextItem* const* b) { return (*a)->m_key - (*b)->m_key; }
};

namespace {

using Keys = std::vector<std::int32_t>;

Keys KeysOf(const TSortedListMgr<Item>& list) {
    Keys keys;
    for (std::uint32_t i = 0; i < list.Count(); ++i) keys.push_back(list[i]->m_key);
    return keys;
}

TEST(SortedList, InsertsInOrder) {
    TSortedListMgr<Item> list;
    std::int32_t count = 0;
    for (const std::int32_t key : {5, 1, 9, 5, 3}) EXPECT_EQ(list.Add(new Item(key)), ++count);
    EXPECT_EQ(KeysOf(list), (Keys{1, 3, 5, 5, 9}));
    const Item five(5), missing(4);
    Item* found = nullptr;
    EXPECT_TRUE(list.FindFirst(&five, found));
    EXPECT_EQ(found, list[2]);
    EXPECT_EQ(list.BinSearch(&missing, false), kVectorNotFound);
}

TEST(SortedList, NestedDeferralsSortOnceAtTheOutermostEnd) {
    static int s_comparisons;
    s_comparisons = 0;
    TSortedListMgr<Item> list([](Item* const* a, Item* const* b) {
        ++s_comparisons;
        return Item::Compare(a, b);
    });
    list.Add(new Item(4));
    {
        const SortDeferral outer(list);
        list.Add(new Item(3));
        {
            const SortDeferral inner(list);
            list.Add(new Item(9));
            list.Add(new Item(1));
        }
        list.Add(new Item(0));
        EXPECT_EQ(KeysOf(list), (Keys{4, 3, 9, 1, 0}));
        EXPECT_EQ(s_comparisons, 0);
    }
    EXPECT_EQ(KeysOf(list), (Keys{0, 1, 3, 4, 9}));
    list.Add(new Item(2));
    EXPECT_EQ(KeysOf(list), (Keys{0, 1, 2, 3, 4, 9}));
}

TEST(SortedList, CopiesItemsOfCopiedTypes) {
    Item::Reset();
    TextItem text(5), lower(4);
    {
        TSortedListMgr<TextItem> list;
        EXPECT_EQ(list.Add(&text), 1);
        EXPECT_EQ(list.Add(&lower), 2);
        EXPECT_EQ(list[0]->m_key, 4);
        EXPECT_NE(list[0], &lower);
        list.SetSize(2);
        const FailingHeap heap(1);
        EXPECT_EQ(list.Add(&text), -1);
        EXPECT_EQ(list.Count(), 2u);
    }
    EXPECT_EQ(Item::s_alive, 2);
}

TEST(SortedVector, KeepsLongsSorted) {
    TSortedVector<std::int32_t> v;
    Keys model;
    std::mt19937 random(1);
    for (int i = 0; i < 500; ++i) {
        const auto value = static_cast<std::int32_t>(random() % 100) - 50;
        model.push_back(value);
        EXPECT_EQ(v.Add(value), static_cast<std::int32_t>(model.size()));
    }
    std::sort(model.begin(), model.end());
    EXPECT_EQ(Keys(v.begin(), v.end()), model);
    std::int32_t* found = nullptr;
    EXPECT_TRUE(v.FindFirst(model[250], found));
    EXPECT_EQ(*found, model[250]);
    {
        const SortDeferral deferral(v);
        v.Add(-1000);
        EXPECT_EQ(v.Last(), -1000);
    }
    EXPECT_EQ(v[0], -1000);
}

}  // namespace
}  // namespace dorvutil
