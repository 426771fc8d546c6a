#include "dorvutil/concurrency/event.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "concurrency/thread_support.h"
#include "dorvutil/platform/clock.h"

namespace dorvutil {
namespace {

using test::SleepingThread;

TEST(EventState, FollowsSignalsAndWaits) {
    // s: SignalEvent(true), f: SignalEvent(false), c: ClearEvent, a digit: what WaitForEvent(0) must answer.
    static constexpr struct {
        const char* name;
        bool manualReset;
        const char* script;
    } kCases[] = {
        {"created clear, manual", true, "0"},
        {"created clear, automatic", false, "0"},
        {"manual stays set", true, "s11c0"},
        {"automatic clears itself", false, "s10"},
        {"the flag changes nothing, manual", true, "f11"},
        {"the flag changes nothing, automatic", false, "f10"},
        {"signals do not add up", false, "ss10"},
        {"clearing a set automatic one", false, "sc0s1"},
        {"clearing a clear one", true, "c0s1"},
    };
    for (const auto& c : kCases) {
        for (const std::string& name : {std::string(), test::UniqueName("\\ event")}) {
            SCOPED_TRACE(c.name + name);
            const event on(c.manualReset, name.c_str());
            for (const char* step = c.script; *step; ++step) {
                if (*step == 'c') on.ClearEvent();
                if (*step == 's' || *step == 'f') on.SignalEvent(*step == 's');
                const bool waits = *step <= '9';
                EXPECT_EQ(waits ? on.WaitForEvent(0) : 0, waits ? *step - '0' : 0) << step;
            }
        }
    }
}

TEST(EventWait, ReleasesEverySleeperOrOneForEachSignal) {
    for (const bool manual : {true, false}) {
        for (const std::string& name : {std::string(), test::UniqueName("sleepers")}) {
            SCOPED_TRACE(manual ? "manual " + name : name);
            const event on(manual, name.c_str());
            std::atomic<int> released{0};
            test::Sleepers sleepers;
            for (int i = 0; i < 3; ++i) {
                sleepers.emplace_back([&] { released += on.WaitForEvent(kWaitForever); }).WaitUntilAsleep();
            }
            on.SignalEvent();
            if (manual) on.ClearEvent();
            for (int signalled = 1; !manual && signalled < 3; ++signalled) {
                if (!name.empty() || signalled > 1) {
                    while (released < signalled) std::this_thread::yield();
                    EXPECT_EQ(on.WaitForEvent(0), 0) << "the signal belongs to the sleeper";
                }
                on.SignalEvent();
            }
            sleepers.clear();
            EXPECT_EQ(released, 3);
            EXPECT_EQ(on.WaitForEvent(0), 0);
        }
    }
}

TEST(EventWait, SignalOfTheProcessNeitherEndsNorProlongsIt) {
    std::signal(SIGUSR1, [](int) {});
    const event on;
    const std::uint32_t start = platform::TickCount();
    SleepingThread sleeper([&] { EXPECT_EQ(on.WaitForEvent(150), 0); });
    for (int i = 0; i < 5; ++i) {
        sleeper.WaitUntilAsleep();
        ::pthread_kill(sleeper.Handle(), SIGUSR1);
        std::this_thread::sleep_for(std::chrono::milliseconds(15));
    }
    sleeper.Join();
    EXPECT_GE(platform::TickCount() - start, 149u);
    EXPECT_LT(platform::TickCount() - start, 3000u);
}

// Each round one thread waits with a time-out close to the moment of the signal: no signal may be lost or doubled.
TEST(EventWait, SignalNearTheTimeOutIsTakenOnce) {
    const event on(false);
    for (int round = 0; round < 60; ++round) {
        std::int32_t taken = 0;
        SleepingThread waiter([&] { taken = on.WaitForEvent(1); });
        std::this_thread::sleep_for(std::chrono::microseconds(900 + round * 5));
        on.SignalEvent();
        waiter.Join();
        ASSERT_EQ(taken + on.WaitForEvent(0), 1) << round;
    }
}

// One token goes round: who comes while a release is under way to another must not sleep through one of its own.
TEST(EventWait, NobodySleepsThroughARelease) {
    for (int round = 0; round < 100; ++round) {
        const event token(false);
        token.SignalEvent();
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&token] {
                for (int turn = 0; turn < 100; ++turn) {
                    token.WaitForEvent(kWaitForever);
                    token.SignalEvent();
                }
            });
        }
        for (std::thread& thread : threads) thread.join();
        ASSERT_EQ(token.WaitForEvent(0), 1);
    }
}

TEST(EventWait, ReleasedThreadSeesTheWorkBeforeTheSignalAndMayDestroyTheEvent) {
    for (int i = 0; i < 200; ++i) {
        auto* const on = new event(i % 2 == 0);
        int value = 0;
        SleepingThread waiter([&value, on] {
            on->WaitForEvent(kWaitForever);
            EXPECT_EQ(value, 1);
            delete on;
        });
        value = 1;
        on->SignalEvent();
    }
}

}  // namespace
}  // namespace dorvutil
