#include "dorvutil/concurrency/timer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <mutex>
#include <numeric>
#include <random>
#include <thread>

#include "concurrency/thread_support.h"
#include "dorvutil/concurrency/backlight.h"
#include "dorvutil/concurrency/low_res_timer_mgr.h"
#include "dorvutil/memory/pool.h"
#include "dorvutil/platform/clock.h"
#include "dorvutil/platform/thread.h"
#include "messaging/registry_down.h"

namespace dorvutil {
namespace {

using Numbers = std::vector<int>;
constexpr std::uint32_t kHour = 3'600'000;

// The shifted tick; real again at the end.
class TestClock {
public:
    ~TestClock() { platform::ShiftTick(0); }
    void Advance(std::uint32_t milliseconds) {
        platform::ShiftTick(m_shift += milliseconds);
        GetLowResTimerMgr()->SignalWork();  // it sleeps by the real clock
    }

private:
    std::uint32_t m_shift = 0;
};

// What timers tell about themselves.
struct TimerLog {
    void Fired(int number) {
        const std::lock_guard lock(m_mutex);
        m_numbers.push_back(number);
    }
    Numbers Fired() const {
        const std::lock_guard lock(m_mutex);
        return m_numbers;
    }
    void WaitForEnd(int destroyed) const {
        while (m_destroyed != destroyed) platform::YieldThread();
    }

