#include "dorvutil/concurrency/thread.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <cstdlib>
#include <mutex>
#include <set>
#include <vector>

#include "concurrency/thread_support.h"
#include "dorvutil/concurrency/thread_holder.h"

namespace dorvutil {
namespace {

using test::Create;
using test::GateKeeper;
using test::kSoonMs;

struct Note {
    std::atomic<int> runs{0};
    std::uint32_t threadId = 0;
    char name[16] = {};
    int nice = 99;

    static std::int32_t Run(void* self) {
        volatile char room[192 * 1024];  // any stack size asked for is enough
        for (std::size_t i = 0; i < sizeof room; i += 4096) room[i] = 1;
        auto& note = *static_cast<Note*>(self);
        note.threadId = GetThreadID();
        pthread_getname_np(pthread_self(), note.name, sizeof note.name);
        note.nice = getpriority(PRIO_PROCESS, 0);  // Linux: of the calling thread
        return note.runs += room[4096];
    }
};

TEST(Thread, RunsOnAThreadOfItsOwnWithNamePriorityAndStack) {
    static constexpr struct {
        const char* name;
        std::int32_t priority, stackSize;
        const char* shown;
        int nice;
    } kCases[] = {
        {"lowest", 0, 0, "lowest", 10},
        {"below", 1, 1, "below", 5},
        {"a name beyond fifteen bytes", 2, 8192, "a name beyond f", 0},
        {"fourteen bytes\xC3\xA4", 3, -1, "fourteen bytes", -5},
        {"highest", 4, 3'000'001, "highest", -10},
        {"beyond the highest", 5, 0, "beyond the high", 0},
        {"largest", 0x7FFFFFFF, 0, "largest", 0},
        {"negative", -1, 0, "negative", 0},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Note note;
        MThread* const thread =
            CreateThread(c.name, Note::Run, &note, static_cast<eOrvThreadPriority>(c.priority), c.stackSize, true);
        EXPECT_EQ(thread->Start()->WaitForCompletion(kSoonMs), 1);
        EXPECT_NE(note.threadId, GetThreadID());
        EXPECT_EQ(note.threadId, static_cast<RWinThread*>(thread)->GetOsThreadId());
        EXPECT_STREQ(note.name, c.shown);
        // Raising needs a privilege; refused, the priority stays.
        EXPECT_TRUE(note.nice == c.nice || (c.nice < 0 && note.nice == 0)) << note.nice;
        EXPECT_EQ(thread->GetName(), c.name);
        EXPECT_EQ(thread->Release(true, true, kSoonMs), nullptr);
    }
}

TEST(Thread, DeferredRunsOnlyFromStartAndOnce) {
    Note note;
    MThread* const thread = Create(Note::Run, &note, true);
    EXPECT_EQ(thread->WaitForStart(0), 0);
    EXPECT_EQ(thread->WaitForStart(5), 0);
    EXPECT_EQ(thread->WaitForCompletion(0), 0);
    EXPECT_TRUE(thread->IsRunning());
    EXPECT_EQ(note.runs, 0);
    std::vector<std::thread> starters;
    for (int i = 0; i < 4; ++i) starters.emplace_back([held = thread->ObtainRef()] { held->Start()->ReleaseRef(); });
    EXPECT_EQ(thread->WaitForStart(-1), 1);
    EXPECT_EQ(thread->WaitForCompletion(-1), 1);
    for (std::thread& starter : starters) starter.join();
    EXPECT_EQ(thread->Start(), thread);
    EXPECT_EQ(note.runs, 1);
    EXPECT_EQ(thread->WaitForStart(0), 1);
    thread->ReleaseRef();
}

// The creator's reference goes while the thread begins, runs or ends; without a start the thread never runs.
TEST(Thread, CreatorThatLetsGoAtOnceLeavesTheThreadItsObject) {
    static std::atomic<int> runs;
    runs = 0;
    const ThreadFunction count = [](void*) -> std::int32_t { return ++runs; };
    const ThreadFunction never = [](void*) -> std::int32_t { std::abort(); };
    for (int i = 0; i < 200; ++i) {
        Create(count, nullptr, i % 2 == 1)->Start()->ReleaseRef();
        if (i % 4 == 0) Create(never, nullptr, true)->ReleaseRef();
    }
    while (runs < 200) std::this_thread::yield();
}

TEST(ThreadRelease, WithoutKillTheThreadGoesOn) {
    static constexpr struct { bool wait, kill; } kCases[] = {{true, false}, {false, false}, {false, true}};
    for (const auto& c : kCases) {
        GateKeeper gate;
        MThread* const thread = Create(GateKeeper::Run, &gate, false);
        ASSERT_TRUE(gate.Entered());
        thread->ObtainRef();
        EXPECT_EQ(thread->Release(c.wait, c.kill, 0), nullptr);
        EXPECT_TRUE(thread->IsRunning());
        gate.open.SignalEvent();
        EXPECT_TRUE(gate.Through());
        EXPECT_EQ(thread->Release(true, false, -1), nullptr);
    }
}

struct ThreadKill : testing::Test {
    void SetUp() override {
        if (test::kThreadSanitizer) GTEST_SKIP() << "a killed thread cannot be followed";
    }
};

TEST_F(ThreadKill, ReachesABusyLoopAndReleasesWhoeverWaits) {
    static std::atomic<std::uint32_t> turns;
    turns = 0;
    const ThreadFunction spin = [](void*) -> std::int32_t {
        for (;;) ++turns;
    };
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);  // as hosts do that take their signals with sigwait
    MThread* const thread = Create(spin, nullptr, false);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    while (turns == 0) std::this_thread::yield();
    std::int32_t answer = 0;
    test::SleepingThread waiter([&] { answer = thread->WaitForCompletion(kSoonMs); });
    waiter.WaitUntilAsleep();
    thread->Kill();
    const std::uint32_t after = turns;
    waiter.Join();
    EXPECT_EQ(answer, 1);
    EXPECT_EQ(turns, after);
    thread->ReleaseRef();
}

// The C library hands a dead thread's stack, and what hangs on it, to the next thread.
TEST_F(ThreadKill, LeavesNothingToTheNextThread) {
    static pthread_key_t key;
    static std::atomic<int> inherited;
    inherited = 0;
    GateKeeper gate;
    ASSERT_EQ(pthread_key_create(&key, nullptr), 0);
    const ThreadFunction markAndStay = [](void* self) -> std::int32_t {
        pthread_setspecific(key, self);
        return GateKeeper::Run(self);
    };
    const ThreadFunction look = [](void*) -> std::int32_t { return inherited += pthread_getspecific(key) != nullptr; };
    MThread* const killed = Create(markAndStay, &gate, false);
    ASSERT_TRUE(gate.Entered());
    killed->Kill();
    killed->ReleaseRef();
    for (int i = 0; i < 8; ++i) Create(look, nullptr, false)->Release(true, false, -1);
    EXPECT_EQ(inherited, 0);
    pthread_key_delete(key);
}

TEST_F(ThreadKill, BeforeTheStartAndAfterTheEndAndTwice) {
    Note note;
    for (const bool ended : {false, true}) {
        MThread* const thread = Create(Note::Run, &note, !ended);
        if (ended) thread->WaitForCompletion(kSoonMs);
        thread->Kill();
        thread->Kill();
        EXPECT_FALSE(thread->Start()->IsRunning());
        thread->ReleaseRef();
        EXPECT_EQ(note.runs, ended);
    }
}

std::int32_t Add(ThreadHolder& holder, GateKeeper& gate, bool deferred) {
    return holder.AddNewThread("held", GateKeeper::Run, &gate, eThreadPriorityNormal, 8192, deferred);
}

TEST(ThreadHolder, EmptyOneHasFinishedEverything) {
    ThreadHolder holder;
    for (const std::uint32_t index : {0u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        holder.StartThread(index);
        EXPECT_EQ(holder.WaitForThreadStart(index, 0), 1);
        EXPECT_EQ(holder.WaitForThreadCompletion(index, -1), 1);
        EXPECT_FALSE(holder.IsThreadRunning(index));
    }
    EXPECT_TRUE(holder.WaitForAllThreadStart(0));
    EXPECT_TRUE(holder.WaitForAllThreadCompletion(-1));
}

TEST(ThreadHolder, AddingCountsAndDeferredThreadsWaitForTheirStart) {
    GateKeeper gates[2];
    ThreadHolder holder;
    EXPECT_EQ(Add(holder, gates[0], true), 1);
    EXPECT_EQ(Add(holder, gates[1], true), 2);
    EXPECT_FALSE(holder.WaitForAllThreadStart(0));
    holder.StartThread(1);
    EXPECT_EQ(holder.WaitForThreadStart(1, kSoonMs), 1);
    EXPECT_EQ(holder.WaitForThreadStart(0, 0), 0);
    EXPECT_EQ(holder.WaitForThreadCompletion(1, 0), 0);
    EXPECT_TRUE(holder.IsThreadRunning(1));
    holder.StartAllThreads();
    EXPECT_TRUE(holder.WaitForAllThreadStart(kSoonMs));
    gates[0].open.SignalEvent();
    EXPECT_FALSE(holder.WaitForAllThreadCompletion(0)) << "the last one timed out";
    gates[1].open.SignalEvent();
    EXPECT_TRUE(holder.WaitForAllThreadCompletion(kSoonMs));
}

struct Names {
    std::mutex lock;
    std::multiset<std::string> seen;

    static std::int32_t Run(void* self) {
        Note note;
        Note::Run(&note);
        const std::lock_guard guard(static_cast<Names*>(self)->lock);
        static_cast<Names*>(self)->seen.insert(note.name);
        return 0;
    }
};

TEST(ThreadHolder, ExecuteRunsOneNamedThreadForEachAskedAndWaitsForAll) {
    const auto processors = static_cast<std::uint32_t>(ThreadHolder::GetDesiredThreadCountForCPU());
    EXPECT_EQ(processors, platform::ProcessorCount());
    Names names;
    ThreadHolder holder;
    Create(Names::Run, &names, false, "before")->Release(true, false, -1);
    std::multiset<std::string> expected{"before"};
    for (const std::uint32_t asked : {0u, 0xFFFFFFFFu, 1u, 11u}) {
        holder.Execute("a job", Names::Run, &names, asked);
        const std::uint32_t count = asked + 1 < 2 ? processors : asked;
        for (std::uint32_t i = 0; i < count; ++i) expected.insert("a job_" + std::to_string(i));
        EXPECT_EQ(names.seen, expected) << asked;
    }
    holder.Execute(nullptr, Names::Run, &names, 1);
    holder.Execute(std::string(200, 'n').c_str(), Names::Run, &names, 1);
    EXPECT_EQ(names.seen.count("_0") + names.seen.count(std::string(15, 'n')), 2u);
    const auto total = static_cast<std::int32_t>(names.seen.size());
    EXPECT_EQ(holder.AddNewThread("x", nullptr, nullptr, eThreadPriorityNormal, 0, false), total);
}

TEST(ThreadHolder, FlushEndsWhatDoesNotFinishOnlyWithKill) {
    for (const bool kill : {false, true}) {
        if (kill && test::kThreadSanitizer) GTEST_SKIP() << "a killed thread cannot be followed";
        GateKeeper gate;
        ThreadHolder holder;
        Add(holder, gate, false);
        ASSERT_TRUE(gate.Entered());
        holder.FlushThreads(true, kill, 1);
        gate.open.SignalEvent();
        EXPECT_EQ(gate.through.WaitForEvent(kill ? 5 : kSoonMs), !kill);
        EXPECT_EQ(Add(holder, gate, false), 1) << "it was emptied";
    }
}

}  // namespace
}  // namespace dorvutil
