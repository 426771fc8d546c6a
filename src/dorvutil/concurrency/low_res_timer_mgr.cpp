#include "dorvutil/concurrency/low_res_timer_mgr.h"

#include <algorithm>

#include "dorvutil/platform/clock.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kChunkSize = 32;
constexpr std::int32_t kStackSize = 8192;  // bytes

// Signed difference: right across the tick's wrap.
std::int32_t MillisecondsUntil(std::uint32_t dueTick, std::uint32_t now) {
    return static_cast<std::int32_t>(dueTick - now);
}

}  // namespace

COrvLowResTimerMgr::COrvLowResTimerMgr()
    : ListMgr_TS_RC(true, kChunkSize), CWorkerThread("LowResTimer", eThreadPriorityNormal, kStackSize) {
    CWorkerThread::Start(true);
}

COrvLowResTimerMgr::~COrvLowResTimerMgr() {
    EndThread();
    TakeOff(true);
    DropTaken();
}

bool COrvLowResTimerMgr::SignalWork() {
    m_wakeEvent.SignalEvent();
    return true;
}

bool COrvLowResTimerMgr::EndThread() {
    const bool itself = m_threadId.load(std::memory_order_relaxed) == GetThreadID();
    CWorkerThread::Stop(!itself);
    return !itself;
}

// Nothing here touches the timer after the lock is left: it may fire, and go, at once.
void COrvLowResTimerMgr::StartTimer(OrvTimerAsync& timer) {
    const std::uint32_t now = platform::TickCount();
    {
        const TScopedLock<CBaseSync> lock(*this);
        OrvTimerAgent* agent = timer.Agent();
        if (agent && agent->m_listedBy == this) {
            agent->m_active.store(true, std::memory_order_relaxed);
            agent->m_interval = timer.m_interval;
        } else {
            // The timer thread may be firing the one before, which then is its last time.
            if (agent) agent->Stop();
            agent = new (std::nothrow) OrvTimerAgent(&timer, timer.m_interval, timer.m_oneShot);
            timer.SetLockable(agent);
            if (!agent) return;
            agent->Unref();
        }
        if (!Join(*agent, now + timer.m_interval)) timer.SetLockable(nullptr);
    }
    SignalWork();
}

// Woken, the manager lets go of the timer now and not when it would have been due.
void COrvLowResTimerMgr::StopTimer(OrvTimerAsync& timer) {
    {
        const TScopedLock<CBaseSync> lock(*this);
        OrvTimerAgent* const agent = timer.Agent();
        if (!agent) return;
        agent->Stop();
    }
    SignalWork();
}

bool COrvLowResTimerMgr::StartAgent(OrvTimerAgent& agent) {
    const std::uint32_t now = platform::TickCount();
    {
        const TScopedLock<CBaseSync> lock(*this);
        if (!Join(agent, now + agent.m_interval)) return false;
    }
    SignalWork();
    return true;
}

// Under the lock. An agent that is in the list stays where it is until the next pass.
bool COrvLowResTimerMgr::Join(OrvTimerAgent& agent, std::uint32_t dueTick) {
    if (agent.m_listedBy != this && Add(&agent, true) < 0) return false;
    agent.m_listedBy = this;
    agent.m_dueTick = dueTick;
    agent.m_moved = true;
    return true;
}

// Under the lock, for an agent that is off the list for good. It still has its timer, whose last reference it may be.
void COrvLowResTimerMgr::Leave(OrvTimerAgent& agent) {
    agent.Stop();
    agent.m_listedBy = nullptr;
    OrvTimerAsync* const timer = agent.Timer();
    if (timer && timer->Agent() == &agent) timer->SetLockable(nullptr);
}

bool COrvLowResTimerMgr::ThreadInit() {
    m_threadId.store(GetThreadID(), std::memory_order_relaxed);
    return true;
}

bool COrvLowResTimerMgr::WaitForWork() {
    m_lastWait = m_wakeEvent.WaitForEvent(m_waitMs);
    return true;
}

bool COrvLowResTimerMgr::ThreadDoWork() {
    if (m_lastWait == 0) FireFirst();
    TakeOff(false);
    PutInOrder();
    DropTaken();
    return true;
}

void COrvLowResTimerMgr::FireFirst() {
    OrvTimerAgent* agent = nullptr;
    {
        const TScopedLock<CBaseSync> lock(*this);
        agent = TakeFront();
        if (!agent) return;
        agent->m_listedBy = nullptr;
    }
    if (agent->IsActive()) agent->OnTimeout();
    {
        const TScopedLock<CBaseSync> lock(*this);
        const bool again = agent->IsActive() && agent->IsRepeat();
        if (!again || !Join(*agent, agent->m_dueTick)) Leave(*agent);
    }
    agent->Unref();
}

// Takes the inactive agents, or all, off the list.
void COrvLowResTimerMgr::TakeOff(bool all) {
    Changing([this, all] {
        OrvTimerAgent** const agents = Data();
        std::uint32_t kept = 0;
        for (std::uint32_t i = 0; i < ListMgr::Count(); ++i) {
            OrvTimerAgent* const agent = agents[i];
            if (agent && ((!all && agent->IsActive()) || m_taken.Add(agent) < 0)) {
                agents[kept++] = agent;
            } else if (agent) {
                Leave(*agent);
            }
        }
        SetCount(kept);
    });
}

// Only the agents that started or fired since the last pass are sorted; the rest still is.
void COrvLowResTimerMgr::PutInOrder() {
    const TScopedLock<CBaseSync> lock(*this);
    // Relative to one moment the order is total, however far apart the ticks lie.
    const std::uint32_t now = platform::TickCount();
    const auto earlier = [now](const OrvTimerAgent* a, const OrvTimerAgent* b) {
        return MillisecondsUntil(a->m_dueTick, now) < MillisecondsUntil(b->m_dueTick, now);
    };
    OrvTimerAgent** const first = Data();
    OrvTimerAgent** const last = first + ListMgr::Count();
    OrvTimerAgent** const moved =
        std::stable_partition(first, last, [](const OrvTimerAgent* a) { return !a->m_moved; });
    std::for_each(moved, last, [](OrvTimerAgent* a) { a->m_moved = false; });
    std::sort(moved, last, earlier);
    // Callers may use the list's own operations.
    if (!std::is_sorted(first, moved, earlier)) std::sort(first, moved, earlier);
    std::inplace_merge(first, moved, last, earlier);
    m_waitMs = kWaitForever;
    if (first != last) m_waitMs = static_cast<std::uint32_t>(std::max(MillisecondsUntil((*first)->m_dueTick, now), 0));
}

// With no lock held: the last reference to a timer may go here, and its destructor is its owner's.
void COrvLowResTimerMgr::DropTaken() {
    for (OrvTimerAgent* const agent : m_taken) agent->Unref();
    m_taken.SetSize(0);
}

}  // namespace dorvutil
