#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "dorvutil/messaging/progress.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kForever = 0xFFFFFFFFu;

// Counts what it is told; the manager's lock makes a plain counter do.
struct Counter : ProgressObserver {
    void OnProgressChanged(ProgressBarMsg) override { ++m_count; }
    void ForceUpdate() override {}
    int m_count = 0;
};

TEST(ProgressPause, CanRunWaitsForAsLongAsItIsAsked) {
    CB_Dialog dialog;
    EXPECT_TRUE(dialog.CanRun(0));
    dialog.Pause();
    EXPECT_TRUE(dialog.Is_Paused() && !dialog.CanRun(0));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(dialog.CanRun(50));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(49));
    dialog.Unpause();
    EXPECT_TRUE(!dialog.Is_Paused() && dialog.CanRun(kForever));
}

TEST(ProgressPause, CancelUnpauseAndLeavingAreFreeWhileAnotherThreadWaits) {
    for (const bool cancel : {false, true}) {
        CB_Dialog dialog("paused"), left("left");
        dialog.Pause();
        left.Pause();
        std::atomic<bool> asked{false};
        bool answer = cancel;
        std::thread worker([&] {
            const CB_Dialog own("paused");
            asked = true;
            EXPECT_TRUE(left.CanRun(20)) << "the wait keeps the state alive";
            answer = own.CanRun(kForever);
        });
        while (!asked) std::this_thread::yield();
        left = CB_Dialog("right");
        EXPECT_TRUE(dialog.Is_Paused()) << "the wait holds no lock";
        cancel ? dialog.Cancel() : dialog.Unpause();
        worker.join();
        EXPECT_EQ(answer, !cancel);
        EXPECT_FALSE(dialog.Is_Paused());
    }
}

// Every thread has handles of its own and one in common, and all read and write the same texts.
TEST(ProgressThreads, HandlesOfOneStateMayBeUsedFromAllThreads) {
    constexpr int kThreads = 4, kRounds = 400;
    CB_Dialog common("shared");
    Counter counter;
    common.AddObserver(&counter);
    common.SetNumSteps(kThreads * kRounds);
    const auto work = [&common](int number) {
        const ORVustring texts[] = {ORVustring("even"), ORVustring("odd number of a thread")};
        for (int i = 0; i < kRounds; ++i) {
            CB_Dialog own("shared"), anonymous;
            own.Step(1);
            own.MessageLine1(texts[number % 2]);
            const ORVustring line = common.GetMessageLine1();
            EXPECT_TRUE(line == texts[0] || line == texts[1]);
            common.MessageLine2(line);
            anonymous = common;
            EXPECT_TRUE(anonymous.CanRun(kForever));
        }
    };
    std::vector<std::thread> workers;
    for (int i = 0; i < kThreads; ++i) workers.emplace_back(work, i);
    for (int i = 0; i < kRounds; ++i) {
        common.Pause();
        common.Unpause();
    }
    for (std::thread& worker : workers) worker.join();
    EXPECT_EQ(common.GetCurrStep(), kThreads * kRounds);
    EXPECT_EQ(counter.m_count, 1 + 3 * kThreads * kRounds);
}

}  // namespace
}  // namespace dorvutil
