#include "dorvutil/concurrency/semaphore.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <memory>
#include <vector>

#include "sleeping_thread.h"

namespace dorvutil {
namespace {

using Semaphore = TSem<critSec>;

TEST(SemCount, KeepsUnitsUpToTheMaximum) {
    static const struct {
        const char* name;
        std::vector<std::uint32_t> releases;
        int waits;  // that get a unit; one more gets none, unless -1 (plenty are left)
    } kCases[] = {
        {"none", {}, 0},
        {"release of nothing", {0}, 0},
        {"two at once", {2}, 2},
        {"one by one", {1, 1, 1}, 3},
        {"full, and one more", {0xFFFFFFFFu, 1}, -1},
        {"sum beyond the maximum", {0xFFFFFFF0u, 0x20}, -1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Semaphore semaphore;
        for (const auto count : c.releases) semaphore.Release(count);
        for (int i = 0; i < (c.waits < 0 ? 40 : c.waits); ++i) EXPECT_EQ(semaphore.Wait(i % 2 ? 0 : kWaitForever), 1);
        if (c.waits >= 0) {
            EXPECT_EQ(semaphore.Wait(0), 0);
            EXPECT_EQ(semaphore.Wait(1), 0);
        }
    }
}

TEST(SemQueue, ServesInOrderOfArrival) {
    Semaphore semaphore;
    std::vector<std::unique_ptr<SleepingThread>> waiters;
    std::atomic<int> served{0};
    for (int i = 0; i < 4; ++i) {
        waiters.push_back(std::make_unique<SleepingThread>([&] {
            EXPECT_EQ(semaphore.Wait(kWaitForever), 1);
            ++served;
        }));
        waiters.back()->WaitUntilAsleep();
    }
    for (int i = 0; i < 4; ++i) {
        semaphore.Release(1);
        EXPECT_EQ(semaphore.Wait(0), 0) << "the unit belongs to the waiter";
        waiters[static_cast<std::size_t>(i)]->Join();
        EXPECT_EQ(served, i + 1);
    }
}

TEST(SemQueue, ReleaseOfManyServesAllAndKeepsTheRest) {
    Semaphore semaphore;
    std::vector<std::unique_ptr<SleepingThread>> waiters;
    for (int i = 0; i < 3; ++i) {
        waiters.push_back(std::make_unique<SleepingThread>([&] { EXPECT_EQ(semaphore.Wait(kWaitForever), 1); }));
        waiters.back()->WaitUntilAsleep();
    }
    semaphore.Release(5);
    waiters.clear();
    EXPECT_EQ(semaphore.Wait(0), 1);
    EXPECT_EQ(semaphore.Wait(0), 1);
    EXPECT_EQ(semaphore.Wait(0), 0);
}

// The one in the middle gives up; those around it keep their places.
TEST(SemQueue, TimedOutWaiterLeavesTheChainWhole) {
    for (const int quitter : {0, 1, 2}) {
        SCOPED_TRACE(quitter);
        Semaphore semaphore;
        std::vector<std::unique_ptr<SleepingThread>> waiters;
        std::atomic<int> served{0};
        for (int i = 0; i < 3; ++i) {
            waiters.push_back(std::make_unique<SleepingThread>(
                [&, i] { served += semaphore.Wait(i == quitter ? 100 : kWaitForever); }));
            waiters.back()->WaitUntilAsleep();
        }
        waiters[static_cast<std::size_t>(quitter)]->Join();
        EXPECT_EQ(served, 0);
        semaphore.Release(2);
        waiters.clear();
        EXPECT_EQ(served, 2);
        EXPECT_EQ(semaphore.Wait(0), 0);
    }
}

// The waiter times out and stands at the semaphore's lock when the release signals its place in the chain.
TEST(SemQueue, SignalAfterTheTimeOutCountsAsTaken) {
    Semaphore semaphore;
    const auto& lock = (const TCompactSync<critSec>&)semaphore;  // NOLINT: only this cast reaches the non-public base
    std::int32_t result = -2;
    SleepingThread waiter([&] { result = semaphore.Wait(50); });
    waiter.WaitUntilAsleep();
    lock.Enter();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    waiter.WaitUntilAsleep();
    ASSERT_FALSE(waiter.Done());
    semaphore.Release(1);
    lock.Exit();
    waiter.Join();
    EXPECT_EQ(result, 1);
    EXPECT_EQ(semaphore.Wait(0), 0) << "the unit must not be there twice";
}

TEST(SemQueue, NoUnitIsLostOrDoubledUnderTimeOuts) {
    constexpr int kUnits = 400;
    Semaphore semaphore;
    std::atomic<int> taken{0};
    std::atomic<bool> stop{false};
    std::vector<std::thread> takers;
    for (int t = 0; t < 3; ++t) {
        takers.emplace_back([&, t] {
            while (!stop) taken += semaphore.Wait(static_cast<std::uint32_t>(t));
        });
    }
    for (int i = 0; i < kUnits; ++i) {
        semaphore.Release(1);
        if (i % 8 == 0) std::this_thread::sleep_for(std::chrono::microseconds(300));
    }
    stop = true;
    for (auto& taker : takers) taker.join();
    int left = 0;
    while (semaphore.Wait(0) == 1) ++left;
    EXPECT_EQ(taken + left, kUnits);
}

template <class S>
void ExpectUsableChainStorage() {
    void* const node = AllocEventChain<S>();
    ASSERT_NE(node, nullptr);
    std::memset(node, 0xAB, sizeof(OrvEventChain<S>));
    FreeEventChain<S>(node);
}

TEST(EventChain, StorageOfEveryLockKindIsLargeEnough) {
    ExpectUsableChainStorage<critSec>();
    ExpectUsableChainStorage<mutex>();
    ExpectUsableChainStorage<nullSync>();
}

}  // namespace
}  // namespace dorvutil
