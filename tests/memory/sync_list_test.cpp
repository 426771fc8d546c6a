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
    Item::Reset();
    Events list;
    EXPECT_EQ(StateOf(list), "empty");
    EXPECT_EQ(list.TakeFront(), nullptr);
    EXPECT_EQ(list.Add(new Item(1)), 1);
    EXPECT_EQ(list.Add(new Item(2), true), 2);
    EXPECT_EQ(StateOf(list), "present");
    EXPECT_EQ(Units(list), 1) << "the silent addition does not count";
    list.Insert(new Item(0), 0, true);
    delete list.TakeFront();
    delete list.TakeFront();
    EXPECT_EQ(Item::s_deaths, (std::vector<std::int32_t>{0, 1}));
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

TEST(SyncListRc, HoldsAReferenceForEachElement) {
    auto* const shared = new Shared(1);
    shared->Ref();
    {
        Counted list, full;
        list.Add(shared);
        list.Insert(shared, 0, true);
        EXPECT_EQ(list.TakeFront(), shared);
        EXPECT_EQ(shared->References(), 3) << "the taker has it now";
        EXPECT_EQ(shared->Unref(), 2);
        const FailingHeap heap(1);
        EXPECT_EQ(full.Add(shared), -1);
        EXPECT_EQ(shared->References(), 2);
        list.DeleteAt(0);
        EXPECT_EQ(shared->References(), 1);
    }
    EXPECT_EQ(shared->Unref(), 0);
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

TEST_F(QueueTest, ADuplicateTakesThePlaceOfTheWaitingOneUnlessToldOtherwise) {
    static const struct {
        const char* name;
        bool allowed, replaced;
        std::int32_t index;  // of the duplicate
        int units;
        std::vector<std::int32_t> taken;
    } kCases[] = {{"replaces", false, true, 0, 2, {3, 2, -1}},
                  {"is refused", false, false, -1, 2, {1, 2, -1}},
                  {"is allowed", true, true, 2, 3, {1, 2, 3}}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        m_queue.SetAllowDuplicates(c.allowed);
        m_queue.SetReplaceDuplicate(c.replaced);
        EXPECT_EQ(Put(7, 1), 0);
        EXPECT_EQ(Put(8, 2), 1);
        EXPECT_EQ(Put(7, 3), c.index);
        EXPECT_EQ(Item::s_alive, c.units);
        EXPECT_EQ(Units(m_queue), c.units) << "only what was inserted counts";
        for (const std::int32_t serial : c.taken) EXPECT_EQ(Take(), serial);
    }
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
