#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>

#include "dorvutil/concurrency/lockable.h"
#include "dorvutil/frame/export.h"

/// Millisecond timers, served by the one thread of the low-resolution timer manager (concurrency/low_res_timer_mgr.h).
/// Time is the system's millisecond tick, which wraps after 49.7 days: an interval may be up to 0x7FFFFFFF ms (24.8
/// days); a longer one counts as already over.
namespace dorvutil {

class COrvLowResTimerMgr;
class OrvTimerAgent;

/// A timer that calls OnTimeout once, or again and again, each time one interval after the start or the time-out
/// before (a late time-out is not caught up). It is born with one reference, its creator's; while it runs, its agent
/// holds another, so that dropping one's own does not stop it.
///
/// Start, Stop and SetInterval may be called from any thread, also from OnTimeout, but for one timer from one thread at
/// a time. OnTimeout runs on the timer thread, with no lock held; it delays every other timer.
class DORVUTIL_API OrvTimerAsync : public TLockable<critSec>, protected TLocker<CBaseLockable> {
public:
    /// A stopped timer. `name` is not copied and may be null.
    OrvTimerAsync(const char* name, std::uint32_t intervalMs, bool oneShot);
    OrvTimerAsync(const OrvTimerAsync&) = delete;
    OrvTimerAsync& operator=(const OrvTimerAsync&) = delete;
    /// Does not stop the timer. One that is not left to its last Unref must be stopped before, and the manager must
    /// have let go of its agent, which it does in its next pass.
    ~OrvTimerAsync() override;

    virtual void OnTimeout() = 0;  ///< The interval is over.

    /// Starts the timer, or starts it anew: the interval begins now. It stays stopped when there is no manager or
    /// memory ran out.
    void Start();
    /// Nothing fires after this, but for a time-out that the timer thread has already taken up. The timer's run lets go
    /// of it in the manager's next pass.
    void Stop();
    /// Stops, sets the interval, starts.
    void SetInterval(std::uint32_t milliseconds);

    const char* GetName() const { return m_name; }

private:
    friend class COrvLowResTimerMgr;
    // Of the run under way; null while stopped. Changed and read under the manager's lock.
    OrvTimerAgent* Agent() const;

    const char* const m_name;
    std::uint32_t m_interval;
    const bool m_oneShot;
};

/// One run of one timer, as the manager keeps it. It holds a reference to the timer from its construction until it is
/// destroyed or will not fire any more. Timers make their own agents, and use them again while the manager has them.
class DORVUTIL_API OrvTimerAgent : public TLockable<critSec>, protected TLocker<CBaseLockable> {
public:
    /// Active, with one reference. `timer` may be null: then nothing is called.
    OrvTimerAgent(OrvTimerAsync* timer, std::uint32_t intervalMs, bool oneShot);
    OrvTimerAgent(const OrvTimerAgent&) = delete;
    OrvTimerAgent& operator=(const OrvTimerAgent&) = delete;
    ~OrvTimerAgent() override;

    /// Falls due one interval from now: joins the manager's list, unless it is there, and wakes the manager. False when
    /// it could not join.
    bool Start();
    /// Makes the agent inactive, for good; the manager drops it in its next pass. Any thread.
    void Stop();
    /// Calls the timer; the next interval begins when it returns. For the timer thread.
    void OnTimeout();
    bool IsActive() const { return m_active.load(std::memory_order_acquire); }
    bool IsRepeat() const { return !m_oneShot; }

    /// From the registry's timer-agent pool; null, with the registry not set up or memory run out.
    static void* operator new(std::size_t size) noexcept;
    static void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return operator new(size); }
    static void operator delete(void* agent) noexcept;

private:
    friend class COrvLowResTimerMgr;
    OrvTimerAsync* Timer() const { return static_cast<OrvTimerAsync*>(GetLockable()); }

    // Guarded by the manager's lock while the agent is in its list; else the timer thread's.
    std::uint32_t m_dueTick = 0;
    std::uint32_t m_interval;
    const bool m_oneShot;
    bool m_moved = false;  // not yet put into its place in the list
    const COrvLowResTimerMgr* m_listedBy = nullptr;
    std::atomic<bool> m_active{true};
};

}  // namespace dorvutil
