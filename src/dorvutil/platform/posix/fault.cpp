#include "dorvutil/platform/fault.h"

#include <pthread.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <iterator>

namespace dorvutil::platform {
namespace {

constexpr int kSignals[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTRAP};
constexpr std::uint32_t kHighestSignal = 64;

// Room for a call-stack writer (one that takes a very long C++ name apart needs 400 KiB); the address space is reserved
// and not touched until a fault.
constexpr std::size_t kStackSize = 512 * 1024;
constexpr std::size_t kGuardSize = 64 * 1024;  // a multiple of every page size in use

std::atomic<std::uint32_t> g_lateCode{0};
std::atomic<bool> g_endSet{false};

struct sigaction g_previous[std::size(kSignals)];
pthread_once_t g_installed = PTHREAD_ONCE_INIT;

// Of an armed thread. The model keeps the signal handler away from the allocator.
[[gnu::tls_model("initial-exec")]] constinit thread_local std::atomic<FaultHandler> t_handler{nullptr};
[[gnu::tls_model("initial-exec")]] constinit thread_local void* t_stack = nullptr;
[[gnu::tls_model("initial-exec")]] constinit thread_local stack_t t_previousStack{};

// A fault of this thread, as opposed to a signal of the same number that somebody sent to the process. abort() and
// raise() are faults: the thread sends the signal to itself.
bool RaisedHere(const siginfo_t& info) {
    return info.si_code > 0 || (info.si_code == SI_TKILL && info.si_pid == ::getpid());
}

void TakeDefaultAction(int signal, siginfo_t* info) {
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    ::sigaction(signal, &standard, nullptr);
    // The signal is blocked while its handler runs: queued again with all it says, it strikes when the handler returns.
    if (::syscall(SYS_rt_tgsigqueueinfo, ::getpid(), ::syscall(SYS_gettid), signal, info) != 0) ::raise(signal);
}

void PassOn(int signal, siginfo_t* info, void* context) {
    std::size_t i = 0;
    while (kSignals[i] != signal) ++i;
    const struct sigaction& previous = g_previous[i];
    const bool plain = (previous.sa_flags & SA_SIGINFO) == 0;
    if (plain && previous.sa_handler == SIG_IGN && info->si_code <= 0) return;
    // The system does not ignore what the processor raised.
    if (plain && (previous.sa_handler == SIG_IGN || previous.sa_handler == SIG_DFL)) {
        TakeDefaultAction(signal, info);
        return;
    }
    sigset_t mask;
    ::pthread_sigmask(SIG_BLOCK, &previous.sa_mask, &mask);
    if (plain) {
        previous.sa_handler(signal);
    } else {
        previous.sa_sigaction(signal, info, context);
    }
    ::pthread_sigmask(SIG_SETMASK, &mask, nullptr);
}

// Takes no lock: any number of threads may be in here.
void OnSignal(int signal, siginfo_t* info, void* context) {
    const int error = errno;
    const FaultHandler handler = t_handler.load(std::memory_order_relaxed);
    bool taken = false;
    if (handler && RaisedHere(*info)) {
        t_handler.store(nullptr, std::memory_order_relaxed);  // a fault of the handler itself goes on
        taken = handler(Fault{static_cast<std::uint32_t>(signal), signal == SIGTRAP, context});
        t_handler.store(handler, std::memory_order_relaxed);
    }
    if (!taken) PassOn(signal, info, context);
    errno = error;
}

void Install() {
    for (std::size_t i = 0; i < std::size(kSignals); ++i) {
        struct sigaction action {};
        action.sa_sigaction = OnSignal;
        action.sa_flags = SA_SIGINFO | SA_ONSTACK;
        ::sigemptyset(&action.sa_mask);
        // Known before the first signal can come in.
        ::sigaction(kSignals[i], nullptr, &g_previous[i]);
        ::sigaction(kSignals[i], &action, nullptr);
    }
}

void Unblock() {
    sigset_t faults;
    ::sigemptyset(&faults);
    for (const int signal : kSignals) ::sigaddset(&faults, signal);
    ::pthread_sigmask(SIG_UNBLOCK, &faults, nullptr);
}

// A stack of its own lets the handler run when the thread's stack is used up. Without memory for it the thread is armed
// against everything else.
void GiveStack() {
    void* const base =
        ::mmap(nullptr, kGuardSize + kStackSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (base == MAP_FAILED) return;
    stack_t stack{};
    stack.ss_sp = static_cast<std::byte*>(base) + kGuardSize;
    stack.ss_size = kStackSize;
    if (::mprotect(stack.ss_sp, kStackSize, PROT_READ | PROT_WRITE) != 0 ||
        ::sigaltstack(&stack, &t_previousStack) != 0) {
        ::munmap(base, kGuardSize + kStackSize);
        return;
    }
    t_stack = base;
}

}  // namespace

void ArmThreadFaults(FaultHandler handler) {
    ::pthread_once(&g_installed, Install);
    if (!t_stack) GiveStack();
    Unblock();
    t_handler.store(handler, std::memory_order_relaxed);
}

void DisarmThreadFaults() {
    t_handler.store(nullptr, std::memory_order_relaxed);
    if (!t_stack || ::sigaltstack(&t_previousStack, nullptr) != 0) return;
    ::munmap(t_stack, kGuardSize + kStackSize);
    t_stack = nullptr;
}

void EndProcess(std::uint32_t code) {
    const bool isSignal = code != 0 && code <= kHighestSignal;
    ::_exit(static_cast<int>((isSignal ? 128 + code : code) & 0xFF));
}

void EndProcessIn(std::uint32_t milliseconds, std::uint32_t code) {
    if (g_endSet.exchange(true)) return;
    g_lateCode.store(code, std::memory_order_relaxed);
    struct sigaction action {};
    action.sa_handler = [](int) { EndProcess(g_lateCode.load(std::memory_order_relaxed)); };
    ::sigemptyset(&action.sa_mask);
    ::sigaction(SIGALRM, &action, nullptr);
    sigset_t alarm;
    ::sigemptyset(&alarm);
    ::sigaddset(&alarm, SIGALRM);
    ::pthread_sigmask(SIG_UNBLOCK, &alarm, nullptr);
    itimerval timer{};
    timer.it_value.tv_sec = static_cast<time_t>(milliseconds / 1000);
    timer.it_value.tv_usec = static_cast<suseconds_t>(milliseconds % 1000) * 1000;
    ::setitimer(ITIMER_REAL, &timer, nullptr);
}

}  // namespace dorvutil::platform
