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
class Counter : public ProgressObserver {
public:
    void OnProgressChanged(ProgressBarMsg) override { ++m_count; }
    void ForceUpdate() override {}
    int m_count = 0;
};

TEST(ProgressPause, CanRunWaitsForAsLongAsItIsAsked) {
    CB_Dialog dialog;
    EXPECT_TRUE(dialog.CanRun(0));
    dialog.Pause();
    EXPECT_TRUE(dialog.Is_Paused());
    EXPECT_FALSE(dialog.CanRun(0));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(dialog.CanRun(50));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(49));
    dialog.Unpause();
    EXPECT_FALSE(dialog.Is_Paused());
    EXPECT_TRUE(dialog.CanRun(kForever));
}

TEST(ProgressPause, CancelAndUnpauseEndAWaitOnAnotherThread) {
    for (const bool cancel : {false, true}) {
        CB_Dialog dialog("paused");
        dialog.Pause();
        std::atomic<bool> asked{false};
        bool answer = cancel;
        std::thread worker([&] {
            const CB_Dialog own("paused");
            asked = true;
            answer = own.CanRun(kForever);
        });
        while (!asked) std::this_thread::yield();
        EXPECT_TRUE(dialog.Is_Paused()) << "the wait holds no lock";
        cancel ? dialog.Cancel() : dialog.Unpause();
        worker.join();
        EXPECT_EQ(answer, !cancel);
        EXPECT_FALSE(dialog.Is_Paused());
    }
}

TEST(ProgressPause, AWaitKeepsTheStateAlive) {
    CB_Dialog dialog("awaited");
    dialog.Pause();
    std::atomic<bool> asked{false};
    std::thread worker([&] {
        asked = true;
        EXPECT_TRUE(dialog.CanRun(20));
    });
    while (!asked) std::this_thread::yield();
    dialog = CB_Dialog("left");
    worker.join();
}

// Every thread has handles of its own and one in common, and all read and write the same texts.
TEST(ProgressThreads, HandlesOfOneStateMayBeUsedFromAllThreads) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 400;
    CB_Dialog common("shared");
    Counter counter;
    common.AddObserver(&counter);
    common.SetNumSteps(kThreads * kRounds);
    const auto work = [&common](int number) {
        for (int i = 0; i < kRounds; ++i) {
            CB_Dialog own("shared"), anonymous;
            own.Step(1);
            const ORVustring text = number % 2 == 0 ? ORVustring("even") : ORVustring("odd number of a thread");
            own.MessageLine1(text);
            const ORVustring line = common.GetMessageLine1();
            EXPECT_TRUE(line == "even" || line == "odd number of a thread");
            common.MessageLine2(line);
            anonymous = common;
            EXPECT_TRUE(anonymous.CanRun(kForever));
        }
    };
    std::thread pauser([] {
        CB_Dialog own("shared");
        for (int i = 0; i < kRounds; ++i) {
            own.Pause();
            own.Unpause();
        }
    });
    std::vector<std::thread> workers;
    for (int i = 0; i < kThreads; ++i) workers.emplace_back(work, i);
    for (std::thread& worker : workers) worker.join();
    pauser.join();
    EXPECT_EQ(common.GetCurrStep(), kThreads * kRounds);
    EXPECT_EQ(counter.m_count, 1 + 3 * kThreads * kRounds);
}

}  // namespace
}  // namespace dorvutil
