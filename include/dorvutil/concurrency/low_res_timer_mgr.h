#pragma once

#include <atomic>
#include <cstdint>

#include "dorvutil/concurrency/event.h"
#include "dorvutil/concurrency/timer.h"
#include "dorvutil/concurrency/worker.h"
#include "dorvutil/frame/export.h"
#include "dorvutil/memory/sync_list.h"
#include "dorvutil/memory/vector.h"

namespace dorvutil {

/// The list of the agents of all running timers, and the thread "LowResTimer" that serves them. There is one, owned by
/// the registry: GetLowResTimerMgr.
///
/// The thread sleeps until the earliest agent is due, or until a timer is started or stopped. A pass after a sleep that
/// ran its time fires the first agent; every pass then drops the inactive agents and puts the rest into the order of
/// their due ticks (equal ones in any order). Passes are 10 ms apart at least, so that is what two time-outs are, too.
/// Between passes, agents that were started meanwhile stand at the end and stopped ones in their place.
///
/// Starting and stopping cost the same however many timers run. The list's own operations serve to look at it, from any
/// thread: agents come and go with their timers.
class DORVUTIL_API COrvLowResTimerMgr final : public ListMgr_TS_RC<OrvTimerAgent, critSec, true>, CWorkerThread {
public:
    /// Starts the thread.
    COrvLowResTimerMgr();
    /// Ends the thread. Timers that still run become stopped, and those that nobody else holds are destroyed.
    ~COrvLowResTimerMgr() override;

    /// Has the thread make a pass.
    bool SignalWork() override;

    /// Ends the thread for good, after the time-out in progress; nothing fires afterwards. False on the timer thread
    /// itself, which cannot wait for its own end: it ends as soon as it is back in its loop.
    bool EndThread();

    using CWorkerThread::GetThreadName;
    using CWorkerThread::IsRunning;

private:
    bool WaitForWork() override;
    bool ThreadDoWork() override;
    bool ThreadInit() override;

    friend class OrvTimerAsync;
    friend class OrvTimerAgent;
    void StartTimer(OrvTimerAsync& timer);
    void StopTimer(OrvTimerAsync& timer);
    bool StartAgent(OrvTimerAgent& agent);
    bool Join(OrvTimerAgent& agent, std::uint32_t dueTick);
    void Leave(OrvTimerAgent& agent);

    void FireFirst();
    void TakeOff(bool all);
    void PutInOrder();
    void DropTaken();

    // For the timer thread alone.
    std::uint32_t m_waitMs = kWaitForever;
    std::int32_t m_lastWait = 1;      // 1 woken, 0 ran its time, -1 failed
    TVector<OrvTimerAgent*> m_taken;  // off the list, with its references

    event m_wakeEvent{false};
    std::atomic<std::uint32_t> m_threadId{0};
};

}  // namespace dorvutil
