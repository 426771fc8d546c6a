#include "dorvutil/typeahead/handle.h"

#include <new>

#include "dorvutil/typeahead/list_builder.h"
#include "dorvutil/typeahead/orders.h"
#include "dorvutil/typeahead/private_text.h"
#include "dorvutil/typeahead/threads.h"

/// The application's side of a search handle; handle_reports.cpp holds what sources and workers call.
namespace dorvutil {
namespace {

constexpr std::uint32_t kNeverSync = 0xFFFFFFFFu;

constinit critSec g_staticsLock;  // guards creation and end of the workers

using SearchSuspension = TypeAheadSearchThread::Suspension;
using PreloadSuspension = TypeAheadPreloadThread::Suspension;

}  // namespace

constinit std::int32_t TypeAheadSearchHandle::m_searchHandleCount = 0;
constinit TypeAheadPreloadThread* TypeAheadSearchHandle::m_pPreloadThread = nullptr;
constinit TypeAheadSearchThread* TypeAheadSearchHandle::m_pSearchThread = nullptr;

TypeAheadSearchHandle::TypeAheadSearchHandle(EMsgID syncMessage, eSearchThreadingControl control)
    : m_syncMessage(syncMessage), m_control(control) {
    InitStatics();
    m_params.m_searchOwner = this;
    m_completion.SignalEvent();
}

TypeAheadSearchHandle::~TypeAheadSearchHandle() {
    Quiesce(true, false);
    CleanupStatics();
}

void TypeAheadSearchHandle::InitStatics() {
    const TScopedLock<critSec> lock(g_staticsLock);
    if (m_searchHandleCount++ != 0) return;
    m_pPreloadThread = new (std::nothrow) TypeAheadPreloadThread;
    m_pSearchThread = new (std::nothrow) TypeAheadSearchThread;
}

// The lock is held until the workers have ended, so that the next first handle starts afresh. No unit takes it.
void TypeAheadSearchHandle::CleanupStatics() {
    const TScopedLock<critSec> lock(g_staticsLock);
    if (--m_searchHandleCount != 0) return;
    delete m_pPreloadThread;
    m_pPreloadThread = nullptr;
    delete m_pSearchThread;
    m_pSearchThread = nullptr;
}

TypeAheadSourceAdder TypeAheadSearchHandle::GetSourceAdder() {
    return TypeAheadSourceAdder(new (std::nothrow) TypeAheadSourceAdderGuts(this));
}

void TypeAheadSearchHandle::AddSource(TypeAheadSource* source) {
    if (!source) return;
    source->SetObserver(this);
    const TScopedLock<critSec> lock(m_paramLock);
    if (m_sources.Add(source) >= 0) m_needPreload = true;
}

void TypeAheadSearchHandle::StartPreload() {
    if (!m_needPreload.exchange(false) || !m_pPreloadThread) return;
    m_preloadEpoch = m_pPreloadThread->Epoch();
    m_paramLock.Enter();
    m_sources.QSort(ComparePreloadOrder);
    const TVector<TypeAheadSource*> sources(m_sources);
    m_paramLock.Exit();
    const PreloadSuspension suspension(m_control == STC_SYNCHRONOUS ? m_pPreloadThread : nullptr);
    for (TypeAheadSource* const source : sources) m_pPreloadThread->Add(source, this);
    m_pPreloadThread->StartPreload(m_control);
}

// Another handle's cancellation may have dropped preloads of this one; nobody else would ask for them again.
void TypeAheadSearchHandle::NoticeLostPreloads() {
    if (!m_pPreloadThread || m_preloadEpoch == m_pPreloadThread->Epoch()) return;
    const TScopedLock<critSec> lock(m_paramLock);
    for (TypeAheadSource* const source : m_sources) {
        if (!source->IsPreloaded()) m_needPreload = true;
    }
}

// Inside a search, waiting for a caller that waits for the search to end would be for ever; that caller's own search
// is under way then.
bool TypeAheadSearchHandle::EnterCall() const {
    if (m_callLock.TryLock()) return true;
    if (!TypeAheadSearchWorkUnit::MayWait()) return false;
    m_callLock.Enter();
    return true;
}

void TypeAheadSearchHandle::StartSearch(const ORVustring& input, bool wait) {
    StartSearch_Internal(input, wait, false, false);
}

// Only a restart comes from a worker, and it must not wait for the call lock: the thread that holds it may be waiting
// for the worker.
void TypeAheadSearchHandle::StartSearch_Internal(const ORVustring& input, bool wait, bool restart, bool prepare) {
    if (!m_pSearchThread || m_closing || (!restart && !EnterCall())) return;
    const bool synchronous = m_control == STC_SYNCHRONOUS;
    if (!restart && !prepare && !synchronous) m_pSearchThread->Cancel();
    if (!restart && !prepare) {
        NoticeLostPreloads();
        const TScopedLock<critSec> lock(m_paramLock);
        m_params.SetOriginalInput(input);
    }
    StartPreload();
    if (!prepare) FlushResults(kNoTypeAheadSource, true);
    {
        // The worker must not take what is to run in this thread.
        const SearchSuspension suspension(synchronous ? m_pSearchThread : nullptr);
        if (!QueueSearch(input, prepare)) EndSearch();
        if (!restart) m_pSearchThread->StartSearch(m_control);
    }
    if (!restart) m_callLock.Exit();
    if (restart || !(synchronous || wait)) return;
    if (!synchronous && m_pPreloadThread) {
        m_pPreloadThread->WaitForCompletion();
        m_pSearchThread->WaitForCompletion();
    }
    SyncList(m_lastGeneration + 1);
}

// The flag that a search is active is set before anything can be searched: a preload that finishes meanwhile must not
// miss it. Until StartSearch the cancelled sink keeps such preloads from adding to what is queued here.
bool TypeAheadSearchHandle::QueueSearch(const ORVustring& input, bool prepare) {
    const TScopedLock<critSec> queueLock(m_queueLock);
    m_paramLock.Enter();
    m_params.SetInput(input);
    m_params.m_prepareSearch = prepare;
    m_pendingSources = m_sources.Count();
    m_awaited = m_sources;
    m_reported.Empty();
    ++m_serial;
    if (m_sources.Count() != 0) m_completion.ClearEvent();
    TypeAheadSearchParams params(m_params);
    const TVector<TypeAheadSource*> sources(m_sources);
    m_paramLock.Exit();
    m_searchActive = true;
    return m_pSearchThread->AddSearch(sources, params);
}

void TypeAheadSearchHandle::EndSearch() {
    const TScopedLock<critSec> lock(m_paramLock);
    m_awaited.Empty();
    m_completion.SignalEvent();
}

// With other work at hand nothing is touched: the search under way goes by the parameters this would change.
void TypeAheadSearchHandle::PrepareSearch(const ORVustring& input) {
    if (!m_pSearchThread || m_control == STC_SYNCHRONOUS) return;
    StartPreload();
    if (!m_pSearchThread->IsIdle()) return;
    m_paramLock.Enter();
    m_params.SetOriginalInput(input);
    m_paramLock.Exit();
    StartSearch_Internal(input, false, false, true);
}

void TypeAheadSearchHandle::CancelSearch() {
    if (!m_pSearchThread) return;
    m_pSearchThread->Cancel();
    EndSearch();
}

bool TypeAheadSearchHandle::IsCanceled() const { return m_pSearchThread && m_pSearchThread->IsCanceled(); }

std::uint32_t TypeAheadSearchHandle::NumResults(std::uint32_t generation) {
    SyncList(generation);
    return m_visible.Count();
}

const TypeAheadResult* TypeAheadSearchHandle::GetResult(std::uint32_t index, std::uint32_t generation) {
    SyncList(generation);
    return m_visible[index];
}

void TypeAheadSearchHandle::SyncList(std::uint32_t generation) {
    if (generation == m_lastGeneration || generation == kNeverSync) return;
    m_visible.Flush();
    TVector<TypeAheadResult*> results;
    m_pending.Enter();
    results.SetSize(m_pending.Count());
    for (std::uint32_t i = 0, n = m_pending.Count(); i < n; ++i) {
        TypeAheadResult* const result = m_pending[i];
        if (result && results.Add(result) >= 0) result->Ref();
    }
    m_pending.Exit();
    const bool smart = m_smartSort;
    m_paramLock.Enter();
    const ORVustring input = PrivateText(m_params.m_input);
    m_paramLock.Exit();
    TypeAheadListBuilder::Build(results, smart ? &input : nullptr);
    for (TypeAheadResult* const result : results) {
        if (m_visible.Add(result) < 0) result->Unref();
    }
    m_lastGeneration = generation;
}

void TypeAheadSearchHandle::SetSmartSort(bool on) {
    if (m_smartSort.exchange(on) != on) SendSyncMessage(false);
}

// No report of a source of this handle is under way when this returns, and none of its units is left. Two rounds: a
// search that was in progress when the handle began to close may have queued others behind the first one's back.
void TypeAheadSearchHandle::Quiesce(bool cancelSearches, bool cancelPreloads) {
    if (!m_pSearchThread || !m_pPreloadThread) return;
    m_closing = true;
    if (cancelSearches) m_pSearchThread->Cancel();
    if (cancelPreloads) m_pPreloadThread->Cancel();
    const event never;
    while (m_visitors != 0) never.WaitForEvent(1);
    if (cancelSearches && !m_pSearchThread->IsCanceled()) m_pSearchThread->Cancel();
    for (int round = 0; round < 2; ++round) {
        for (TypeAheadSource* const source : m_sources) {
            m_pPreloadThread->Drop(source);
            m_pSearchThread->Drop(source);
        }
    }
    EndSearch();
}

void TypeAheadSearchHandle::FlushSources() {
    Quiesce(m_control == STC_THREADED, m_control == STC_THREADED);
    for (TypeAheadSource* const source : m_sources) source->Delete();
    m_paramLock.Enter();
    m_sources.Empty();
    m_reported.Empty();
    m_pendingSources = 0;
    m_paramLock.Exit();
    m_closing = false;
    FlushResults(kNoTypeAheadSource, true);
}

void TypeAheadSearchHandle::Cleanup() {
    Quiesce(m_control == STC_THREADED, m_control == STC_THREADED);
    for (TypeAheadSource* const source : m_sources) source->Cleanup();
    m_closing = false;
    FlushResults(kNoTypeAheadSource, true);
}

}  // namespace dorvutil
