#pragma once

#include <atomic>
#include <cstdint>

#include "dorvutil/concurrency/event.h"
#include "dorvutil/concurrency/thread.h"
#include "dorvutil/frame/export.h"

namespace dorvutil {

/// A thread that waits for work and does it, again and again, and that other threads start, pause and stop.
///
/// The thread is created by the constructor but calls nothing of this class before the first Start, Pause or Stop. A
/// derived class stops its worker (Stop with `wait`) in its own destructor: once that has begun to unwind, the thread
/// must not be able to call its operations any more. The base destructor waits for the thread, it does not stop it. A
/// worker that was never started needs no stop.
///
/// Start, Pause, Stop and SignalWork may be called from any thread. Those called with `true` wait for a running
/// ThreadDoWork to finish and keep the next one from beginning until they return, so the worker's own operations must
/// not call them with `true`.
class DORVUTIL_API CWorkerThread {
public:
    /// Parameters as those of MThread; `name` is not copied.
    CWorkerThread(const char* name, eOrvThreadPriority priority, std::int32_t stackSize);
    CWorkerThread(const CWorkerThread&) = delete;
    CWorkerThread& operator=(const CWorkerThread&) = delete;
    virtual ~CWorkerThread();

    /// Tells the thread that there is work. Signals count: each makes one WaitForWork return, now or later.
    virtual bool SignalWork() = 0;
    /// Blocks until there may be work; SignalWork must end the wait, since Stop relies on it.
    virtual bool WaitForWork() = 0;
    /// Does one unit of work. Finding none is in order.
    virtual bool ThreadDoWork() = 0;
    virtual bool ThreadInit() { return true; }     ///< Runs first on the thread.
    virtual bool ThreadCleanup() { return true; }  ///< Runs last on the thread.
    /// Runs after each unit of work while the worker keeps running, to leave the processor to others: here for 10 ms,
    /// or until a Start, Pause or Stop asks for the thread's attention.
    virtual void Relinquish();

    /// Lets the worker run. Always true, also when there is no thread to run it.
    bool Start(bool lock);
    /// Keeps further work from beginning. With `wait`: true once no work is in progress, false when there is no thread
    /// (any more). Without: false at once.
    bool Pause(bool wait);
    /// Ends the loop after the unit in progress, also that of a paused worker; it cannot be started again. With `wait`:
    /// true once ThreadCleanup has run, false when there is no thread. Without: false at once.
    bool Stop(bool wait);

    bool IsRunning() const;  ///< Whether the thread exists and has not ended; also before the first Start.
    const char* GetThreadName() const;

private:
    static std::int32_t Run(void* worker);
    std::int32_t ThreadFunc();
    bool WorkOnce();
    bool MayRun() const;

    bool TryThreadStart();
    bool TryStateWait(event& state);
    bool ActionEnter(std::uint32_t timeoutMs);
    void ActionExit();

    MThread* m_thread = nullptr;  // one reference; null when memory ran out
    event m_stoppedEvent{true};   // the loop has ended
    event m_idleEvent{true};      // ThreadDoWork is not running
    event m_busyEvent{true};      // ThreadDoWork is running
    event m_runEvent{true};       // the worker may run
    std::atomic<bool> m_stopRequested{false};
    std::atomic<bool> m_threadStarted{false};
    event m_actionEvent{false};  // a lock: held by ThreadDoWork and by callers that ask for it
    const char* const m_name;
    event m_attentionEvent{true};  // cuts Relinquish short
};

}  // namespace dorvutil
