#include "dorvutil/concurrency/event.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "dorvutil/platform/event.h"
#include "dorvutil/platform/wait_word.h"
#include "sleeping_thread.h"

namespace dorvutil {
namespace {

using Sleepers = std::vector<std::unique_ptr<SleepingThread>>;

Sleepers StartSleepers(const event& on, int count, std::atomic<int>& released) {
    Sleepers sleepers;
    for (int i = 0; i < count; ++i) {
        sleepers.push_back(std::make_unique<SleepingThread>([&] { released += on.WaitForEvent(kWaitForever); }));
        sleepers.back()->WaitUntilAsleep();
    }
    return sleepers;
}

// A name of this run alone, so that two runs of the suite do not meet.
std::string NameOf(const char* topic) { return topic + std::to_string(platform::CurrentThreadId()); }

struct Step {
    char action;  // s: SignalEvent(true), f: SignalEvent(false), c: ClearEvent, w: WaitForEvent(0)
    std::int32_t expected;
};

void Play(event& on, const std::vector<Step>& steps) {
    for (std::size_t i = 0; i < steps.size(); ++i) {
        SCOPED_TRACE(i);
        if (steps[i].action == 's') on.SignalEvent(true);
        if (steps[i].action == 'f') on.SignalEvent(false);
        if (steps[i].action == 'c') on.ClearEvent();
        if (steps[i].action == 'w') {
            EXPECT_EQ(on.WaitForEvent(0), steps[i].expected);
        }
    }
}

TEST(EventState, FollowsSignalsAndWaits) {
    static const struct {
        const char* name;
        bool manualReset;
        std::vector<Step> steps;
    } kCases[] = {
        {"created clear, manual", true, {{'w', 0}}},
        {"created clear, automatic", false, {{'w', 0}}},
        {"manual stays set", true, {{'s', 0}, {'w', 1}, {'w', 1}, {'c', 0}, {'w', 0}}},
        {"automatic clears itself", false, {{'s', 0}, {'w', 1}, {'w', 0}}},
        {"the flag changes nothing, manual", true, {{'f', 0}, {'w', 1}, {'w', 1}}},
        {"the flag changes nothing, automatic", false, {{'f', 0}, {'w', 1}, {'w', 0}}},
        {"signals do not add up", false, {{'s', 0}, {'s', 0}, {'w', 1}, {'w', 0}}},
        {"clearing a set automatic one", false, {{'s', 0}, {'c', 0}, {'w', 0}, {'s', 0}, {'w', 1}}},
        {"clearing a clear one", true, {{'c', 0}, {'w', 0}, {'s', 0}, {'w', 1}}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        event anonymous(c.manualReset);
        Play(anonymous, c.steps);
        event emptyName(c.manualReset, "");
        Play(emptyName, c.steps);
        event named(c.manualReset, NameOf("dorvutil test \\ event").c_str());
        Play(named, c.steps);
    }
}

TEST(EventWait, ManualReleasesEverySleeperEvenWhenClearedAtOnce) {
    for (const std::string& name : {std::string(), NameOf("dorvutil pulse")}) {
        SCOPED_TRACE(name);
        event on(true, name.c_str());
        std::atomic<int> released{0};
        Sleepers sleepers = StartSleepers(on, 3, released);
        on.SignalEvent();
        on.ClearEvent();
        sleepers.clear();
        EXPECT_EQ(released, 3);
        EXPECT_EQ(on.WaitForEvent(0), 0);
    }
}

TEST(EventWait, AutomaticReleasesOneSleeperForEachSignal) {
    event on(false);
    std::atomic<int> released{0};
    Sleepers sleepers = StartSleepers(on, 3, released);
    on.SignalEvent();
    on.SignalEvent();
    while (released < 2) std::this_thread::yield();
    EXPECT_EQ(on.WaitForEvent(0), 0) << "the signals belong to the sleepers";
    on.SignalEvent();
    sleepers.clear();
    EXPECT_EQ(released, 3);
}

TEST(EventWait, NamedAutomaticReleasesOneSleeper) {
    event on(false, NameOf("dorvutil auto").c_str());
    std::atomic<int> released{0};
    Sleepers sleepers = StartSleepers(on, 2, released);
    for (int expected = 1; expected <= 2; ++expected) {
        on.SignalEvent();
        while (released < expected) std::this_thread::yield();
        EXPECT_EQ(on.WaitForEvent(0), 0);
    }
}

TEST(EventWait, TimeOutLeavesNoSleeperBehind) {
    event on(false);
    EXPECT_EQ(on.WaitForEvent(1), 0);
    on.SignalEvent();  // would go to the thread that left
    EXPECT_EQ(on.WaitForEvent(0), 1);
}

TEST(EventWait, SignalOfTheProcessNeitherEndsNorProlongsIt) {
    std::signal(SIGUSR1, [](int) {});
    constexpr std::chrono::milliseconds kTime(150);
    const event on;
    std::int32_t result = -2;
    const auto start = std::chrono::steady_clock::now();
    SleepingThread sleeper([&] { result = on.WaitForEvent(static_cast<std::uint32_t>(kTime.count())); });
    for (int i = 0; i < 5; ++i) {
        sleeper.WaitUntilAsleep();
        ::pthread_kill(sleeper.Handle(), SIGUSR1);
        std::this_thread::sleep_for(kTime / 10);
    }
    sleeper.Join();
    const auto passed = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(result, 0);
    EXPECT_GE(passed, kTime);
    EXPECT_LT(passed, kTime * 20);
}

// Each round one thread waits with a time-out close to the moment of the signal: no signal may be lost or doubled.
TEST(EventWait, SignalNearTheTimeOutIsTakenOnce) {
    event on(false);
    for (int round = 0; round < 60; ++round) {
        std::int32_t taken = 0;
        SleepingThread waiter([&] { taken = on.WaitForEvent(1); });
        std::this_thread::sleep_for(std::chrono::microseconds(900 + round * 5));
        on.SignalEvent();
        waiter.Join();
        ASSERT_EQ(taken + on.WaitForEvent(0), 1) << round;
    }
}

TEST(EventWait, EventMayBeDestroyedByTheThreadItReleases) {
    for (int i = 0; i < 200; ++i) {
        auto* const on = new event;
        SleepingThread waiter([on] {
            on->WaitForEvent(kWaitForever);
            delete on;
        });
        on->SignalEvent();
    }
}

TEST(EventOrder, WorkDoneBeforeTheSignalIsSeenAfterTheWait) {
    event ping(false);
    event pong(false);
    int value = 0;
    SleepingThread other([&] {
        for (int i = 0; i < 1000; ++i) {
            ping.WaitForEvent(kWaitForever);
            ++value;
            pong.SignalEvent();
        }
    });
    for (int i = 0; i < 1000; ++i) {
        ++value;
        ping.SignalEvent();
        ASSERT_EQ(pong.WaitForEvent(kWaitForever), 1);
        ASSERT_EQ(value, 2 * (i + 1));
    }
}

TEST(PlatformEvent, AnswersForNoObject) {
    EXPECT_EQ(platform::WaitForEvent(nullptr, 0), -1);
    EXPECT_EQ(platform::WaitForEvent(nullptr, kWaitForever), -1);
    platform::SetEvent(nullptr);
    platform::ResetEvent(nullptr);
    platform::CloseEvent(nullptr);
}

TEST(PlatformWaitWord, AnswersByValueAndTime) {
    const std::atomic<std::uint32_t> word{5};
    EXPECT_TRUE(platform::WaitOnWord(word, 6, platform::kWaitForever));
    EXPECT_FALSE(platform::WaitOnWord(word, 5, 0));
    EXPECT_FALSE(platform::WaitOnWord(word, 5, 2));
}

}  // namespace
}  // namespace dorvutil
