#include "dorvutil/concurrency/worker.h"

#include <gtest/gtest.h>

#include <vector>

#include "concurrency/thread_support.h"
#include "dorvutil/concurrency/semaphore.h"
#include "dorvutil/platform/clock.h"
#include "dorvutil/platform/wait_word.h"

namespace dorvutil {
namespace {

using test::kSoonMs;

// Writes down what its thread does: i(nit), w(ork), c(leanup). Work is a counted signal.
class TestWorker : public CWorkerThread {
public:
    explicit TestWorker(bool rests = false) : CWorkerThread("worker", eThreadPriorityNormal, 8192), m_rests(rests) {}
    ~TestWorker() override {
        gate.SignalEvent();
        Stop(true);
    }

    bool SignalWork() override {
        m_signals.Release(1);
        signalled.SignalEvent();
        return true;
    }
    bool WaitForWork() override {
        waiting.SignalEvent();
        m_signals.Wait(kWaitForever);
        return true;
    }
    bool ThreadDoWork() override {
        inWork = true;
        entered.SignalEvent();
        gate.WaitForEvent(kWaitForever);
        // Signals come back when a request gets in between: only asked-for units count.
        std::int32_t wanted = asked;
        while (wanted > 0 && !asked.compare_exchange_weak(wanted, wanted - 1)) {
        }
        if (wanted > 0) {
            log += 'w';
            ++done;
            if (wanted == 1) finished.SignalEvent();
        }
        inWork = false;
        return true;
    }
    bool ThreadInit() override { return !(log += 'i').empty(); }
    bool ThreadCleanup() override { return !(log += 'c').empty(); }
    void Relinquish() override {
        resting.SignalEvent();
        if (m_rests) CWorkerThread::Relinquish();
    }

    void Ask(std::int32_t units = 1) {
        finished.ClearEvent();
        asked += units;
        for (std::int32_t i = 0; i < units; ++i) SignalWork();
    }
    bool Finished() const { return finished.WaitForEvent(kSoonMs) == 1; }

