#include "dorvutil/platform/fault.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "concurrency/thread_support.h"
#include "dorvutil/concurrency/crash_reporter.h"
#include "dorvutil/concurrency/thread.h"
#include "dorvutil/platform/clock.h"

namespace dorvutil {
namespace {

using testing::ExitedWithCode;
using testing::KilledBySignal;

std::atomic<std::uintptr_t> g_nowhere{64};  // on the page of null, somewhere else for each caller

std::int32_t WriteNowhere(void*) {
    *reinterpret_cast<volatile int*>(g_nowhere.fetch_add(64)) = 1;
    return 0;
}

std::int32_t Abort(void*) { std::abort(); }

template <int kSignal>
std::int32_t Raise(void*) {
    std::raise(kSignal);
    return 0;
}

volatile int g_deep = 1;

[[gnu::noinline]] int Descend(int depth) {
    volatile char room[4096];
    room[0] = static_cast<char>(depth);
    return g_deep ? Descend(depth + 1) + room[0] : 0;
}

std::int32_t Overflow(void*) { return Descend(0); }

std::int32_t Breakpoint(void*) {
#if defined(__x86_64__) || defined(__i386__)
    __asm__ volatile("int3");
#else
    std::raise(SIGTRAP);
#endif
    return 0;
}

void Report(std::uint32_t code, void* context) {
    std::fprintf(stderr, "<crash %u%s>", code, context ? "" : " without context");
}

// On a library thread, waiting for its end; the process then leaves with 3.
void RunOnThread(ThreadFunction function) {
    SetCrashReporter(Report);
    CreateThread("crashing", function, nullptr, eThreadPriorityNormal, 8192, false)->Release(true, false, -1);
    std::_Exit(3);
}

class ThreadFault : public testing::Test {
protected:
    // The children start anew: a fork of a process with threads would not be what is tested.
    void SetUp() override { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

TEST_F(ThreadFault, IsReportedAndEndsTheProcessWithItsCode) {
    static constexpr struct {
        const char* name;
        ThreadFunction function;
        int signal;
    } kCases[] = {
        {"bad address", WriteNowhere, SIGSEGV},     {"abort", Abort, SIGABRT},
        {"stack overflow", Overflow, SIGSEGV},      {"bus error", Raise<SIGBUS>, SIGBUS},
        {"bad instruction", Raise<SIGILL>, SIGILL}, {"arithmetic", Raise<SIGFPE>, SIGFPE},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::string report = "^<crash " + std::to_string(c.signal) + ">$";
        EXPECT_EXIT(RunOnThread(c.function), ExitedWithCode(128 + c.signal), report);
    }
}

TEST_F(ThreadFault, BreakpointGoesToTheDebuggerNotToTheReporter) {
    EXPECT_EXIT(RunOnThread(Breakpoint), KilledBySignal(SIGTRAP), "^$");
    EXPECT_EXIT(RunOnThread(Raise<SIGTRAP>), KilledBySignal(SIGTRAP), "^$");
    const auto withDebugger = [] {
        std::signal(SIGTRAP, [](int) { std::fputs("<debugger>", stderr); });
        RunOnThread(Breakpoint);
    };
    EXPECT_EXIT(withDebugger(), ExitedWithCode(3), "^<debugger>$");
}

TEST_F(ThreadFault, OfAHostThreadStaysTheHosts) {
    const auto arm = [] {
        SetCrashReporter(Report);
        CreateThread("done", nullptr, nullptr, eThreadPriorityNormal, 0, false)->Release(true, false, -1);
    };
    EXPECT_EXIT((arm(), std::raise(SIGTRAP)), KilledBySignal(SIGTRAP), "^$");
    if (!test::kAnySanitizer) {  // which has handlers of its own
        EXPECT_EXIT((arm(), WriteNowhere(nullptr)), KilledBySignal(SIGSEGV), "^$");
        EXPECT_EXIT((arm(), std::abort()), KilledBySignal(SIGABRT), "^$");
    }
    const auto withHandler = [&] {
        std::signal(SIGSEGV, [](int) { std::_Exit(7); });
        arm();
        WriteNowhere(nullptr);
    };
    EXPECT_EXIT(withHandler(), ExitedWithCode(7), "^$");
    const auto ignoring = [&] {
        std::signal(SIGFPE, SIG_IGN);
        arm();
        std::raise(SIGFPE);
        std::_Exit(4);
    };
    EXPECT_EXIT(ignoring(), ExitedWithCode(4), "^$");
}

// The creator keeps its own signals to itself; the library thread still takes its faults, and those alone.
TEST_F(ThreadFault, SignalOfSomebodyElseIsNoFault) {
    if (test::kAnySanitizer) GTEST_SKIP() << "the sanitizer's own handler comes next";
    const auto blockAll = [] {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, nullptr);
    };
    const ThreadFunction signalled = [](void*) -> std::int32_t {
        kill(getpid(), SIGBUS);
        return 0;
    };
    EXPECT_EXIT((blockAll(), RunOnThread(signalled)), KilledBySignal(SIGBUS), "^$");
    EXPECT_EXIT((blockAll(), RunOnThread(WriteNowhere)), ExitedWithCode(128 + SIGSEGV), "^<crash 11>$");
}

TEST_F(ThreadFault, HookAndStackGoWithTheThreadFunction) {
    const auto armBriefly = [] {
        platform::ArmThreadFaults([](const platform::Fault&) { return true; });
        std::raise(SIGTRAP);
        platform::DisarmThreadFaults();
        std::raise(SIGTRAP);
    };
    EXPECT_EXIT(armBriefly(), KilledBySignal(SIGTRAP), "^$");
    MThread* const thread = CreateThread("stack", nullptr, nullptr, eThreadPriorityNormal, 0, true);
    stack_t before{}, after{};
    sigaltstack(nullptr, &before);
    thread->PlatformEntryPoint();
    sigaltstack(nullptr, &after);
    EXPECT_EQ(after.ss_flags, before.ss_flags);
    EXPECT_EQ(after.ss_sp, before.ss_sp);
    thread->ReleaseRef();
}

TEST_F(ThreadFault, InTheReporterEndsTheProcessAllTheSame) {
    if (test::kAnySanitizer) GTEST_SKIP() << "the sanitizer's own handler comes next";
    const auto crashTwice = [] {
        CreateThread(
            "twice",
            [](void*) -> std::int32_t {
                SetCrashReporter([](std::uint32_t, void*) { WriteNowhere(nullptr); });
                return Abort(nullptr);
            },
            nullptr, eThreadPriorityNormal, 0, false)
            ->Release(true, false, -1);
    };
    EXPECT_EXIT(crashTwice(), KilledBySignal(SIGSEGV), "");
}

// The reporter of the first thread gives the other one the time to come in too.
TEST_F(ThreadFault, OfTwoThreadsAtOnceIsReportedOnce) {
    static std::atomic<int> faulting, reporting;
    const ThreadFunction fault = [](void*) -> std::int32_t {
        ++faulting;
        return WriteNowhere(nullptr);
    };
    const auto crashBoth = [&] {
        SetCrashReporter([](std::uint32_t code, void* context) {
            Report(code, context);
            ++reporting;
            while (faulting < 2) std::this_thread::yield();
            const std::uint32_t begin = platform::TickCount();
            while (reporting < 2 && platform::TickCount() - begin < 50) std::this_thread::yield();
        });
        MThread* const first = CreateThread("1", fault, nullptr, eThreadPriorityNormal, 0, false);
        CreateThread("2", fault, nullptr, eThreadPriorityNormal, 0, false)->Release(true, false, -1);
        first->Release(true, false, -1);
    };
    EXPECT_EXIT(crashBoth(), ExitedWithCode(128 + SIGSEGV), "^<crash 11>$");
}

TEST_F(ThreadFault, FilterTellsBreakpointsFromFaults) {
    static std::atomic<std::uint32_t> reported;
    static std::atomic<void*> context;
    reported = 0;
    const CrashReporter before = SetCrashReporter([](std::uint32_t code, void* pointers) {
        reported = code;
        context = pointers;
    });
    MThread* const created = CreateThread("filter", nullptr, nullptr, eThreadPriorityNormal, 0, true);
    auto* const thread = static_cast<RWinThread*>(created);
    EXPECT_EQ(thread->ThreadExceptionFilter(0x80000003u, thread), 0);
    EXPECT_EQ(reported, 0u);
    EXPECT_EQ(thread->ThreadExceptionFilter(0xC0000005u, thread), 1);
    EXPECT_EQ(reported, 0xC0000005u);
    EXPECT_EQ(context, thread);
    EXPECT_EXIT(thread->HandleThreadExcept(), ExitedWithCode(5), "");
    SetCrashReporter(before);
    thread->ReleaseRef();
}

TEST(EndProcess, SkipsExitHandlersAndMapsItsCode) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    static constexpr struct {
        std::uint32_t code;
        int status;
    } kCases[] = {{0, 0}, {1, 129}, {11, 139}, {64, 192}, {65, 65}, {0xC0000005u, 5}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.code);
        const auto end = [&] {
            std::atexit([] { std::_Exit(9); });
            platform::EndProcess(c.code);
        };
        EXPECT_EXIT(end(), ExitedWithCode(c.status), "");
    }
}

}  // namespace
}  // namespace dorvutil
