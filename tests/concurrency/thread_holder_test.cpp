#include "dorvutil/concurrency/thread_holder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include "concurrency/thread_support.h"
#include "dorvutil/platform/thread.h"

namespace dorvutil {
namespace {

using test::GateKeeper;
using test::kSoonMs;

std::int32_t Add(ThreadHolder& holder, GateKeeper& gate, bool deferred) {
    return holder.AddNewThread("held", GateKeeper::Run, &gate, eThreadPriorityNormal, 8192, deferred);
}

struct Names {
    std::mutex lock;
    std::vector<std::string> seen;

    static std::int32_t Run(void* self) {
        auto& names = *static_cast<Names*>(self);
        const std::lock_guard guard(names.lock);
        names.seen.push_back(test::SystemThreadName());
        return 0;
    }
};

TEST(ThreadHolder, EmptyOneHasFinishedEverything) {
    ThreadHolder holder;
    for (const std::uint32_t index : {0u, 1u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        SCOPED_TRACE(index);
        holder.StartThread(index);
        EXPECT_EQ(holder.WaitForThreadStart(index, 0), 1);
        EXPECT_EQ(holder.WaitForThreadCompletion(index, -1), 1);
        EXPECT_FALSE(holder.IsThreadRunning(index));
    }
    holder.StartAllThreads();
    EXPECT_TRUE(holder.WaitForAllThreadStart(0));
    EXPECT_TRUE(holder.WaitForAllThreadCompletion(-1));
    holder.FlushThreads(true, true, -1);
}

TEST(ThreadHolder, AddingCountsAndDeferredThreadsWaitForTheirStart) {
    GateKeeper gates[3];
    ThreadHolder holder;
    for (std::int32_t i = 0; i < 3; ++i) EXPECT_EQ(Add(holder, gates[i], true), i + 1);
    EXPECT_EQ(holder.WaitForThreadStart(1, 0), 0);
    EXPECT_FALSE(holder.WaitForAllThreadStart(0));
    holder.StartThread(1);
    EXPECT_EQ(holder.WaitForThreadStart(1, kSoonMs), 1);
    EXPECT_EQ(holder.WaitForThreadStart(0, 0), 0);
    EXPECT_EQ(holder.WaitForThreadCompletion(1, 0), 0);
    EXPECT_TRUE(holder.IsThreadRunning(1));
    gates[1].open.SignalEvent();
    EXPECT_EQ(holder.WaitForThreadCompletion(1, kSoonMs), 1);
    EXPECT_FALSE(holder.WaitForAllThreadCompletion(0)) << "two have not even begun";
    holder.StartAllThreads();
    EXPECT_TRUE(holder.WaitForAllThreadStart(kSoonMs));
    gates[0].open.SignalEvent();
    EXPECT_FALSE(holder.WaitForAllThreadCompletion(0)) << "the last one timed out";
    gates[2].open.SignalEvent();
    EXPECT_TRUE(holder.WaitForAllThreadCompletion(kSoonMs));
}

TEST(ThreadHolder, ExecuteRunsOneNamedThreadForEachAsked) {
    static constexpr struct {
        std::uint32_t asked;
        std::uint32_t threads;  // 0: as many as processors
    } kCases[] = {{0, 0}, {0xFFFFFFFFu, 0}, {1, 1}, {4, 4}, {11, 11}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.asked);
        Names names;
        ThreadHolder holder;
        holder.Execute("job", Names::Run, &names, c.asked);
        const std::uint32_t count = c.threads != 0 ? c.threads : platform::ProcessorCount();
        std::vector<std::string> expected;
        for (std::uint32_t i = 0; i < count; ++i) expected.push_back("job_" + std::to_string(i));
        std::sort(expected.begin(), expected.end());
        std::sort(names.seen.begin(), names.seen.end());
        EXPECT_EQ(names.seen, expected);
        EXPECT_EQ(holder.AddNewThread("x", nullptr, nullptr, eThreadPriorityNormal, 0, false),
                  static_cast<std::int32_t>(count) + 1);
    }
    EXPECT_EQ(ThreadHolder::GetDesiredThreadCountForCPU(), static_cast<std::int32_t>(platform::ProcessorCount()));
    EXPECT_GE(ThreadHolder::GetDesiredThreadCountForCPU(), 1);
}

TEST(ThreadHolder, ExecuteAlsoWaitsForThreadsHeldBefore) {
    GateKeeper gate;
    Names names;
    ThreadHolder holder;
    Add(holder, gate, false);
    const std::string longName(200, 'n');
    MThread* const opener = CreateThread(
        "opener",
        [](void* g) -> std::int32_t {
            static_cast<GateKeeper*>(g)->open.SignalEvent();
            return 0;
        },
        &gate, eThreadPriorityNormal, 0, false);
    holder.Execute(longName.c_str(), Names::Run, &names, 2);
    EXPECT_EQ(gate.through.WaitForEvent(0), 1);
    EXPECT_EQ(names.seen, std::vector<std::string>(2, std::string(15, 'n')));
    holder.Execute(nullptr, Names::Run, &names, 1);
    EXPECT_EQ(names.seen.back(), "_0");
    opener->Release(true, false, -1);
}

TEST(ThreadHolder, FlushWithoutKillLeavesThreadsRunning) {
    for (const bool wait : {false, true}) {
        GateKeeper gate;
        ThreadHolder holder;
        Add(holder, gate, false);
        ASSERT_TRUE(gate.Entered());
        holder.FlushThreads(wait, false, 0);
        EXPECT_FALSE(holder.IsThreadRunning(0));
        EXPECT_EQ(gate.through.WaitForEvent(0), 0);
        gate.open.SignalEvent();
        EXPECT_TRUE(gate.Through());
        EXPECT_EQ(Add(holder, gate, true), 1);  // emptied
        holder.FlushThreads(false, false, 0);
    }
}

TEST(ThreadHolder, FlushWithKillEndsWhatDoesNotFinish) {
    if (test::kThreadSanitizer) GTEST_SKIP() << "a killed thread cannot be followed";
    GateKeeper stuck, done;
    done.open.SignalEvent();
    ThreadHolder holder;
    Add(holder, stuck, false);
    Add(holder, done, false);
    ASSERT_TRUE(stuck.Entered());
    ASSERT_TRUE(done.Through());
    holder.FlushThreads(true, true, 1);
    stuck.open.SignalEvent();
    EXPECT_EQ(stuck.through.WaitForEvent(5), 0);
    EXPECT_EQ(Add(holder, done, false), 1);
}

}  // namespace
}  // namespace dorvutil
