#include "dorvutil/concurrency/worker.h"

#include <algorithm>
#include <iterator>

namespace dorvutil {
namespace {

constexpr std::uint32_t kStatePollMs = 10;
constexpr std::uint32_t kRelinquishMs = 10;

}  // namespace

CWorkerThread::CWorkerThread(const char* name, eOrvThreadPriority priority, std::int32_t stackSize) : m_name(name) {
    const event* const states[] = {&m_stoppedEvent, &m_idleEvent, &m_runEvent, &m_actionEvent};
    // Without its events the loop could be neither paused nor stopped: then there is no thread.
    const bool complete = std::all_of(std::begin(states), std::end(states),
                                      [](const event* state) { return state->WaitForEvent(0) == 0; });
    m_actionEvent.SignalEvent();
    // Deferred: the thread must not meet a half-built derived class.
    if (complete) m_thread = CreateThread(m_name, Run, this, priority, stackSize, true);
    m_idleEvent.SignalEvent();
}

CWorkerThread::~CWorkerThread() {
    if (!m_thread) return;
    // A thread that was never started has no end to wait for; it goes with its last reference.
    if (m_threadStarted && m_thread->WaitForCompletion(-1) != 1) m_thread->Kill();
    m_thread->ReleaseRef();
}

void CWorkerThread::Relinquish() { m_attentionEvent.WaitForEvent(kRelinquishMs); }

bool CWorkerThread::Start(bool lock) {
    if (lock) ActionEnter(kWaitForever);
    m_runEvent.SignalEvent();
    m_attentionEvent.SignalEvent();
    TryThreadStart();
    if (lock) ActionExit();
    return true;
}

bool CWorkerThread::Pause(bool wait) {
    if (wait) ActionEnter(kWaitForever);
    m_runEvent.ClearEvent();
    m_attentionEvent.SignalEvent();
    const bool idle = TryThreadStart() && wait && TryStateWait(m_idleEvent);
    if (wait) ActionExit();
    return idle;
}

bool CWorkerThread::Stop(bool wait) {
    if (wait) ActionEnter(kWaitForever);
    m_stopRequested = true;
    m_runEvent.SignalEvent();
    m_attentionEvent.SignalEvent();
    SignalWork();
    const bool stopped = TryThreadStart() && wait && TryStateWait(m_stoppedEvent);
    if (wait) ActionExit();
    return stopped;
}

bool CWorkerThread::IsRunning() const { return m_thread && m_thread->IsRunning(); }

const char* CWorkerThread::GetThreadName() const { return m_thread ? m_thread->GetName() : m_name; }

std::int32_t CWorkerThread::Run(void* worker) { return static_cast<CWorkerThread*>(worker)->ThreadFunc(); }

std::int32_t CWorkerThread::ThreadFunc() {
    ThreadInit();
    while (!m_stopRequested) {
        m_runEvent.WaitForEvent(kWaitForever);
        if (m_stopRequested) break;
        WaitForWork();
        if (m_stopRequested) break;
        if (!WorkOnce()) {
            SignalWork();  // the work that was noticed stays to be done
            continue;
        }
        if (!m_stopRequested && MayRun()) Relinquish();
    }
    ThreadCleanup();
    m_stoppedEvent.SignalEvent();
    return 0;
}

// False, and nothing done, while the worker is paused or a caller holds the action event.
bool CWorkerThread::WorkOnce() {
    if (!MayRun() || !ActionEnter(0)) return false;
    // A Pause that came and went between those two has told its caller that no work begins.
    const bool mayRun = MayRun();
    if (mayRun) {
        // Requests made from here on, while the work goes on or after it, cut the rest behind it short.
        m_attentionEvent.ClearEvent();
        m_idleEvent.ClearEvent();
        m_busyEvent.SignalEvent();
        ThreadDoWork();
        m_busyEvent.ClearEvent();
        m_idleEvent.SignalEvent();
    }
    ActionExit();
    return mayRun;
}

bool CWorkerThread::MayRun() const { return m_runEvent.WaitForEvent(0) == 1; }

bool CWorkerThread::TryThreadStart() {
    while (!m_threadStarted) {
        const bool running = IsRunning();
        if (running) m_thread->Start();
        // Asked also of a thread that is gone: another caller's Stop may have let it run and end.
        if (m_thread && m_thread->WaitForStart(running ? kStatePollMs : 0) != 0) {
            m_threadStarted = true;
        } else if (!running) {
            return false;
        }
    }
    return true;
}

bool CWorkerThread::TryStateWait(event& state) {
    while (IsRunning()) {
        if (state.WaitForEvent(kStatePollMs) == 1) return true;
    }
    // A thread that stopped as it should counts, however quickly it was gone.
    return &state == &m_stoppedEvent && state.WaitForEvent(0) == 1;
}

bool CWorkerThread::ActionEnter(std::uint32_t timeoutMs) { return m_actionEvent.WaitForEvent(timeoutMs) == 1; }

void CWorkerThread::ActionExit() { m_actionEvent.SignalEvent(); }

}  // namespace dorvutil
