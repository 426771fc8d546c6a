#include "dorvutil/platform/fault.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>

#include "concurrency/thread_support.h"
#include "dorvutil/concurrency/crash_reporter.h"

namespace dorvutil {
namespace {

using test::Create;

std::atomic<std::uintptr_t> g_nowhere{64};  // on the page of null, somewhere else for each caller

std::int32_t WriteNowhere(void*) {
    *reinterpret_cast<volatile int*>(g_nowhere.fetch_add(64)) = 1;
    return 0;
}

std::int32_t Abort(void*) { std::abort(); }

template <int kSignal>
std::int32_t Raise(void*) {
    return ::raise(kSignal);
}

std::int32_t SignalProcess(void*) { return ::kill(::getpid(), SIGBUS); }

volatile int g_deep = 1;

[[gnu::noinline]] int Descend(int depth) {
    volatile char room[4096];
    room[0] = static_cast<char>(depth);
    return g_deep ? Descend(depth + 1) + room[0] : 0;
}

std::int32_t Overflow(void*) { return Descend(0); }

void Report(std::uint32_t code, void* context) {
    std::fprintf(stderr, "<crash %u%s>", code, context ? "" : " without context");
}

// What the child processes do; those that survive leave with 3.
template <ThreadFunction kFunction>
void OnThread() {
    SetCrashReporter(Report);
    Create(kFunction, nullptr, false)->Release(true, false, -1);
    std::_Exit(3);
}

template <ThreadFunction kFunction>
void OnHostThread() {
    SetCrashReporter(Report);
    Create(nullptr, nullptr, false)->Release(true, false, -1);  // the hook is there from now on
    kFunction(nullptr);
    std::_Exit(3);
}

template <void (*kRun)()>
void WithSignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
    kRun();
}

std::int32_t FaultInTheReporter(void*) {
    SetCrashReporter([](std::uint32_t, void*) { WriteNowhere(nullptr); });
    return Abort(nullptr);
}

// Each reporter waits for the other thread's: the end comes when both have reported.
void TwoThreadsAtOnce() {
    static std::atomic<int> reporting;
    SetCrashReporter([](std::uint32_t code, void* context) {
        const bool first = ++reporting == 1;
        while (reporting < 2) std::this_thread::yield();
        if (!first) platform::SleepMs(50);  // the first one is done by now
        Report(code, context);
    });
    MThread* const first = Create(WriteNowhere, nullptr, false);
    Create(WriteNowhere, nullptr, false)->Release(true, false, -1);
    first->Release(true, false, -1);
}

void EndLater() {
    platform::EndProcessIn(20, SIGBUS);
    platform::EndProcessIn(1, SIGILL);
    // The thread sanitizer holds a signal back until a call that it knows.
    for (int i = 0; i < test::kSoonMs; ++i) ::usleep(1000);
}

template <std::uint32_t kCode>
void End() {
    std::atexit([] { std::_Exit(9); });
    platform::EndProcess(kCode);
}

const bool kNotSanitized = !test::kAnySanitizer;  // sanitizers have handlers of their own

const struct {
    const char* name;
    void (*run)();
    int end;  // exit status, or minus the signal that killed it
    const char* report;
    bool possible = true;
} kFaults[] = {
    {"bad address", OnThread<WriteNowhere>, 128 + SIGSEGV, "^<crash 11>$"},
    {"abort", OnThread<Abort>, 128 + SIGABRT, "^<crash 6>$"},
    {"stack overflow", OnThread<Overflow>, 128 + SIGSEGV, "^<crash 11>$"},
    {"bus error", OnThread<Raise<SIGBUS>>, 128 + SIGBUS, "^<crash 7>$"},
    {"bad instruction", OnThread<Raise<SIGILL>>, 128 + SIGILL, "^<crash 4>$"},
    {"arithmetic", OnThread<Raise<SIGFPE>>, 128 + SIGFPE, "^<crash 8>$"},
    {"trap", OnThread<Raise<SIGTRAP>>, -SIGTRAP, "^$"},
    {"host thread, trap", OnHostThread<Raise<SIGTRAP>>, -SIGTRAP, "^$"},
    {"host thread, bad address", OnHostThread<WriteNowhere>, -SIGSEGV, "^$", kNotSanitized},
    {"host thread, abort", OnHostThread<Abort>, -SIGABRT, "^$", kNotSanitized},
    {"host thread with a handler",
     [] {
         ::signal(SIGSEGV, [](int) { std::_Exit(7); });
         OnHostThread<WriteNowhere>();
     },
     7, "^$"},
    {"signal of somebody else", WithSignalsBlocked<OnThread<SignalProcess>>, -SIGBUS, "^$", kNotSanitized},
    {"creator with signals blocked", WithSignalsBlocked<OnThread<WriteNowhere>>, 128 + SIGSEGV, "^<crash 11>$"},
    {"fault in the reporter", OnThread<FaultInTheReporter>, -SIGSEGV, "", kNotSanitized},
    {"end without a code", End<0>, 0, "^$"},
    {"end with the first signal", End<1>, 129, "^$"},
    {"end with the last signal", End<64>, 192, "^$"},
    {"end with no signal", End<65>, 65, "^$"},
    {"end with a large code", End<0xC0000005u>, 5, "^$"},
    {"end after a time, the first one given", EndLater, 128 + SIGBUS, "^$"},
    {"two threads, two reports", TwoThreadsAtOnce, 128 + SIGSEGV, "^<crash 11><crash 11>$"},
};

class ThreadFault : public testing::Test {
protected:
    // The children start anew: a fork of a process with threads would not be what is tested.
    void SetUp() override { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

TEST_F(ThreadFault, OfALibraryThreadAloneIsReportedAndEndsTheProcessWithItsCode) {
    for (const auto& c : kFaults) {
        if (!c.possible) continue;
        SCOPED_TRACE(c.name);
        const auto asExpected = [&](int status) {
            return c.end < 0 ? WIFSIGNALED(status) && WTERMSIG(status) == -c.end
                             : WIFEXITED(status) && WEXITSTATUS(status) == c.end;
        };
        EXPECT_EXIT(c.run(), asExpected, c.report);
    }
}

TEST_F(ThreadFault, FilterTellsBreakpointsFromFaults) {
    static std::uint32_t reported;
    static void* context;
    reported = 0;
    const CrashReporter before = SetCrashReporter([](std::uint32_t code, void* pointers) {
        reported = code;
        context = pointers;
    });
    auto* const thread = static_cast<RWinThread*>(Create(nullptr, nullptr, true));
    EXPECT_EQ(thread->ThreadExceptionFilter(0x80000003u, thread), 0);
    EXPECT_EQ(reported, 0u);
    EXPECT_EQ(thread->ThreadExceptionFilter(0xC0000005u, thread), 1);
    EXPECT_EQ(reported, 0xC0000005u);
    EXPECT_EQ(context, thread);
    EXPECT_EXIT(thread->HandleThreadExcept(), testing::ExitedWithCode(5), "");
    SetCrashReporter(before);
    thread->ReleaseRef();
}

}  // namespace
}  // namespace dorvutil
