#include "dorvutil/concurrency/semaphore.h"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "concurrency/thread_support.h"

namespace dorvutil {
namespace {

using test::Sleepers;
using test::SleepingThread;
using Semaphore = TSem<critSec>;

// Takes what is there, up to `limit` units.
int Take(Semaphore& semaphore, int limit = 40) {
    int units = 0;
    while (units < limit && semaphore.Wait(units % 2 ? 0 : 1) == 1) ++units;
    return units;
}

TEST(SemCount, KeepsUnitsUpToTheMaximum) {
    Semaphore semaphore;
    semaphore.Release(0);
    EXPECT_EQ(Take(semaphore), 0);
    for (const std::uint32_t count : {1u, 2u, 1u}) semaphore.Release(count);
    EXPECT_EQ(Take(semaphore), 4);
    for (const std::uint32_t count : {0xFFFFFFF0u, 0x20u, 1u}) semaphore.Release(count);
    EXPECT_EQ(Take(semaphore), 40) << "a full one must not begin anew";
}

TEST(SemQueue, ServesInOrderOfArrivalAndForgetsWhoGivesUp) {
    static const struct {
        const char* name;
        int quitter;  // the waiter that gives up; -1 for none
        std::vector<std::uint32_t> releases;
        std::vector<std::size_t> served;  // by each release, in the order of arrival
        int left;
    } kCases[] = {
        {"one by one", -1, {1, 1, 1, 1}, {1, 1, 1, 1}, 0}, {"more than waiters", -1, {6}, {4}, 2},
        {"the first quits", 0, {1, 2}, {1, 2}, 0},         {"an inner one quits", 1, {2, 1}, {2, 1}, 0},
        {"the last quits", 3, {1, 3}, {1, 2}, 1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Semaphore semaphore;
        Sleepers waiters;
        std::atomic<std::size_t> served{0};
        for (int i = 0; i < 4; ++i) {
            const std::uint32_t patience = i == c.quitter ? 100 : kWaitForever;
            const auto wait = [&, patience] { served += static_cast<std::size_t>(semaphore.Wait(patience)); };
            waiters.emplace_back(wait).WaitUntilAsleep();
        }
        if (c.quitter >= 0) waiters.erase(std::next(waiters.begin(), c.quitter));
        std::size_t expected = 0;
        for (std::size_t i = 0; i < c.releases.size(); ++i) {
            EXPECT_EQ(served, expected);
            semaphore.Release(c.releases[i]);
            expected += c.served[i];
            for (std::size_t n = 0; n < c.served[i]; ++n) waiters.pop_front();
        }
        EXPECT_EQ(served, expected);
        EXPECT_EQ(Take(semaphore), c.left) << "a unit handed over belongs to the waiter";
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
    EXPECT_EQ(Take(semaphore), 0) << "the unit must not be there twice";
}

TEST(SemQueue, NoUnitIsLostOrDoubledUnderTimeOuts) {
    constexpr int kUnits = 400;
    Semaphore semaphore;
    std::atomic<int> taken{0};
    std::atomic<bool> stop{false};
    std::vector<std::thread> takers;
    for (std::uint32_t t = 0; t < 3; ++t) {
        takers.emplace_back([&, t] {
            while (!stop) taken += semaphore.Wait(t);
        });
    }
    for (int i = 0; i < kUnits; ++i) {
        semaphore.Release(1);
        if (i % 8 == 0) std::this_thread::sleep_for(std::chrono::microseconds(300));
    }
    stop = true;
    for (auto& taker : takers) taker.join();
    EXPECT_EQ(taken + Take(semaphore, kUnits), kUnits);
}

}  // namespace
}  // namespace dorvutil
