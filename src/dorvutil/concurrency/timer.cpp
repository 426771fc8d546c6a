#include "dorvutil/concurrency/timer.h"

#include "dorvutil/concurrency/low_res_timer_mgr.h"
#include "dorvutil/frame/accessors.h"
#include "dorvutil/memory/pool.h"
#include "dorvutil/platform/clock.h"

namespace dorvutil {

OrvTimerAsync::OrvTimerAsync(const char* name, std::uint32_t intervalMs, bool oneShot)
    : TLockable(1), m_name(name), m_interval(intervalMs), m_oneShot(oneShot) {}

OrvTimerAsync::~OrvTimerAsync() = default;

void OrvTimerAsync::Start() {
    if (COrvLowResTimerMgr* const manager = GetLowResTimerMgr()) manager->StartTimer(*this);
}

void OrvTimerAsync::Stop() {
    if (COrvLowResTimerMgr* const manager = GetLowResTimerMgr()) manager->StopTimer(*this);
}

void OrvTimerAsync::SetInterval(std::uint32_t milliseconds) {
    Stop();
    m_interval = milliseconds;
    Start();
}

OrvTimerAgent* OrvTimerAsync::Agent() const { return static_cast<OrvTimerAgent*>(GetLockable()); }

OrvTimerAgent::OrvTimerAgent(OrvTimerAsync* timer, std::uint32_t intervalMs, bool oneShot)
    : TLockable(1), TLocker<CBaseLockable>(timer), m_interval(intervalMs), m_oneShot(oneShot) {}

OrvTimerAgent::~OrvTimerAgent() = default;

bool OrvTimerAgent::Start() {
    COrvLowResTimerMgr* const manager = GetLowResTimerMgr();
    return manager && manager->StartAgent(*this);
}

void OrvTimerAgent::Stop() { m_active.store(false, std::memory_order_release); }

void OrvTimerAgent::OnTimeout() {
    if (OrvTimerAsync* const timer = Timer()) timer->OnTimeout();
    m_dueTick = platform::TickCount() + m_interval;
}

// No way out to the general heap: an agent whose pool is gone could not tell where it came from.
void* OrvTimerAgent::operator new(std::size_t size) noexcept {
    Allocator* const pool = TimerAgentPool();
    return pool && size <= pool->ElemSize() ? pool->Alloc() : nullptr;
}

// An agent that outlived the pool lies in a block that the registry has left behind, which nobody frees.
void OrvTimerAgent::operator delete(void* agent) noexcept {
    if (Allocator* const pool = TimerAgentPool()) pool->Free(agent);
}

}  // namespace dorvutil
