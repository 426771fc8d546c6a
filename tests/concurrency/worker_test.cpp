#include "dorvutil/concurrency/worker.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

#include "concurrency/thread_support.h"
#include "dorvutil/platform/clock.h"

namespace dorvutil {
namespace {

using test::kSoonMs;

// Writes down what its thread does: i(nit), w(ork), r(elinquish), c(leanup). Work is a counted signal.
class TestWorker : public CWorkerThread {
public:
    explicit TestWorker(bool keepRest = false, std::int32_t stackSize = 8192)
        : CWorkerThread("worker", eThreadPriorityNormal, stackSize), m_keepRest(keepRest) {}
    ~TestWorker() override {
        gate.SignalEvent();
        Stop(true);
    }

    bool SignalWork() override {
        m_signals.release();
        return true;
    }
    bool WaitForWork() override {
        waiting.SignalEvent();
        m_signals.acquire();
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
    bool ThreadInit() override {
        log += 'i';
        return true;
    }
    bool ThreadCleanup() override {
        log += 'c';
        return true;
    }
    void Relinquish() override {
        if (m_keepRest) CWorkerThread::Relinquish();
    }

    void Ask(std::int32_t units = 1) {
        finished.ClearEvent();
        for (std::int32_t i = 0; i < units; ++i) {
            ++asked;
            SignalWork();
        }
    }
    bool Finished() const { return finished.WaitForEvent(kSoonMs) == 1; }

    event waiting, entered, finished;
    event gate;  // closed: ThreadDoWork stays inside
    std::atomic<bool> inWork{false};
    std::atomic<std::int32_t> asked{0}, done{0};
    std::string log;  // the worker thread's; read after Stop

private:
    std::counting_semaphore<> m_signals{0};
    const bool m_keepRest;
};

TEST(Worker, DoesNothingBeforeItsStartAndGoesUnstarted) {
    TestWorker worker;
    worker.Ask();
    EXPECT_TRUE(worker.IsRunning());
    EXPECT_STREQ(worker.GetThreadName(), "worker");
    EXPECT_EQ(worker.waiting.WaitForEvent(5), 0);
    EXPECT_EQ(worker.log, "");
    struct Idle : CWorkerThread {
        Idle() : CWorkerThread("idle", eThreadPriorityNormal, 0) {}
        bool SignalWork() override { return true; }
        bool WaitForWork() override { return true; }
        bool ThreadDoWork() override { return true; }
    };
    std::make_unique<Idle>().reset();  // no Stop in its destructor
}

TEST(Worker, WorksBetweenInitAndCleanup) {
    TestWorker worker;
    worker.gate.SignalEvent();
    EXPECT_TRUE(worker.Start(true));
    worker.Ask(3);
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
    enum State { kNew, kPausedNew, kStarted, kWaiting, kPaused };
    for (const State state : {kNew, kPausedNew, kStarted, kWaiting, kPaused}) {
        for (const bool wait : {true, false}) {
            SCOPED_TRACE(state);
            TestWorker worker;
            if (state >= kStarted) worker.Start(false);
            if (state >= kWaiting) worker.waiting.WaitForEvent(kSoonMs);
            EXPECT_TRUE((state != kPausedNew && state != kPaused) || worker.Pause(true));
            EXPECT_EQ(worker.Stop(wait), wait);
            EXPECT_TRUE(wait || worker.Stop(true));
            EXPECT_EQ(worker.log, "ic");
        }
    }
}

TEST(Worker, WithoutAThreadItsStatesAreNeverReached) {
    if (test::kAnySanitizer) GTEST_SKIP() << "a sanitizer needs more address space than that";
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto tryInVain = [] {
        const rlimit limit{rlim_t{1} << 30, rlim_t{1} << 30};
        setrlimit(RLIMIT_AS, &limit);
        {
            TestWorker worker(false, 0x7FFFFFFF);
            EXPECT_FALSE(worker.IsRunning());
            EXPECT_TRUE(worker.Start(true));
            EXPECT_FALSE(worker.Pause(true));
            EXPECT_FALSE(worker.Stop(true));
        }
        std::_Exit(testing::Test::HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(tryInVain(), testing::ExitedWithCode(0), "");
}

TEST(Worker, WorkSignalledDuringAPauseIsDoneAfterStart) {
    TestWorker worker;
    worker.gate.SignalEvent();
    worker.Start(true);
    ASSERT_EQ(worker.waiting.WaitForEvent(kSoonMs), 1);
    EXPECT_FALSE(worker.Pause(false));
    EXPECT_TRUE(worker.Pause(true));
    worker.Ask(2);
    EXPECT_EQ(worker.entered.WaitForEvent(20), 0);
    worker.Start(true);
    EXPECT_TRUE(worker.Finished());
    EXPECT_EQ(worker.done, 2);
}

TEST(Worker, PauseWithWaitLastsUntilTheUnitIsDone) {
    TestWorker worker;
    worker.Start(true);
    worker.Ask(2);
    ASSERT_EQ(worker.entered.WaitForEvent(kSoonMs), 1);
    EXPECT_FALSE(worker.Pause(false));  // at once, in the middle of the unit
    EXPECT_TRUE(worker.inWork);
    event paused;
    std::thread pauser([&] {
        EXPECT_TRUE(worker.Pause(true));
        EXPECT_FALSE(worker.inWork);
        paused.SignalEvent();
    });
    EXPECT_EQ(paused.WaitForEvent(30), 0);
    worker.gate.SignalEvent();
    pauser.join();
    EXPECT_EQ(worker.done, 1);
}

TEST(Worker, StopWithWaitInTheMiddleOfAUnitLetsItFinish) {
    TestWorker worker;
    worker.Start(true);
    worker.Ask(2);
    ASSERT_EQ(worker.entered.WaitForEvent(kSoonMs), 1);
    EXPECT_FALSE(worker.Stop(false));
    worker.gate.SignalEvent();
    EXPECT_TRUE(worker.Stop(true));
    EXPECT_EQ(worker.log, "iwc");
}

// Whoever has paused with wait sees no work begin until somebody starts again: with one pauser, itself.
TEST(Worker, NoUnitBeginsBehindAPauseWithWait) {
    TestWorker worker;
    worker.gate.SignalEvent();
    std::atomic<bool> end{false};
    std::thread asker([&] {
        while (!end) {
            worker.Ask();
            std::this_thread::yield();
        }
    });
    for (int i = 0; i < 300; ++i) {
        worker.Start(i % 2 == 0);
        std::this_thread::yield();
        ASSERT_TRUE(worker.Pause(true));
        const std::int32_t done = worker.done;
        for (int k = 0; k < 20; ++k) std::this_thread::yield();
        ASSERT_FALSE(worker.inWork);
        ASSERT_EQ(worker.done, done);
    }
    end = true;
    asker.join();
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
    struct Counting : TestWorker {
        Counting() : TestWorker(true) {}
        ~Counting() override { Stop(true); }
        void Relinquish() override {
            resting.SignalEvent();
            TestWorker::Relinquish();
            ++rests;
        }
        event resting;
        std::atomic<int> rests{0};
    };
    // A rest that runs its full time again and again would take half a second.
    const std::uint32_t before = platform::TickCount();
    std::uint32_t spent = 0;
    for (int i = 0; i < 50; ++i) {
        Counting worker;
        worker.gate.SignalEvent();
        worker.Ask();
        worker.Start(true);
        ASSERT_EQ(worker.resting.WaitForEvent(kSoonMs), 1);
        const std::uint32_t asked = platform::TickCount();
        EXPECT_TRUE(worker.Stop(true));
        spent += platform::TickCount() - asked;
    }
    EXPECT_LT(spent, 250u) << "of " << platform::TickCount() - before;
}

}  // namespace
}  // namespace dorvutil
