#include "dorvutil/memory/sync_list.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "dorvutil/memory/priority_queue.h"
#include "memory/failing_heap.h"
#include "memory/list_items.h"

namespace dorvutil {
namespace {

using Events = ListMgr_TS<Item, critSec, true>;
using Counted = ListMgr_TS_RC<Shared, critSec, true>;

template <class L>
std::string StateOf(L& list) {
    std::string state = list.ItemsPresentEvent().WaitForEvent(0) == 1 ? "present" : "";
    return state + (list.EmptyEvent().WaitForEvent(0) == 1 ? "empty" : "");
}

// Takes every unit the semaphore holds.
template <class L>
int Units(L& list) {
    int units = 0;
    while (list.Semaphore().Wait(0) == 1) ++units;
    return units;
}

TEST(SyncList, EventsFollowTheCountAndTheSemaphoreCountsAdditions) {
    Events list;
    EXPECT_EQ(StateOf(list), "empty");
    EXPECT_EQ(list.TakeFront(), nullptr);
    EXPECT_EQ(list.Add(new Item(1)), 1);
    EXPECT_EQ(list.Add(new Item(2), true), 2);
    EXPECT_EQ(StateOf(list), "present");
    EXPECT_EQ(Units(list), 1) << "the silent addition does not count";
    delete list.TakeFront();
    EXPECT_EQ(StateOf(list), "present");
    EXPECT_TRUE(list.DeleteAt(0));
    EXPECT_EQ(StateOf(list), "empty");
    EXPECT_EQ(Units(list), 0);
    EXPECT_FALSE(list.DeleteAt(0));
    list.Add(new Item(3));
    list.Flush();
    EXPECT_EQ(StateOf(list), "empty");
    EXPECT_EQ(Units(list), 2) << "one addition, one flush";
    list.Flush();
    EXPECT_EQ(Units(list), 1);
}

TEST(SyncList, AFailedAdditionSignalsNothing) {
    Events list;
    Item item(1);
    const FailingHeap heap(1);
    EXPECT_EQ(list.Add(&item), -1);
    EXPECT_EQ(StateOf(list), "empty");
    EXPECT_EQ(Units(list), 0);
}

TEST(SyncList, TakesFromTheFront) {
    Events list;
    for (int key = 1; key <= 3; ++key) list.Add(new Item(key));
    list.Insert(new Item(0), 0);
    for (int key = 0; key <= 3; ++key) {
        Item* const item = list.TakeFront();
        EXPECT_EQ(item->m_key, key);
        delete item;
    }
}

TEST(SyncListRc, HoldsAReferenceForEachElement) {
    auto* const shared = new Shared(1);
    shared->Ref();
    {
        Counted list;
        list.Add(shared);
        list.Add(shared);
        list.Insert(shared, 0, true);
        EXPECT_EQ(shared->References(), 4);
        EXPECT_EQ(list.TakeFront(), shared);
        EXPECT_EQ(shared->References(), 4) << "the taker has it now";
        shared->Unref();
        list.DeleteAt(0);
        EXPECT_EQ(shared->References(), 2);
        list.SetOwnsItems(true);
        {
            const FailingHeap heap(1);
            Counted full;
            EXPECT_EQ(full.Add(shared), -1);
        }
        EXPECT_EQ(shared->References(), 2);
    }
    EXPECT_EQ(shared->References(), 1);
    shared->Unref();
    EXPECT_EQ(Shared::s_alive, 0);
}

TEST(SyncListRc, ProducersAndConsumersLoseNothing) {
    static constexpr int kThreads = 3, kEach = 1500;
    Counted list;
    std::atomic<int> taken{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < kEach; ++i) list.Add(new Shared(i));
        });
        threads.emplace_back([&] {
            while (taken < kThreads * kEach) {
                if (list.Semaphore().Wait(50) != 1) continue;
                Shared* const front = list.TakeFront();
                ASSERT_NE(front, nullptr);
                front->Unref();
                ++taken;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(taken, kThreads * kEach);
    EXPECT_EQ(StateOf(list), "empty") << "the events stand as the list does, whoever came last";
    EXPECT_EQ(Shared::s_alive, 0);
}

struct QueueTest : testing::Test {
    void SetUp() override { Item::Reset(); }
    void TearDown() override {
        m_queue.Flush();
        EXPECT_EQ(Item::s_alive, 0);
    }
    std::int32_t Put(std::int32_t key, std::int32_t serial) { return m_queue.Add(new Item(key, serial)); }
    std::int32_t Take() {
        const std::unique_ptr<Item> item(m_queue.TakeFront());
        return item ? item->m_serial : -1;
    }

    PriorityQueue_TS<Item> m_queue;
};

TEST_F(QueueTest, ADuplicateTakesThePlaceOfTheWaitingOne) {
    EXPECT_EQ(Put(7, 1), 0);
    EXPECT_EQ(Put(8, 2), 1);
    EXPECT_EQ(Put(7, 3), 0);
    EXPECT_EQ(Item::s_deaths, std::vector<std::int32_t>{7});
    EXPECT_EQ(Units(m_queue), 2) << "replacing releases nothing";
    EXPECT_EQ(Take(), 3);
    EXPECT_EQ(Take(), 2);
    EXPECT_EQ(Take(), -1);
}

TEST_F(QueueTest, WithoutReplacementTheNewcomerGoes) {
    m_queue.SetReplaceDuplicate(false);
    EXPECT_EQ(Put(7, 1), 0);
    EXPECT_EQ(Put(7, 2), -1);
    EXPECT_EQ(Item::s_alive, 1);
    EXPECT_EQ(Units(m_queue), 1);
    EXPECT_EQ(Take(), 1);
}

TEST_F(QueueTest, DuplicatesMayBeAllowed) {
    m_queue.SetAllowDuplicates(true);
    EXPECT_EQ(Put(7, 1), 0);
    EXPECT_EQ(Put(7, 2), 1);
    EXPECT_EQ(Units(m_queue), 2);
    EXPECT_EQ(m_queue.Count(), 2u);
}

TEST_F(QueueTest, RemovingByKeyReleasesOnce) {
    Put(7, 1);
    Put(8, 2);
    EXPECT_EQ(Units(m_queue), 2);
    EXPECT_TRUE(m_queue.RemoveByKey(Item(7).Key()));
    EXPECT_EQ(Units(m_queue), 1);
    EXPECT_FALSE(m_queue.RemoveByKey(Item(7).Key()));
    EXPECT_EQ(Units(m_queue), 0);
    EXPECT_EQ(Take(), 2);
}

TEST_F(QueueTest, TakesTheUnitOverEvenWhenMemoryIsOut) {
    const FailingHeap heap(1);
    EXPECT_EQ(Put(7, 1), -1);
    EXPECT_EQ(m_queue.Add(nullptr), -1);
    EXPECT_EQ(Item::s_alive, 0);
    EXPECT_EQ(Units(m_queue), 0);
}

}  // namespace
}  // namespace dorvutil