    mutable std::mutex m_mutex;
    Numbers m_numbers;
    std::atomic<int> m_destroyed{0};
};

class LoggedTimer : public OrvTimerAsync {
public:
    LoggedTimer(TimerLog& log, int number, std::uint32_t intervalMs, bool oneShot = true)
        : OrvTimerAsync("logged", intervalMs, oneShot), m_log(log), m_number(number) {}
    ~LoggedTimer() override { ++m_log.m_destroyed; }
    void OnTimeout() override {
        if (m_action) m_action();
        m_log.Fired(m_number);
    }
    std::function<void()> m_action;

private:
    TimerLog& m_log;
    const int m_number;
};

// Returns when the timer thread has fired everything that is over: what is due now comes last.
void FireWhatIsDue() {
    TimerLog log;
    auto* const last = new LoggedTimer(log, 0, 0);
    last->Start();
    last->Unref();
    log.WaitForEnd(1);
}

bool NoneIsLeft() { return GetLowResTimerMgr()->EmptyEvent().WaitForEvent(test::kSoonMs) == 1; }

TEST(Timer, RepeatsFromTheMomentItFiredAndCatchesNothingUp) {
    TestClock clock;
    TimerLog log;
    auto* const once = new LoggedTimer(log, 1, kHour, true);
    auto* const again = new LoggedTimer(log, 2, 9 * kHour, false);
    once->Start(), again->Start(), again->SetInterval(kHour + 2), again->Unref();
    constexpr std::uint32_t kMinute = 60'000, kAlmost = kHour - kMinute, kRest = kMinute + 3;
    static constexpr std::uint32_t kAdvance[] = {kAlmost, kRest, kAlmost, kRest, 3 * kHour, kAlmost};
    static constexpr std::size_t kFired[] = {0, 2, 2, 3, 4, 4};
    for (int step = 0; step < 6; ++step) {
        clock.Advance(kAdvance[step]);
        FireWhatIsDue();
        EXPECT_EQ(log.Fired().size(), kFired[step]) << "step " << step;
    }
    EXPECT_EQ(log.m_destroyed, 0) << "running, or held by its creator";
    EXPECT_EQ(once->Unref(), 0);
    again->Stop();
    log.WaitForEnd(2);
    EXPECT_TRUE(NoneIsLeft());
}

// What a user does with a timer of two hours a minute before its end, and after how many hours it then fires.
TEST(Timer, StoppedAndRestartedTimers) {
    static constexpr struct {
        void (*act)(OrvTimerAsync&);
        std::uint32_t due;  // 0: never
    } kCases[] = {{[](OrvTimerAsync& t) { t.Stop(), t.Stop(); }, 0},
                  {[](OrvTimerAsync& t) { t.Start(); }, 2},
                  {[](OrvTimerAsync& t) { t.Stop(), t.Start(); }, 2},
                  {[](OrvTimerAsync& t) { t.Stop(), (void)NoneIsLeft(), t.Start(); }, 2},
                  {[](OrvTimerAsync& t) { t.SetInterval(3 * kHour); }, 3},
                  {[](OrvTimerAsync& t) { t.SetInterval(kHour); }, 1}};
    for (const auto& c : kCases) {
        TestClock clock;
        TimerLog log;
        auto* const timer = new LoggedTimer(log, 1, 2 * kHour);
        timer->Start();
        clock.Advance(2 * kHour - 60'000);
        c.act(*timer);
        clock.Advance((c.due == 0 ? 9 : c.due) * kHour - 60'000);
        FireWhatIsDue();
        EXPECT_EQ(log.Fired(), Numbers{}) << "case " << &c - kCases;
        clock.Advance(60'001);
        FireWhatIsDue();
        EXPECT_EQ(log.Fired().size(), c.due == 0 ? 0u : 1u) << "case " << &c - kCases;
        EXPECT_EQ(timer->Unref(), 0) << "a run that is over must not keep its timer";
    }
}

TEST(Timer, FiresOneAPassInOrderOfDueTicksAcrossTheWrap) {
    constexpr int kTimers = 25;
    Numbers expected(kTimers);
    std::iota(expected.begin(), expected.end(), 0);
    Numbers order = expected;
    const auto seed = std::random_device{}();
    std::shuffle(order.begin(), order.end(), std::mt19937(seed));
    TestClock clock;
    clock.Advance(0xFFFF'0000u - platform::TickCount());
    TimerLog log;
    for (const int i : order) {
        auto* const timer = new LoggedTimer(log, i, 0x8000u + static_cast<std::uint32_t>(i) * 0x1000u);
        timer->Start(), timer->Unref();
    }
    const auto begin = std::chrono::steady_clock::now();
    clock.Advance(0x40000);
    FireWhatIsDue();
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(10) * (kTimers - 1));
    EXPECT_EQ(log.Fired(), expected) << "seed " << seed;
}

TEST(Timer, IntervalsBeyondHalfTheTickAreOver) {
    TimerLog log;
    std::vector<LoggedTimer*> timers;
    for (const std::uint32_t interval : {0xFFFF'FFFFu, 0x8001'0000u, 0x7FFF'FFFFu, 0x7FFF'FF00u}) {
        timers.push_back(new LoggedTimer(log, 1, interval));
        timers.back()->Start();
    }
    FireWhatIsDue();
    EXPECT_EQ(log.Fired(), (Numbers{1, 1}));
    for (LoggedTimer* const timer : timers) timer->Stop(), timer->Unref();
    log.WaitForEnd(4);
}

TEST(Timer, TimeOutsMayStopAndStartTheirTimer) {
    for (const bool starts : {false, true}) {
        TestClock clock;
        TimerLog log;
        auto* const timer = new LoggedTimer(log, 1, kHour, starts);
        timer->m_action = [&] { starts ? timer->Start() : timer->Stop(); };
        timer->Start();
        for (const std::size_t fired : {std::size_t{1}, std::size_t{starts ? 2u : 1u}}) {
            clock.Advance(kHour + 1);
            FireWhatIsDue();
            EXPECT_EQ(log.Fired().size(), fired);
        }
        timer->Stop(), timer->Unref();
        log.WaitForEnd(1);
    }
}

struct CountingBacklight : OrvBacklight {
    void OnTimeout() override { ++m_fired; }
    std::atomic<int> m_fired{0};
};

TEST(Backlight, SayingOnAgainDoesNotStartItAgain) {
    TestClock clock;
    auto* const light = new CountingBacklight;
    for (const bool on : {true, true, false, false}) {
        light->KeepBacklightOn(on);
        clock.Advance(2500);
        FireWhatIsDue();
    }
    EXPECT_EQ(light->m_fired, 1);
    EXPECT_EQ(light->Unref(), 0);
}

TEST(TimerThreads, AThousandTimersFromFourThreads) {
    TimerLog log;
    const auto work = [&log] {
        std::vector<LoggedTimer*> timers;
        for (int i = 0; i < 250; ++i) timers.push_back(new LoggedTimer(log, i, kHour, i % 2 == 0));
        for (int round = 0; round < 10; ++round) {
            for (LoggedTimer* const timer : timers) timer->Start();
            for (LoggedTimer* const timer : timers) timer->SetInterval(round % 3 == 0 ? 0 : kHour);
            for (LoggedTimer* const timer : timers) timer->Stop();
        }
        for (LoggedTimer* const timer : timers) timer->Unref();
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(work);
    for (auto& thread : threads) thread.join();
    log.WaitForEnd(1000);
    EXPECT_TRUE(NoneIsLeft());
}

TEST(TimerManager, TearDownStopsEveryTimer) {
    TestClock clock;
    TimerLog log;
    auto* const kept = new LoggedTimer(log, 1, kHour, false);
    auto* const abandoned = new LoggedTimer(log, 2, kHour, false);
    kept->Start(), abandoned->Start(), abandoned->Unref();
    testing_support::RegistryDown down;
    EXPECT_EQ(log.m_destroyed, 1) << "nobody holds the abandoned one";
    kept->Start(), kept->Stop();
    down.BringBack();
    for (const std::size_t fired : {0u, 1u}) {
        clock.Advance(kHour + 1);
        FireWhatIsDue();
        EXPECT_EQ(log.Fired().size(), fired);
        kept->Start();
    }
    kept->Stop(), kept->Unref();
    log.WaitForEnd(2);
}

TEST(TimerManagerDeathTest, ATimeOutMayEndTheProcess) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto exitInTimeOut = [] {
        static TimerLog log;
        auto* const timer = new LoggedTimer(log, 1, 0);
        timer->m_action = [] { std::exit(7); };
        timer->Start();
        platform::SleepMs(test::kSoonMs);
    };
    EXPECT_EXIT(exitInTimeOut(), testing::ExitedWithCode(7), "");
}

}  // namespace
}  // namespace dorvutil