    event waiting, entered, resting, finished;
    event signalled{false};
    event gate;  // closed: ThreadDoWork stays inside
    std::atomic<bool> inWork{false};
    std::atomic<std::int32_t> asked{0}, done{0};
    std::string log;  // the worker thread's; read after Stop

private:
    TSem<critSec> m_signals;
    const bool m_rests;
};

// Opens two of a worker's events to a test that stands between the steps of a Pause.
event& ActionOf(CWorkerThread& worker);
event& RunOf(CWorkerThread& worker);
template <event CWorkerThread::*kAction, event CWorkerThread::*kRun>
struct Opened {
    friend event& ActionOf(CWorkerThread& worker) { return worker.*kAction; }
    friend event& RunOf(CWorkerThread& worker) { return worker.*kRun; }
};
template struct Opened<&CWorkerThread::m_actionEvent, &CWorkerThread::m_runEvent>;

TEST(Worker, WorksFromItsStartBetweenInitAndCleanup) {
    TestWorker worker;
    worker.gate.SignalEvent();
    worker.Ask(3);
    EXPECT_TRUE(worker.IsRunning());
    EXPECT_EQ(worker.waiting.WaitForEvent(5), 0);
    EXPECT_TRUE(worker.Start(true));
    ASSERT_TRUE(worker.Finished());
    EXPECT_TRUE(worker.Stop(true));
    EXPECT_EQ(worker.log, "iwwwc");
    while (worker.IsRunning()) std::this_thread::yield();
    EXPECT_TRUE(worker.Stop(true));
    EXPECT_FALSE(worker.Pause(true));
    EXPECT_TRUE(worker.Start(true));
    EXPECT_FALSE(worker.Stop(false));
}

TEST(Worker, StopEndsItFromEveryState) {
    enum State { kNew, kPausedNew, kStarted, kWaiting, kPaused, kWorking };
    for (const State state : {kNew, kPausedNew, kStarted, kWaiting, kPaused, kWorking}) {
        for (const bool wait : {true, false}) {
            SCOPED_TRACE(testing::Message() << "state " << state << ", wait " << wait);
            TestWorker worker;
            if (state >= kStarted) worker.Start(false);
            if (state >= kWaiting) worker.waiting.WaitForEvent(kSoonMs);
            EXPECT_TRUE((state != kPausedNew && state != kPaused) || worker.Pause(true));
            if (state == kWorking) {
                worker.Ask(2);
                worker.entered.WaitForEvent(kSoonMs);
                EXPECT_FALSE(worker.Stop(false));
                worker.gate.SignalEvent();
            }
            EXPECT_EQ(worker.Stop(wait), wait);
            EXPECT_TRUE(wait || worker.Stop(true));
            EXPECT_EQ(worker.log, state == kWorking ? "iwc" : "ic");
        }
    }
}

TEST(Worker, PauseWithWaitLastsUntilTheUnitIsDoneAndKeepsTheOthersForTheStart) {
    TestWorker worker;
    worker.Start(true);
    worker.Ask(2);
    ASSERT_EQ(worker.entered.WaitForEvent(kSoonMs), 1);
    EXPECT_FALSE(worker.Pause(false));  // at once, in the middle of the unit
    EXPECT_TRUE(worker.inWork);
    test::SleepingThread pauser([&] {
        EXPECT_TRUE(worker.Pause(true));
        EXPECT_FALSE(worker.inWork);
    });
    pauser.WaitUntilAsleep();
    EXPECT_FALSE(pauser.Done());
    worker.gate.SignalEvent();
    pauser.Join();
    worker.Ask();
    EXPECT_EQ(worker.finished.WaitForEvent(20), 0);
    EXPECT_EQ(worker.done, 1);
    worker.Start(true);
    EXPECT_TRUE(worker.Finished());
    EXPECT_EQ(worker.done, 3);
}

// The steps of a Pause with wait, at every point of the worker's turn: while the action event is held the worker turns
// without working, and what it saw of the run event before the pause does not count after it.
TEST(Worker, NoUnitBeginsDuringOrBehindAPauseThatCameInBetween) {
    TestWorker worker;
    worker.gate.SignalEvent();
    worker.Pause(true);
    worker.Ask();
    for (int round = 0; round < 500 && worker.done == 0; ++round) {
        ActionOf(worker).WaitForEvent(kWaitForever);
        worker.signalled.ClearEvent();
        RunOf(worker).SignalEvent();
        const bool turned = worker.signalled.WaitForEvent(kSoonMs) == 1;
        for (int spin = 0; spin < round % 16; ++spin) platform::SpinPause();
        RunOf(worker).ClearEvent();
        ActionOf(worker).SignalEvent();
        std::this_thread::yield();
        ASSERT_TRUE(turned) << "the work noticed was lost";
    }
    EXPECT_EQ(worker.done, 0);
    worker.Start(true);
    EXPECT_TRUE(worker.Finished());
}

TEST(Worker, NothingIsLostWhileThreadsStartAndPauseIt) {
    constexpr std::int32_t kThreads = 4, kRounds = 250;
    TestWorker worker;
    worker.gate.SignalEvent();
    std::vector<std::thread> threads;
    for (std::int32_t t = 0; t < kThreads; ++t) {
        threads.emplace_back([&worker, t] {
            for (std::int32_t i = 0; i < kRounds; ++i) {
                worker.Ask();
                if ((i + t) % 3 == 0) worker.Pause(t % 2 == 0);
                worker.Start((i + t) % 2 == 0);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    worker.Start(true);
    while (worker.asked > 0) std::this_thread::yield();
    EXPECT_TRUE(worker.Pause(true));
    EXPECT_EQ(worker.done, kThreads * kRounds);
}

TEST(WorkerRelinquish, KeepsUnitsTenMillisecondsApart) {
    TestWorker worker(true);
    worker.gate.SignalEvent();
    worker.Ask(4);
    const std::uint32_t before = platform::TickCount();
    worker.Start(true);  // a request from before the unit does not shorten the rest after it
    ASSERT_TRUE(worker.Finished());
    EXPECT_GE(platform::TickCount() - before, 28u);
}

TEST(WorkerRelinquish, EndsWhenARequestComes) {
    std::uint32_t spent = 0;
    for (int i = 0; i < 50; ++i) {
        TestWorker worker(true);
        worker.gate.SignalEvent();
        worker.Ask();
        worker.Start(true);
        ASSERT_EQ(worker.resting.WaitForEvent(kSoonMs), 1);
        spent -= platform::TickCount();
        EXPECT_TRUE(worker.Stop(true));
        spent += platform::TickCount();
    }
    EXPECT_LT(spent, 250u) << "rests that run their full time would take 500";
}

}  // namespace
}  // namespace dorvutil
