#pragma once

#include <atomic>
#include <cstdint>

#include "dorvutil/concurrency/event.h"
#include "dorvutil/concurrency/locks.h"
#include "dorvutil/concurrency/worker.h"
#include "dorvutil/memory/priority_queue.h"
#include "dorvutil/memory/vector.h"
#include "dorvutil/messaging/progress.h"
#include "dorvutil/typeahead/work_unit.h"

/// The two workers that all search handles share.
namespace dorvutil {

/// What both have in common: a queue with at most one unit for each source, a sink that cancels the unit in progress,
/// and an event that tells when there is nothing left to do. Everything may be called from any thread, also from inside
/// a unit; there, what else would wait for the worker does not.
///
/// The queue's lock covers queue, current source and completion event together: a unit is at every moment either
/// queued, or current, or done.
template <class Unit>
class TTypeAheadThread : protected CWorkerThread {
public:
    /// While one exists the worker begins no unit, and its maker, which runs units itself, does not share them with
    /// other such threads. Null: nothing.
    class Suspension {
    public:
        explicit Suspension(TTypeAheadThread* thread);
        ~Suspension();
        Suspension(const Suspension&) = delete;
        Suspension& operator=(const Suspension&) = delete;

    private:
        TTypeAheadThread* const m_thread;
        bool m_hasTurn = false;
    };

    /// Drops all queued units, cancels the one in progress and waits until the worker is idle. It stays paused, and its
    /// sink cancelled, until work is next started.
    void Cancel();
    /// Whether the sink is cancelled.
    bool IsCanceled() const { return m_sink.Is_Cancelled(); }
    /// Waits until nothing is queued or in progress.
    void WaitForCompletion() const {
        if (Unit::MayWait()) m_completion.WaitForEvent(kWaitForever);
    }
    bool IsComplete() const { return m_completion.WaitForEvent(0) == 1; }
    /// Drops the queued unit of `source` (which is not looked at: it may be gone); cancels the one in progress and
    /// waits for its end.
    void Drop(const TypeAheadSource* source) { Drop(source, true); }
    /// The source of the unit in progress, or null.
    TypeAheadSource* Current() const { return m_current; }

protected:
    explicit TTypeAheadThread(const char* name);

    void Drop(const TypeAheadSource* source, bool cancelCurrent);
    bool Enqueue(TypeAheadSource* source, Unit* unit);
    /// Un-cancels and does the queued work, here or on the worker.
    void StartWork(eSearchThreadingControl control);
    void Resume();          ///< Lets the worker run, unless it is suspended.
    void PauseUntilIdle();  ///< Waits for the unit in progress; does not wait inside a unit.
    void EndWorker();       ///< For the destructor of the derived class.

    bool SignalWork() override;
    bool WaitForWork() override;
    bool ThreadDoWork() override;

    PriorityQueue_TS<Unit> m_queue;
    CB_Dialog m_sink;

private:
    static constexpr std::int32_t kStackSize = 8192;  // bytes

    void DropAll();
    void Settle();
    bool HasStarted() const;

    std::atomic<TypeAheadSource*> m_current{nullptr};  // written under the queue's lock
    event m_completion{true};                          // nothing queued or in progress; changed under the queue's lock

    mutable critSec m_gate;  // guards the three below, and starting against suspending
    bool m_started = false;  // the worker was let run at least once: else there is nothing to pause
    bool m_wanted = false;   // it is to run as soon as nobody suspends it
    std::int32_t m_suspensions = 0;
    critSec m_turn;  // held by the thread that suspends
};

/// Runs preloads.
class TypeAheadPreloadThread final : public TTypeAheadThread<TypeAheadPreloadWorkUnit> {
public:
    TypeAheadPreloadThread();
    ~TypeAheadPreloadThread() override;

    /// Queues the source's preload; StartPreload lets it begin. A source without preload is marked preloaded and
    /// reported to the observer at once. Nothing when either is null.
    void Add(TypeAheadSource* source, TypeAheadPreloadObserver* observer);
    void StartPreload(eSearchThreadingControl control) { StartWork(control); }
    /// Drop, for sources that have a preload.
    void Remove(TypeAheadSource* source);
    void Cancel();
    /// Changes with every Cancel, which may have dropped preloads that are still wanted.
    std::uint32_t Epoch() const { return m_epoch; }

private:
    std::atomic<std::uint32_t> m_epoch{0};
};

/// Runs searches.
class TypeAheadSearchThread final : public TTypeAheadThread<TypeAheadSearchWorkUnit> {
public:
    TypeAheadSearchThread();
    ~TypeAheadSearchThread() override;

    /// Queues one source and lets the worker go on. Does not wait for the unit in progress.
    void AddSearch(TypeAheadSource* source, TypeAheadSearchParams& params);
    /// Queues all sources; StartSearch lets them begin. A preparation is queued only when there is no other work.
    /// Whether anything was queued.
    bool AddSearch(const TVector<TypeAheadSource*>& sources, TypeAheadSearchParams& params);
    void StartSearch(eSearchThreadingControl control) { StartWork(control); }
    /// Drops the queued unit; the one in progress, if it is of this source, is waited for, and cancelled if asked for.
    void Remove(TypeAheadSource* source, bool cancelCurrent) { Drop(source, cancelCurrent); }
    /// Whether nothing is queued or in progress.
    bool IsIdle() const;
};

}  // namespace dorvutil
