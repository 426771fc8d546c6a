#include "dorvutil/platform/clock.h"
#include "dorvutil/text/utf8.h"
#include "dorvutil/typeahead/handle.h"
#include "dorvutil/typeahead/private_text.h"
#include "dorvutil/typeahead/threads.h"

/// What sources and workers report to a search handle.
namespace dorvutil {
namespace {

constexpr std::uint32_t kChangeWaitMs = 10;
constexpr std::int32_t kFewestLetters = 2;  // an input that finds nothing is not shortened further

bool Contains(const TVector<TypeAheadSource*>& sources, TypeAheadSource* source) {
    return sources.FindR(source) != kVectorNotFound;
}

bool Remove(TVector<TypeAheadSource*>& sources, TypeAheadSource* source) {
    return sources.DeleteAt(sources.FindR(source));
}

}  // namespace

bool TypeAheadSearchHandle::Ignoring() const {
    return m_closing || !m_pSearchThread || !m_pPreloadThread || m_pSearchThread->IsCanceled();
}

void TypeAheadSearchHandle::OnNewResult(TypeAheadResult* result) {
    if (!result || Ignoring()) return;
    if (m_pending.Add(result, true) < 0) return;
    m_syncPending = true;
    if (!m_deferSync) SendSyncMessage(true);
}

void TypeAheadSearchHandle::DeferSync(bool defer) {
    m_deferSync = defer;
    if (!defer) SendSyncMessage(false);
}

// The flag goes first: what arrives while the message is under way wants one of its own.
void TypeAheadSearchHandle::SendSyncMessage(bool force) {
    const bool pending = m_syncPending.exchange(false);
    if ((pending || force) && m_syncMessage < kMessageCount) DORV_InvokeCallback(m_syncMessage, nullptr);
}

void TypeAheadSearchHandle::FlushResults(TypeAheadSourceID id, bool sendSync) {
    if (id == kNoTypeAheadSource) {
        m_pending.Flush();
    } else {
        FlushResultsOf(id);
    }
    SendSyncMessage(sendSync);
}

// The others are put back, in order: removing one by one would move the rest each time.
void TypeAheadSearchHandle::FlushResultsOf(TypeAheadSourceID id) {
    TVector<TypeAheadResult*> others;
    m_pending.Enter();
    const std::uint32_t count = m_pending.Count();
    others.SetSize(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        TypeAheadResult* const result = m_pending[i];
        if (result && result->GetSourceID() != id && others.Add(result) >= 0) result->Ref();
    }
    if (others.Count() != count) {
        m_pending.Flush();
        for (TypeAheadResult* const result : others) m_pending.Add(result, true);
    }
    m_pending.Exit();
    for (TypeAheadResult* const result : others) result->Unref();
}

void TypeAheadSearchHandle::OnSearchComplete() {
    if (Ignoring()) {
        const TScopedLock<critSec> lock(m_paramLock);
        m_completion.SignalEvent();
        return;
    }
    TypeAheadSearchParams params;
    ORVustring input;
    bool changed = false;
    bool all = false;
    if (!TakeReport(params, changed, all)) return;
    if (NextInput(params, changed, all, input)) StartSearch_Internal(input, false, true, false);
}

// False while other reports are due. `all`: none of the sources has still to report. After a change of data only the
// source it concerns reports, although all of them are counted; a source may also report twice, when its preload came
// to an end while its turn to be searched came.
bool TypeAheadSearchHandle::TakeReport(TypeAheadSearchParams& params, bool& changed, bool& all) {
    const TScopedLock<critSec> lock(m_paramLock);
    params = m_params;
    TypeAheadSource* const source = m_pSearchThread->Current();
    const bool due = source == nullptr || Remove(m_awaited, source);
    if (source && !Contains(m_reported, source)) m_reported.Add(source);
    if (due && m_pendingSources > 0) --m_pendingSources;
    all = m_pendingSources == 0;
    if (all) m_awaited.Empty();
    if (m_awaited.Count() != 0) return false;
    changed = m_dataChanged;
    m_dataChanged = false;
    return true;
}

bool TypeAheadSearchHandle::HasOrdinaryResult() const {
    m_pending.Enter();
    bool found = false;
    for (std::uint32_t i = 0, n = m_pending.Count(); i < n && !found; ++i) {
        found = m_pending[i] && !m_pending[i]->IsPermanent();
    }
    m_pending.Exit();
    return found;
}

// What to search for next, if anything; else the search is over. A preparation is never followed by a search.
bool TypeAheadSearchHandle::NextInput(const TypeAheadSearchParams& params, bool changed, bool all, ORVustring& input) {
    const char* const text = params.m_input.c_str();
    const std::int32_t letters = StrCharCount(params.m_input);
    if (!changed && all && !params.m_prepareSearch && letters > kFewestLetters && !m_exactSearch &&
        !HasOrdinaryResult()) {
        input = ORVustring(text, StrBytesForChars(text, letters - 1));
        return true;
    }
    const TScopedLock<critSec> lock(m_paramLock);
    if ((changed || m_dataChanged) && !params.m_prepareSearch) {
        m_dataChanged = false;
        input = PrivateText(params.m_originalInput);
        return true;
    }
    m_completion.SignalEvent();
    return false;
}

void TypeAheadSearchHandle::OnPreloadComplete(TypeAheadSource* source) {
    if (m_control != STC_THREADED || Ignoring() || !m_searchActive) return;
    TypeAheadSearchParams params;
    std::uint32_t serial = 0;
    // Again when the text changed meanwhile: what was queued then may be this thread's older one.
    do {
        if (!JoinSearch(source, params, serial)) return;
        m_pSearchThread->AddSearch(source, params);
    } while (Serial() != serial && !Ignoring());
}

// False when the source is done with the current text already.
bool TypeAheadSearchHandle::JoinSearch(TypeAheadSource* source, TypeAheadSearchParams& params, std::uint32_t& serial) {
    const TScopedLock<critSec> lock(m_paramLock);
    if (Contains(m_reported, source)) return false;
    if (!Contains(m_awaited, source)) {
        m_awaited.Add(source);
        ++m_pendingSources;
    }
    m_completion.ClearEvent();
    params = m_params;
    serial = m_serial;
    return true;
}

std::uint32_t TypeAheadSearchHandle::Serial() const {
    const TScopedLock<critSec> lock(m_paramLock);
    return m_serial;
}

void TypeAheadSearchHandle::OnDataChanged(TypeAheadSource* source, bool flush) {
    ++m_visitors;
    if (source && !Ignoring()) {
        TypeAheadSearchParams params;
        // Under the call lock no search of this handle can begin between the claim and the new preload.
        if (!EnterChange()) {
            const TScopedLock<critSec> lock(m_paramLock);
            m_dataChanged = true;
        } else {
            if (ClaimForChange(source, params)) Reload(source, flush, params);
            m_callLock.Exit();
        }
    }
    --m_visitors;
}

// Waits for up to 10 ms, less inside a unit: what it waits for may be this unit's end. True with the call lock held;
// false when it cannot be had in time, because a search is being started or another change taken in: both lead to a
// search that will be repeated when it completes.
bool TypeAheadSearchHandle::EnterChange() {
    const bool mayWait = TypeAheadPreloadWorkUnit::MayWait();
    const std::uint32_t start = platform::TickCount();
    if (mayWait) m_completion.WaitForEvent(kChangeWaitMs);
    const event never;
    while (!m_callLock.TryLock()) {
        if (!mayWait || platform::TickCount() - start >= kChangeWaitMs) return false;
        never.WaitForEvent(1);
    }
    return true;
}

// True when no search of this handle is under way: then one is from now on, that of this source alone. Otherwise the
// one under way will be repeated. Reports may be due that will never come, of sources whose preload failed or whose
// search another handle cancelled: when both workers have nothing to do, nothing is under way.
bool TypeAheadSearchHandle::ClaimForChange(TypeAheadSource* source, TypeAheadSearchParams& params) {
    const bool inItsSearch = !TypeAheadSearchWorkUnit::MayWait() && m_pSearchThread->Current() == source;
    const bool queueing = !m_queueLock.TryLock();
    const bool idle = !queueing && m_pSearchThread->IsComplete() && m_pPreloadThread->IsComplete();
    const TScopedLock<critSec> lock(m_paramLock);
    if (!queueing) m_queueLock.Exit();
    if (inItsSearch || (m_completion.WaitForEvent(0) != 1 && !idle)) {
        m_dataChanged = true;
        return false;
    }
    Remove(m_reported, source);
    m_awaited.Empty();
    if (m_searchActive && m_control == STC_THREADED) {
        m_awaited.Add(source);
        m_completion.ClearEvent();
    }
    m_pendingSources = m_sources.Count();
    params = m_params;
    return true;
}

void TypeAheadSearchHandle::Reload(TypeAheadSource* source, bool flush, const TypeAheadSearchParams& params) {
    m_pPreloadThread->Remove(source);
    m_pSearchThread->Remove(source, flush);
    if (flush) FlushResults(source->GetSourceID(), true);
    source->ClearPreloadFlag();
    if (params.HasPeeledLetters()) StartSearch(params.m_originalInput, false);
    const TypeAheadPreloadThread::Suspension suspension(m_control == STC_SYNCHRONOUS ? m_pPreloadThread : nullptr);
    m_pPreloadThread->Add(source, this);
    m_pPreloadThread->StartPreload(m_control);
}

}  // namespace dorvutil
