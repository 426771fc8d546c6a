#include "dorvutil/typeahead/threads.h"

#include <memory>
#include <new>

namespace dorvutil {

template <class Unit>
TTypeAheadThread<Unit>::Suspension::Suspension(TTypeAheadThread* thread) : m_thread(thread) {
    if (!m_thread) return;
    // Inside a unit waiting for the turn is waiting for oneself, if its holder waits for the worker.
    m_hasTurn = m_thread->m_turn.TryLock();
    if (!m_hasTurn && Unit::MayWait()) {
        m_thread->m_turn.Enter();
        m_hasTurn = true;
    }
    m_thread->m_gate.Enter();
    ++m_thread->m_suspensions;
    m_thread->m_gate.Exit();
    m_thread->PauseUntilIdle();
}

template <class Unit>
TTypeAheadThread<Unit>::Suspension::~Suspension() {
    if (!m_thread) return;
    m_thread->m_gate.Enter();
    --m_thread->m_suspensions;
    const bool wanted = m_thread->m_wanted;
    m_thread->m_gate.Exit();
    if (wanted) m_thread->Resume();
    if (m_hasTurn) m_thread->m_turn.Exit();
}

template <class Unit>
TTypeAheadThread<Unit>::TTypeAheadThread(const char* name) : CWorkerThread(name, eThreadPriorityNormal, kStackSize) {
    m_queue.SetAllowDuplicates(false);
    m_queue.SetReplaceDuplicate(true);
    m_completion.SignalEvent();
}

template <class Unit>
void TTypeAheadThread<Unit>::EndWorker() {
    Cancel();
    if (HasStarted()) Stop(true);
}

template <class Unit>
bool TTypeAheadThread<Unit>::HasStarted() const {
    const TScopedLock<critSec> gate(m_gate);
    return m_started;
}

// Never with the worker's action lock: waiting for the unit in progress would add nothing, as a worker that runs
// already needs no start.
template <class Unit>
void TTypeAheadThread<Unit>::Resume() {
    const TScopedLock<critSec> gate(m_gate);
    m_wanted = true;
    if (m_suspensions > 0) return;
    m_started = true;
    Start(false);
}

template <class Unit>
void TTypeAheadThread<Unit>::PauseUntilIdle() {
    if (HasStarted() && Unit::MayWait()) Pause(true);
}

template <class Unit>
void TTypeAheadThread<Unit>::Cancel() {
    m_gate.Enter();
    m_wanted = false;
    if (m_started) Pause(false);
    m_gate.Exit();
    DropAll();
    m_sink.Cancel();
    PauseUntilIdle();
    // Once more: the unit in progress may have queued others before it saw the cancellation.
    DropAll();
}

template <class Unit>
void TTypeAheadThread<Unit>::DropAll() {
    const TScopedLock<CBaseSync> lock(m_queue);
    m_queue.Flush();
    Settle();
}

// Under the queue's lock. With an empty queue, what the semaphore still counts are units dropped or done elsewhere.
template <class Unit>
void TTypeAheadThread<Unit>::Settle() {
    if (m_queue.Count() != 0) return;
    while (m_queue.Semaphore().Wait(0) == 1) continue;
    if (!m_current.load()) m_completion.SignalEvent();
}

template <class Unit>
void TTypeAheadThread<Unit>::Drop(const TypeAheadSource* source, bool cancelCurrent) {
    m_queue.Enter();
    m_queue.RemoveByKey(source);
    Settle();
    const bool current = m_current.load() == source;
    m_queue.Exit();
    if (!source || !current || !Unit::MayWait()) return;
    // A cancellation that somebody else asked for stays.
    const bool cancel = cancelCurrent && !IsCanceled();
    if (cancel) m_sink.Cancel();
    for (TypeAheadSource* now = m_current; now == source; now = m_current) m_current.wait(now);
    if (cancel) m_sink.ClearCancelFlag();
}

template <class Unit>
bool TTypeAheadThread<Unit>::Enqueue(TypeAheadSource* source, Unit* unit) {
    if (!source || !unit) {
        delete unit;
        return false;
    }
    const TScopedLock<CBaseSync> lock(m_queue);
    if (m_queue.Add(unit) < 0) return false;
    m_completion.ClearEvent();
    return true;
}

template <class Unit>
void TTypeAheadThread<Unit>::StartWork(eSearchThreadingControl control) {
    m_sink.ClearCancelFlag();
    if (control != STC_SYNCHRONOUS) {
        Resume();
        return;
    }
    const Suspension suspension(this);
    while (m_queue.Count() != 0) ThreadDoWork();
}

template <class Unit>
bool TTypeAheadThread<Unit>::SignalWork() {
    m_queue.Semaphore().Release(1);
    return true;
}

template <class Unit>
bool TTypeAheadThread<Unit>::WaitForWork() {
    return m_queue.Semaphore().Wait(kWaitForever) == 1;
}

// A listener may start synchronous work from inside a unit: the outer unit's source is current again afterwards.
template <class Unit>
bool TTypeAheadThread<Unit>::ThreadDoWork() {
    m_queue.Enter();
    TypeAheadSource* const outer = m_current;
    std::unique_ptr<Unit> unit(m_queue.TakeFront());
    if (unit) m_current = unit->m_source;
    m_queue.Exit();
    if (unit) {
        ++Unit::Depth();
        unit->Run(m_sink);
        --Unit::Depth();
    }
    const TScopedLock<CBaseSync> lock(m_queue);
    if (unit) {
        unit.reset();
        m_current = outer;
        m_current.notify_all();
    }
    Settle();
    return true;
}

template class TTypeAheadThread<TypeAheadPreloadWorkUnit>;
template class TTypeAheadThread<TypeAheadSearchWorkUnit>;

TypeAheadPreloadThread::TypeAheadPreloadThread() : TTypeAheadThread("TypeAheadPreloadThread") {}

TypeAheadPreloadThread::~TypeAheadPreloadThread() { EndWorker(); }

void TypeAheadPreloadThread::Add(TypeAheadSource* source, TypeAheadPreloadObserver* observer) {
    if (!source || !observer) return;
    if (source->HasPreload()) {
        Enqueue(source, new (std::nothrow) TypeAheadPreloadWorkUnit{source, observer});
        return;
    }
    source->DoPreload(m_sink);
    observer->OnPreloadComplete(source);
}

void TypeAheadPreloadThread::Remove(TypeAheadSource* source) {
    if (source && source->HasPreload()) Drop(source);
}

void TypeAheadPreloadThread::Cancel() {
    ++m_epoch;
    TTypeAheadThread::Cancel();
}

TypeAheadSearchThread::TypeAheadSearchThread() : TTypeAheadThread("TypeAheadSearchThread") {}

TypeAheadSearchThread::~TypeAheadSearchThread() { EndWorker(); }

// Without pausing: the queue's lock keeps the worker from meeting half an addition, and who reports a change of data or
// ends a preload would have to wait for a search that may be long.
void TypeAheadSearchThread::AddSearch(TypeAheadSource* source, TypeAheadSearchParams& params) {
    Enqueue(source, new (std::nothrow) TypeAheadSearchWorkUnit{source, params});
    Resume();
}

bool TypeAheadSearchThread::AddSearch(const TVector<TypeAheadSource*>& sources, TypeAheadSearchParams& params) {
    const TScopedLock<CBaseSync> lock(m_queue);
    if (params.m_prepareSearch && !IsIdle()) return false;
    bool added = false;
    for (TypeAheadSource* const source : sources) {
        if (Enqueue(source, new (std::nothrow) TypeAheadSearchWorkUnit{source, params})) added = true;
    }
    return added;
}

bool TypeAheadSearchThread::IsIdle() const {
    const TScopedLock<CBaseSync> lock(m_queue);
    return m_queue.Count() == 0 && !Current();
}

}  // namespace dorvutil
