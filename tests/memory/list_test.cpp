#include "dorvutil/memory/list.h"

#include <gtest/gtest.h>

#include "memory/failing_heap.h"
#include "memory/list_items.h"

namespace dorvutil {
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
        EXPECT_EQ(Item::s_deaths, (Keys{2, 1}));
        EXPECT_EQ(KeysOf(list), (Keys{5, 3, 4}));
        Item* const detached = list.Detach(1);
        EXPECT_EQ(detached->m_key, 3);
        delete detached;
        EXPECT_EQ(list.Detach(7), nullptr);
        const std::uint32_t capacity = list.Capacity();
        list.Flush();
        EXPECT_EQ(list.Count(), 0u);
        EXPECT_EQ(list.Capacity(), capacity);
        EXPECT_EQ(Item::s_deaths, (Keys{2, 1, 3, 5, 4}));
        Fill(list, {6});
    }
    EXPECT_EQ(Item::s_deaths.back(), 6);
}

TEST_F(ListTest, ForgetsWhatItDoesNotOwn) {
    Item a(1), b(2);
    {
        ListMgr<Item> list(false);
        list.Add(&a);
        list.Add(&b);
        list.Set(0, &b);
        list.DeleteAt(0);
    }
    EXPECT_EQ(Item::s_alive, 2);
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
        EXPECT_EQ(KeysOf(list), c.keys);
        EXPECT_TRUE(list.Set(c.index, list[c.index])) << "the same element stays alive";
        EXPECT_EQ(list[c.index]->m_key, 9);
    }
}

TEST_F(ListTest, CuttingTheCapacityDisposes) {
    ListMgr<Item> list;
    Fill(list, {1, 2, 3});
    EXPECT_TRUE(list.SetSize(1));
    EXPECT_EQ(Item::s_deaths, (Keys{2, 3}));
    EXPECT_EQ(list.Capacity(), 1u);
    EXPECT_EQ(list.Insert(new Item(4), 3), 3);
    EXPECT_EQ(KeysOf(list), (Keys{1, -1, -1, 4}));
}

TEST_F(ListTest, StealingTakesTheArrayOrAppends) {
    ListMgr<Item> from(true, 20);
    Fill(from, {1, 2});
    Item* const* const array = from.Data();
    ListMgr<Item> list;
    from.SetOwnsItems(false);
    EXPECT_TRUE(list.StealList(from));
    EXPECT_EQ(list.Data(), array);
    EXPECT_EQ(list.Capacity(), 20u);
    EXPECT_FALSE(list.OwnsItems());
    EXPECT_TRUE(from.OwnsItems());
    EXPECT_EQ(from.Count() + from.Capacity(), 0u);

    list.SetOwnsItems(true);
    Fill(from, {3});
    from.SetOwnsItems(false);
    EXPECT_TRUE(list.StealList(from));
    EXPECT_EQ(KeysOf(list), (Keys{1, 2, 3}));
    EXPECT_TRUE(list.OwnsItems());
    EXPECT_FALSE(from.OwnsItems());
    EXPECT_EQ(from.Capacity(), 0u);
    EXPECT_TRUE(list.StealList(from)) << "nothing to take";
    EXPECT_TRUE(list.StealList(list));
    EXPECT_EQ(list.Count(), 3u);
}

TEST_F(ListTest, SortsAndFinds) {
    ListMgr<Item> list;
    Fill(list, {3, 1, 2, 2});
    list.QSort(Item::Compare);
    EXPECT_EQ(KeysOf(list), (Keys{1, 2, 2, 3}));
    const Item key(2), missing(7);
    EXPECT_EQ(list.BinSearch(&key, true, Item::Compare), 1u);
    EXPECT_EQ(list.FindInsertionIndex(&missing, false, Item::Compare), 4u);
    Item* found = nullptr;
    EXPECT_TRUE(list.FindFirst(&key, Item::Compare, found));
    EXPECT_EQ(found, list[1]);
    EXPECT_FALSE(list.FindFirst(&missing, Item::Compare, found));
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(list.FindR(list.Last()), 3u);
}

TEST_F(ListTest, OwningListsOfCopiedTypesCopyWhatIsAdded) {
    TextItem text(5);
    {
        ListMgr<TextItem> list;
        EXPECT_EQ(list.Add(&text), 1);
        EXPECT_NE(list[0], &text);
        EXPECT_EQ(list[0]->m_key, 5);
        ListMgr<TextItem> holding(false);
        EXPECT_EQ(holding.Add(&text), 1);
        EXPECT_EQ(holding[0], &text);
        const FailingHeap heap(1);
        ListMgr<TextItem> full;
        EXPECT_EQ(full.Add(&text), -1);
    }
    EXPECT_EQ(Item::s_alive, 1) << "the copies are gone, also the one that found no slot";
}

TEST_F(ListTest, NoMemoryLeavesTheListAndTheItemAlone) {
    ListMgr<Item> list;
    Fill(list, {1});
    list.SetSize(1);
    Item item(2);
    const FailingHeap heap(1);
    EXPECT_EQ(list.Add(&item), -1);
    EXPECT_EQ(list.Insert(&item, 0), -1);
    EXPECT_FALSE(list.Set(4, &item));
    EXPECT_EQ(KeysOf(list), Keys{1});
    ListMgr<Item> other;
    EXPECT_TRUE(other.StealList(list)) << "taking over an array needs no memory";
}

TEST(ListRc, DisposesByDroppingOneReference) {
    auto* const shared = new Shared(1);
    shared->Ref();
    {
        ListMgr_RC<Shared> list;
        for (int i = 0; i < 3; ++i) {
            shared->Ref();
            list.Add(shared);
        }
        EXPECT_EQ(shared->References(), 4);
        list.DeleteAt(0);
        EXPECT_EQ(shared->References(), 3);
        ListMgr_RC<Shared> other;
        EXPECT_TRUE(other.StealList(list));
        EXPECT_EQ(shared->References(), 3);
    }
    EXPECT_EQ(shared->Unref(), 0);
    EXPECT_EQ(Shared::s_alive, 0);
}

}  // namespace
}  // namespace dorvutil
