#include "dorvutil/platform/thread.h"

#include <limits.h>
#include <pthread.h>
#include <sched.h>
#include <semaphore.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include "dorvutil/platform/wait_word.h"

namespace dorvutil::platform {

struct ThreadObject {
    pthread_t thread{};
    std::uint32_t id = 0;
    pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;  // guards `joined`: a thread is joined once
    bool joined = false;
};

namespace {

constexpr std::size_t kLeastStack = std::size_t{1} << 20;
constexpr std::size_t kLongestName = 15;
constexpr std::uint32_t kTerminationLimitMs = 1000;

constexpr int kNiceValues[] = {10, 5, 0, -5, -10};  // for -2 … +2

// What the starter hands to its thread; lives on the starter's stack until `ready` is posted.
struct Launch {
    std::int32_t (*entry)(void*);
    void* argument;
    const char* name;
    std::uint32_t id;
    sem_t ready;
};

pthread_once_t g_signalChosen = PTHREAD_ONCE_INIT;
int g_terminationSignal = 0;  // 0: none was free
[[gnu::tls_model("initial-exec")]] constinit thread_local bool t_startedHere = false;

// The C library reuses the stack of a joined thread together with its thread-specific values, which an ordinary end
// would have cleared: the next thread must not find them. Setting null neither allocates nor locks.
[[noreturn]] void EndKernelThread() {
    for (pthread_key_t key = 0; key < PTHREAD_KEYS_MAX; ++key) ::pthread_setspecific(key, nullptr);
    for (;;) ::syscall(SYS_exit, 0);
}

// Obeys TerminateThread alone, and only on a thread of StartThread: nobody else's signal kills a host's thread.
void OnTermination(int, siginfo_t* info, void*) {
    if (info->si_code == SI_TKILL && info->si_pid == ::getpid() && t_startedHere) EndKernelThread();
}

// A real-time signal that the process does not use yet.
void ChooseTerminationSignal() {
    for (int signal = SIGRTMAX - 1; signal >= SIGRTMIN && g_terminationSignal == 0; --signal) {
        struct sigaction action {};
        if (::sigaction(signal, nullptr, &action) != 0) continue;
        if ((action.sa_flags & SA_SIGINFO) != 0 || action.sa_handler != SIG_DFL) continue;
        action = {};
        action.sa_sigaction = OnTermination;
        action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_RESTART;
        ::sigfillset(&action.sa_mask);
        if (::sigaction(signal, &action, nullptr) == 0) g_terminationSignal = signal;
    }
}

// The creator may have blocked every signal, as programs do that take theirs with sigwait.
void UnblockTermination() {
    if (g_terminationSignal == 0) return;
    sigset_t set;
    ::sigemptyset(&set);
    ::sigaddset(&set, g_terminationSignal);
    ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

void ShowName(const char* name) {
    if (!name) return;
    char shown[kLongestName + 1];
    std::size_t length = ::strnlen(name, kLongestName + 1);
    if (length > kLongestName) {
        length = kLongestName;
        while (length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80) --length;  // whole characters
    }
    std::memcpy(shown, name, length);
    shown[length] = '\0';
    ::pthread_setname_np(::pthread_self(), shown);
}

void* Run(void* parameter) {
    auto& launch = *static_cast<Launch*>(parameter);
    const auto entry = launch.entry;
    void* const argument = launch.argument;
    t_startedHere = true;
    UnblockTermination();
    ShowName(launch.name);
    launch.id = CurrentThreadId();
    ::sem_post(&launch.ready);  // `launch` is gone from here on
    entry(argument);
    // Closing may be left to come: a termination from now on would strike the C library at work.
    t_startedHere = false;
    return nullptr;
}

std::size_t StackBytes(std::uint32_t wanted) {
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const std::size_t bytes = std::max<std::size_t>(wanted, kLeastStack);
    return (bytes + page - 1) / page * page;
}

bool Create(ThreadObject& object, Launch& launch, std::uint32_t stackSize) {
    pthread_attr_t attributes;
    if (::pthread_attr_init(&attributes) != 0) return false;
    const bool sized = stackSize == 0 || ::pthread_attr_setstacksize(&attributes, StackBytes(stackSize)) == 0;
    const bool created = sized && ::pthread_create(&object.thread, &attributes, Run, &launch) == 0;
    ::pthread_attr_destroy(&attributes);
    return created;
}

class ObjectLock {
public:
    explicit ObjectLock(ThreadObject* object) : m_object(object) { ::pthread_mutex_lock(&m_object->lock); }
    ~ObjectLock() { ::pthread_mutex_unlock(&m_object->lock); }
    ObjectLock(const ObjectLock&) = delete;
    ObjectLock& operator=(const ObjectLock&) = delete;

private:
    ThreadObject* m_object;
};

// Under the object's lock.
bool HasEnded(ThreadObject* object) {
    if (!object->joined) object->joined = ::pthread_tryjoin_np(object->thread, nullptr) == 0;
    return object->joined;
}

std::int64_t NowNs() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

void SleepNs(std::int64_t nanoseconds) {
    const std::int64_t due = NowNs() + nanoseconds;
    const timespec until{static_cast<time_t>(due / 1'000'000'000),
                         static_cast<decltype(timespec::tv_nsec)>(due % 1'000'000'000)};
    while (::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
    }
}

}  // namespace

ThreadObject* StartThread(const char* name, std::int32_t (*entry)(void*), void* argument, std::uint32_t stackSize) {
    auto* const object = new (std::nothrow) ThreadObject;
    if (!object) return nullptr;
    ::pthread_once(&g_signalChosen, ChooseTerminationSignal);
    Launch launch{entry, argument, name, 0, {}};
    ::sem_init(&launch.ready, 0, 0);
    const bool created = Create(*object, launch, stackSize);
    if (created) {
        while (::sem_wait(&launch.ready) != 0) {
        }
        object->id = launch.id;
    }
    ::sem_destroy(&launch.ready);
    if (created) return object;
    delete object;
    return nullptr;
}

void CloseThread(ThreadObject* object) {
    if (!object) return;
    if (!HasEnded(object)) ::pthread_detach(object->thread);
    ::pthread_mutex_destroy(&object->lock);
    delete object;
}

bool IsThreadRunning(ThreadObject* object) {
    if (!object) return false;
    const ObjectLock lock(object);
    return !HasEnded(object);
}

bool WaitForThreadEnd(ThreadObject* object, std::uint32_t timeoutMs) {
    // Asked again and again, a little less often each time: a blocking join would have to hold the lock.
    constexpr std::int64_t kFirstPauseNs = 20'000;
    constexpr std::int64_t kLongestPauseNs = 2'000'000;
    const std::int64_t limit = NowNs() + std::int64_t{timeoutMs} * 1'000'000;
    for (std::int64_t pause = kFirstPauseNs; IsThreadRunning(object); pause = std::min(pause * 2, kLongestPauseNs)) {
        if (timeoutMs != kWaitForever && NowNs() >= limit) return false;
        SleepNs(pause);
    }
    return true;
}

std::uint32_t ThreadIdOf(const ThreadObject* object) { return object ? object->id : 0xFFFFFFFFu; }

bool SetThreadPriority(ThreadObject* object, int relative) {
    if (!object || relative < -2 || relative > 2) return false;
    const ObjectLock lock(object);
    // An ended thread's identifier may belong to somebody else.
    return !HasEnded(object) && ::setpriority(PRIO_PROCESS, object->id, kNiceValues[relative + 2]) == 0;
}

void TerminateThread(ThreadObject* object) {
    if (!object) return;
    bool itself = false;
    {
        const ObjectLock lock(object);
        if (HasEnded(object)) return;
        itself = ::pthread_equal(object->thread, ::pthread_self()) != 0;
        // Not joined yet, the handle stays valid even if the thread ends right now.
        if (!itself && g_terminationSignal != 0) ::pthread_kill(object->thread, g_terminationSignal);
    }
    if (itself) EndKernelThread();
    WaitForThreadEnd(object, kTerminationLimitMs);
}

std::uint32_t ProcessorCount() {
    cpu_set_t allowed;
    if (::sched_getaffinity(0, sizeof allowed, &allowed) == 0) {
        const int count = CPU_COUNT(&allowed);
        if (count > 0) return static_cast<std::uint32_t>(count);
    }
    // More processors than the set holds.
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(::sysconf(_SC_NPROCESSORS_ONLN), 1, INT_MAX));
}

void SleepMs(std::uint32_t milliseconds) {
    if (milliseconds == 0) {
        YieldThread();
    } else {
        SleepNs(std::int64_t{milliseconds} * 1'000'000);
    }
}

void YieldThread() { ::sched_yield(); }

}  // namespace dorvutil::platform
