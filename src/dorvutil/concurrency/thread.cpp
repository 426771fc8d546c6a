#include "dorvutil/concurrency/thread.h"

#include <iterator>
#include <new>

#include "dorvutil/concurrency/crash_reporter.h"
#include "dorvutil/platform/fault.h"
#include "dorvutil/platform/thread.h"

namespace dorvutil {
namespace {

// Relative to normal, for eOrvThreadPriority 0 to 4.
constexpr int kRelativePriority[] = {-2, -1, 0, 1, 2};

// How often an object whose events could not be created looks whether it has been started.
constexpr std::uint32_t kPollMs = 10;

// The time for all reports, that of reading much debugging information included; the process ends then in any case.
constexpr std::uint32_t kReportLimitMs = 30'000;

constinit std::atomic<CrashReporter> g_reporter{nullptr};
constinit std::atomic<bool> g_crashed{false};
constinit std::atomic<std::uint32_t> g_reporting{0};  // threads whose reports are not complete
constinit thread_local RWinThread* t_running = nullptr;

// The first thread that crashed ends the process, when the reports of those that crashed meanwhile are there too. The
// others wait for that.
void AwaitEnd(bool first) {
    constexpr std::uint32_t kPauseMs = 5;
    for (std::uint32_t waited = 0; waited < kReportLimitMs; waited += kPauseMs) {
        if (first && g_reporting.load() == 0) return;
        platform::SleepMs(kPauseMs);
    }
}

// Runs in the fault handler of the crashing thread.
bool OnFault(const platform::Fault& fault) {
    RWinThread* const thread = t_running;
    if (!thread) return false;
    if (fault.breakpoint) return thread->ThreadExceptionFilter(RWinThread::kBreakpointCode, fault.systemContext) != 0;
    g_reporting.fetch_add(1);
    const bool first = !g_crashed.exchange(true);
    if (first) platform::EndProcessIn(kReportLimitMs, fault.code);
    thread->ThreadExceptionFilter(fault.code, fault.systemContext);
    g_reporting.fetch_sub(1);
    AwaitEnd(first);
    thread->HandleThreadExcept();
    return true;
}

// A negative number of milliseconds is kWaitForever or beyond 24 days: no limit.
std::uint32_t Milliseconds(std::int32_t timeoutMs) {
    return timeoutMs < 0 ? kWaitForever : static_cast<std::uint32_t>(timeoutMs);
}

std::int32_t EnterThread(void* thread) { return static_cast<MThread*>(thread)->EntryPoint(); }

}  // namespace

CrashReporter SetCrashReporter(CrashReporter reporter) { return g_reporter.exchange(reporter); }

MThread::MThread(const char* name, ThreadFunction function, void* argument, eOrvThreadPriority priority,
                 std::int32_t stackSize, bool deferredStart)
    : m_name(name),
      m_function(function),
      m_argument(argument),
      m_priority(priority),
      m_stackSize(stackSize),
      m_deferredStart(deferredStart) {
    if (!m_deferredStart) Start();
}

MThread::~MThread() = default;

MThread* MThread::Start() {
    {
        const TScopedLock<critSec> lock(m_lock);
        if (!m_started.load(std::memory_order_relaxed)) {
            m_references.fetch_add(1, std::memory_order_relaxed);
            m_threadHolds = true;
            m_started.store(true, std::memory_order_release);
        }
    }
    m_startEvent.SignalEvent();
    return this;
}

MThread* MThread::ObtainRef() {
    m_references.fetch_add(1, std::memory_order_relaxed);
    return this;
}

// Not under m_lock: the last one to let go destroys the lock, while the one before might still be leaving it.
MThread* MThread::ReleaseRef() {
    if (m_references.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    return nullptr;
}

MThread* MThread::Release(bool wait, bool kill, std::int32_t timeoutMs) {
    ReleaseOrKill(wait, kill, timeoutMs);
    return nullptr;
}

bool MThread::ReleaseOrKill(bool wait, bool kill, std::int32_t timeoutMs) {
    if (wait && WaitForCompletion(timeoutMs) != 1 && kill) {
        Kill();
        return false;
    }
    ReleaseRef();
    return true;
}

std::int32_t MThread::WaitForCompletion(std::int32_t timeoutMs) {
    return IsRunning() ? m_doneEvent.WaitForEvent(Milliseconds(timeoutMs)) : 1;
}

std::int32_t MThread::WaitForStart(std::int32_t timeoutMs) const {
    return m_enteredEvent.WaitForEvent(Milliseconds(timeoutMs));
}

std::int32_t MThread::EntryPoint() {
    // The flags decide and the event only wakes: without the event a deferred thread still does not run ahead.
    while (!m_started.load(std::memory_order_acquire) && !m_cancelled.load(std::memory_order_acquire)) {
        if (m_startEvent.WaitForEvent(kWaitForever) < 0) platform::SleepMs(kPollMs);
    }
    // The destructor waits in another thread for this one to be gone.
    if (!m_started.load(std::memory_order_acquire)) return 0;
    m_enteredEvent.SignalEvent();
    const std::int32_t result = PlatformEntryPoint();
    m_doneEvent.SignalEvent();
    if (DropThreadReference()) ReleaseRef();
    return result;
}

bool MThread::DropThreadReference() {
    const TScopedLock<critSec> lock(m_lock);
    const bool held = m_threadHolds;
    m_threadHolds = false;
    return held;
}

void MThread::ForgetThread() {
    bool held = false;
    {
        const TScopedLock<critSec> lock(m_lock);
        m_started.store(true, std::memory_order_release);  // a later Start takes no reference that nobody would drop
        held = m_threadHolds;
        m_threadHolds = false;
    }
    if (held) ReleaseRef();
}

bool MThread::CancelStart() {
    if (m_started.load(std::memory_order_acquire)) return false;
    m_cancelled.store(true, std::memory_order_release);
    m_startEvent.SignalEvent();
    return true;
}

RWinThread::RWinThread(const char* name, ThreadFunction function, void* argument, eOrvThreadPriority priority,
                       std::int32_t stackSize, bool deferredStart)
    : MThread(name, function, argument, priority, stackSize, deferredStart) {
    if (RWinThread::PlatformCreateThread() == 0) ForgetThread();
}

RWinThread::~RWinThread() {
    if (CancelStart()) platform::WaitForThreadEnd(m_handle, kWaitForever);
    platform::CloseThread(m_handle);
}

bool RWinThread::IsRunning() {
    const TScopedLock<critSec> lock(m_lock);
    return platform::IsThreadRunning(m_handle);
}

std::int32_t RWinThread::PlatformCreateThread() {
    // The thread may look at its own object at once: the lock shows it the handle.
    const TScopedLock<critSec> lock(m_lock);
    if (m_handle) return 0;
    const std::uint32_t stackSize = m_stackSize > 0 ? static_cast<std::uint32_t>(m_stackSize) : 0;
    m_handle = platform::StartThread(m_name, EnterThread, static_cast<MThread*>(this), stackSize);
    if (!m_handle) return 0;
    m_threadId = platform::ThreadIdOf(m_handle);
    const auto row = static_cast<std::uint32_t>(m_priority);
    if (row < std::size(kRelativePriority) && kRelativePriority[row] != 0)
        platform::SetThreadPriority(m_handle, kRelativePriority[row]);
    return 1;
}

std::int32_t RWinThread::PlatformEntryPoint() {
    t_running = this;
    platform::ArmThreadFaults(OnFault);
    const std::int32_t result = m_function ? m_function(m_argument) : 0;
    platform::DisarmThreadFaults();
    t_running = nullptr;
    return result;
}

void RWinThread::Kill() {
    // A thread that ends itself must not take the lock along. Its handle and references stay for who is left.
    if (GetOsThreadId() == GetThreadID() && IsRunning()) platform::TerminateThread(m_handle);
    {
        // While the lock is held here the thread cannot die holding it.
        const TScopedLock<critSec> lock(m_lock);
        if (!m_handle) return;
        platform::TerminateThread(m_handle);
        platform::CloseThread(m_handle);
        m_handle = nullptr;
    }
    ForgetThread();
    m_doneEvent.SignalEvent();
}

void RWinThread::HandleThreadExcept() { platform::EndProcess(m_exceptionCode); }

std::int32_t RWinThread::ThreadExceptionFilter(std::uint32_t code, void* exceptionPointers) {
    m_exceptionCode = code;
    m_exceptionPointers = exceptionPointers;
    if (code == kBreakpointCode) return 0;
    if (const CrashReporter report = g_reporter.load(std::memory_order_acquire)) report(code, exceptionPointers);
    return 1;
}

std::uint32_t RWinThread::GetOsThreadId() const {
    const TScopedLock<critSec> lock(m_lock);
    return m_threadId;
}

MThread* CreateThread(const char* name, ThreadFunction function, void* argument, eOrvThreadPriority priority,
                      std::int32_t stackSize, bool deferredStart) {
    return new (std::nothrow) RWinThread(name, function, argument, priority, stackSize, deferredStart);
}

std::uint32_t GetThreadID() { return platform::CurrentThreadId(); }

}  // namespace dorvutil
