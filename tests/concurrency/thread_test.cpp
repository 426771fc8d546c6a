#include "dorvutil/concurrency/thread.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "concurrency/thread_support.h"
#include "dorvutil/concurrency/thread_holder.h"

namespace dorvutil {
namespace {

using test::GateKeeper;
using test::kSoonMs;

struct Note {
    std::atomic<int> runs{0};
    std::atomic<std::uint32_t> threadId{0};
    std::string name;
    int nice = 99;

    static std::int32_t Run(void* self) {
        auto& note = *static_cast<Note*>(self);
        note.threadId = GetThreadID();
        note.name = test::SystemThreadName();
        note.nice = test::SystemNiceValue();
        ++note.runs;
        return 0;
    }
};

MThread* Create(ThreadFunction function, void* argument, bool deferred, const char* name = "tested") {
    return CreateThread(name, function, argument, eThreadPriorityNormal, 8192, deferred);
}

TEST(Thread, RunsAtOnceOnAThreadOfItsOwn) {
    Note note;
    static constexpr char kName[] = "a name beyond fifteen bytes";
    MThread* const thread = Create(Note::Run, &note, false, kName);
    ASSERT_NE(thread, nullptr);
    EXPECT_EQ(thread->WaitForCompletion(kSoonMs), 1);
    EXPECT_EQ(note.runs, 1);
    EXPECT_NE(note.threadId, GetThreadID());
    EXPECT_EQ(note.threadId, static_cast<RWinThread*>(thread)->GetOsThreadId());
    EXPECT_EQ(note.name, "a name beyond f");
    EXPECT_EQ(thread->GetName(), kName);
    EXPECT_EQ(thread->Release(true, true, kSoonMs), nullptr);
}

TEST(Thread, SystemNamesAreCutBetweenCharacters) {
    Note note;
    MThread* const thread = Create(Note::Run, &note, false, "fourteen bytes\xC3\xA4");
    EXPECT_EQ(thread->WaitForCompletion(kSoonMs), 1);
    EXPECT_EQ(note.name, "fourteen bytes");
    thread->ReleaseRef();
}

TEST(Thread, DeferredRunsOnlyFromStartAndOnce) {
    Note note;
    MThread* const thread = Create(Note::Run, &note, true);
    EXPECT_EQ(thread->WaitForStart(0), 0);
    EXPECT_EQ(thread->WaitForStart(5), 0);
    EXPECT_EQ(thread->WaitForCompletion(0), 0);
    EXPECT_TRUE(thread->IsRunning());
    EXPECT_EQ(note.runs, 0);
    EXPECT_EQ(thread->Start(), thread);
    EXPECT_EQ(thread->WaitForStart(-1), 1);
    EXPECT_EQ(thread->WaitForCompletion(-1), 1);
    EXPECT_EQ(thread->Start(), thread);
    EXPECT_EQ(note.runs, 1);
    EXPECT_EQ(thread->WaitForStart(0), 1);
    thread->ReleaseRef();
}

TEST(Thread, StartsFromManyThreadsCountOnce) {
    Note note;
    MThread* const thread = Create(Note::Run, &note, true);
    std::vector<std::thread> starters;
    for (int i = 0; i < 4; ++i) starters.emplace_back([held = thread->ObtainRef()] { held->Start()->ReleaseRef(); });
    for (std::thread& starter : starters) starter.join();
    EXPECT_EQ(thread->WaitForCompletion(kSoonMs), 1);
    EXPECT_EQ(note.runs, 1);
    thread->ReleaseRef();
}

// The creator's reference goes while the thread begins, runs or ends.
TEST(Thread, CreatorThatLetsGoAtOnceLeavesTheThreadItsObject) {
    static std::atomic<int> runs;
    runs = 0;
    event all;
    constexpr int kThreads = 200;
    static event* allDone;
    allDone = &all;
    const ThreadFunction count = [](void*) -> std::int32_t {
        if (++runs == kThreads) allDone->SignalEvent();
        return 0;
    };
    for (int i = 0; i < kThreads; ++i) {
        MThread* const thread = Create(count, nullptr, i % 2 == 1);
        ASSERT_NE(thread, nullptr);
        thread->Start()->ReleaseRef();
    }
    EXPECT_EQ(all.WaitForEvent(kSoonMs), 1);
}

TEST(Thread, DeferredNeverStartedEndsWithItsLastReference) {
    Note note;
    for (int i = 0; i < 50; ++i) Create(Note::Run, &note, true)->ReleaseRef();
    EXPECT_EQ(note.runs, 0);
}

TEST(Thread, PrioritiesReachTheSystem) {
    static constexpr struct {
        std::int32_t priority;
        int nice;
    } kCases[] = {{0, 10}, {1, 5}, {2, 0}, {3, -5}, {4, -10}, {5, 0}, {0x7FFFFFFF, 0}, {-1, 0}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.priority);
        Note note;
        MThread* const thread =
            CreateThread("nice", Note::Run, &note, static_cast<eOrvThreadPriority>(c.priority), 0, true);
        thread->Start()->WaitForCompletion(kSoonMs);
        // Raising needs a privilege; refused, the priority stays.
        EXPECT_TRUE(note.nice == c.nice || (c.nice < 0 && note.nice == 0)) << note.nice;
        thread->ReleaseRef();
    }
}

TEST(Thread, AnyStackSizeIsEnoughToRun) {
    const ThreadFunction useStack = [](void* sum) -> std::int32_t {
        volatile char room[192 * 1024];
        for (std::size_t i = 0; i < sizeof room; i += 4096) room[i] = 1;
        *static_cast<int*>(sum) = room[0] + room[4096];
        return 0;
    };
    for (const std::int32_t size : {0, 1, 8192, -1, 3'000'001}) {
        SCOPED_TRACE(size);
        int sum = 0;
        MThread* const thread = CreateThread(nullptr, useStack, &sum, eThreadPriorityNormal, size, false);
        EXPECT_EQ(thread->WaitForCompletion(kSoonMs), 1);
        EXPECT_EQ(sum, 2);
        thread->ReleaseRef();
    }
}

TEST(Thread, ForkedChildHasAnIdentifierOfItsOwn) {
    EXPECT_NE(GetThreadID(), 0u);
    const pid_t child = fork();
    if (child == 0) _exit(GetThreadID() == static_cast<std::uint32_t>(getpid()) ? 0 : 1);
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

// A stack of two gigabytes in an address space of one.
TEST(Thread, RefusedByTheSystemIsNotRunningAndKeepsNobodyWaiting) {
    if (test::kAnySanitizer) GTEST_SKIP() << "a sanitizer needs more address space than that";
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto tryInVain = [] {
        const rlimit limit{rlim_t{1} << 30, rlim_t{1} << 30};
        setrlimit(RLIMIT_AS, &limit);
        ThreadHolder holder;
        for (const bool deferred : {false, true}) {
            MThread* const thread =
                CreateThread("big", Note::Run, nullptr, eThreadPriorityHighest, 0x7FFFFFFF, deferred);
            EXPECT_FALSE(thread->IsRunning());
            EXPECT_EQ(static_cast<RWinThread*>(thread->Start())->GetOsThreadId(), 0xFFFFFFFFu);
            EXPECT_EQ(thread->WaitForStart(0), 0);
            EXPECT_EQ(thread->Release(true, true, -1), nullptr);
            EXPECT_GT(holder.AddNewThread("big", Note::Run, nullptr, eThreadPriorityLowest, 0x7FFFFFFF, deferred), 0);
        }
        EXPECT_TRUE(holder.WaitForAllThreadCompletion(-1));
        std::_Exit(testing::Test::HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(tryInVain(), testing::ExitedWithCode(0), "");
}

TEST(Thread, WithoutAFunctionItJustEnds) {
    MThread* const thread = Create(nullptr, nullptr, false);
    EXPECT_EQ(thread->Release(true, false, -1), nullptr);
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

TEST(ThreadRelease, KillEndsTheThreadAndKeepsTheReference) {
    if (test::kThreadSanitizer) GTEST_SKIP() << "a killed thread cannot be followed";
    GateKeeper gate;
    MThread* const thread = Create(GateKeeper::Run, &gate, false);
    ASSERT_TRUE(gate.Entered());
    EXPECT_EQ(thread->Release(true, true, 0), nullptr);
    gate.open.SignalEvent();
    EXPECT_FALSE(thread->IsRunning());
    EXPECT_EQ(thread->WaitForCompletion(0), 1);
    EXPECT_EQ(gate.through.WaitForEvent(0), 0);
    EXPECT_STREQ(thread->GetName(), "tested");
    thread->Kill();
    thread->Start();
    EXPECT_EQ(thread->ReleaseRef(), nullptr);
}

TEST(ThreadKill, ReachesABusyLoopAndReleasesWhoeverWaits) {
    if (test::kThreadSanitizer) GTEST_SKIP() << "a killed thread cannot be followed";
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
    std::atomic<bool> waiting{false};
    std::int32_t answer = 0;
    std::thread waiter([&] {
        waiting = true;
        answer = thread->WaitForCompletion(kSoonMs);
    });
    while (!waiting) std::this_thread::yield();
    thread->Kill();
    const std::uint32_t after = turns;
    waiter.join();
    EXPECT_EQ(answer, 1);
    EXPECT_EQ(turns, after);
    thread->ReleaseRef();
}

// The C library hands a dead thread's stack, and what hangs on it, to the next thread.
TEST(ThreadKill, LeavesNothingToTheNextThread) {
    if (test::kThreadSanitizer) GTEST_SKIP() << "a killed thread cannot be followed";
    static pthread_key_t key;
    static std::atomic<int> inherited;
    static GateKeeper gate;
    inherited = 0;
    ASSERT_EQ(pthread_key_create(&key, nullptr), 0);
    const ThreadFunction markAndStay = [](void*) -> std::int32_t {
        pthread_setspecific(key, &gate);
        return GateKeeper::Run(&gate);
    };
    const ThreadFunction look = [](void*) -> std::int32_t {
        if (pthread_getspecific(key)) ++inherited;
        return 0;
    };
    MThread* const killed = Create(markAndStay, nullptr, false);
    ASSERT_TRUE(gate.Entered());
    killed->Kill();
    killed->ReleaseRef();
    for (int i = 0; i < 8; ++i) Create(look, nullptr, false)->Release(true, false, -1);
    EXPECT_EQ(inherited, 0);
    pthread_key_delete(key);
}

TEST(ThreadKill, OfItselfDoesNotReturn) {
    if (test::kThreadSanitizer) GTEST_SKIP() << "a killed thread cannot be followed";
    static MThread* self;
    static std::atomic<bool> returned;
    returned = false;
    const ThreadFunction killSelf = [](void*) -> std::int32_t {
        self->Kill();
        returned = true;
        return 0;
    };
    self = Create(killSelf, nullptr, true);
    self->Start();
    while (self->IsRunning()) std::this_thread::yield();
    EXPECT_FALSE(returned);
    self->Kill();
    self->ReleaseRef();
}

TEST(ThreadKill, BeforeTheStartAndAfterTheEnd) {
    Note note;
    MThread* thread = Create(Note::Run, &note, false);
    EXPECT_EQ(thread->WaitForCompletion(kSoonMs), 1);
    while (thread->IsRunning()) std::this_thread::yield();
    thread->Kill();
    thread->ReleaseRef();
    EXPECT_EQ(note.runs, 1);
    if (test::kThreadSanitizer) GTEST_SKIP() << "a killed thread cannot be followed";
    thread = Create(Note::Run, &note, true);
    thread->Kill();
    EXPECT_FALSE(thread->Start()->IsRunning());
    thread->ReleaseRef();
    EXPECT_EQ(note.runs, 1);
}

}  // namespace
}  // namespace dorvutil
