#pragma once

#include <atomic>
#include <cstdint>

#include "dorvutil/concurrency/event.h"
#include "dorvutil/concurrency/locks.h"
#include "dorvutil/frame/export.h"
#include "dorvutil/memory/list.h"
#include "dorvutil/memory/sync_list.h"
#include "dorvutil/memory/vector.h"
#include "dorvutil/messaging/callback.h"
#include "dorvutil/typeahead/params.h"
#include "dorvutil/typeahead/result.h"
#include "dorvutil/typeahead/source.h"
#include "dorvutil/typeahead/source_adder.h"

namespace dorvutil {

class TypeAheadPreloadThread;
class TypeAheadSearchThread;

/// What one input field owns: its sources, the search on every change of the text, and the list shown below it.
///
/// Use: construct; add sources through one adder; StartSearch on every change of the text; on every sync message call
/// NumResults and GetResult with a new generation number; FlushSources or destroy at the end. The sync message tells
/// that the results changed. It carries no payload and is delivered on the thread that changed them, often a worker:
/// its listeners must not block, wait for a search, flush or destroy the handle; typically they post to the application
/// thread. An id outside 0 … 202 sends none.
///
/// Threads: all handles share two workers, one for preloads and one for searches, which exist as long as any handle
/// does. One application thread at a time calls a handle; the observer operations may come from any thread. Because the
/// workers are shared, starting or cancelling a search cancels the queued and running searches of every handle.
class DORVUTIL_API TypeAheadSearchHandle : public TypeAheadSourceObserver,
                                           public TypeAheadSearchObserver,
                                           public TypeAheadPreloadObserver {
public:
    TypeAheadSearchHandle(EMsgID syncMessage, eSearchThreadingControl control);
    TypeAheadSearchHandle(const TypeAheadSearchHandle&) = delete;
    TypeAheadSearchHandle& operator=(const TypeAheadSearchHandle&) = delete;

    /// An adder for this handle; all its copies must go before the handle does.
    [[nodiscard]] TypeAheadSourceAdder GetSourceAdder();

    /// Searches all sources for `input`, dropping the earlier results and search. While all sources together find
    /// nothing but permanent results, the search is repeated with one letter less, down to two, unless the search is
    /// exact. With `wait` it returns after all that, the list being up to date; so it does in any case with
    /// STC_SYNCHRONOUS. A source still preloading is searched once that is done. Data that keeps changing keeps the
    /// search, and so the wait, going.
    void StartSearch(const ORVustring& input, bool wait);
    /// Lets the sources prepare for a coming search, provided that the worker has nothing else to do. Changes no
    /// results. Nothing with STC_SYNCHRONOUS.
    void PrepareSearch(const ORVustring& input);
    /// Ends the queued and running searches of every handle; waits for the running one to return.
    void CancelSearch();
    /// Whether searches are cancelled: from CancelSearch (of any handle) to the next StartSearch (of any handle).
    bool IsCanceled() const;

    /// Number of entries in the list, at most 100: the results so far, without duplicates, in order. The list is
    /// brought up to date when `generation` is another number than the last time; 0xFFFFFFFF never does that.
    std::uint32_t NumResults(std::uint32_t generation);
    /// One entry of the same list, or null. Valid until the list is next brought up to date; take a reference to keep
    /// it.
    const TypeAheadResult* GetResult(std::uint32_t index, std::uint32_t generation);

    /// Orders the list by how well the entries match the text rather than by source alone.
    void SetSmartSort(bool on);
    /// Whether the text is searched for as it is only.
    void SetExactSearch(bool exact) { m_exactSearch = exact; }
    bool IsExactSearch() const { return m_exactSearch; }

    /// Cancels all work (of every handle, with STC_THREADED), ends every source with Delete and drops the results.
    void FlushSources();
    /// The same with Cleanup in place of Delete: the sources stay.
    void Cleanup();

    void OnNewResult(TypeAheadResult* result) override;
    /// Removes and queues the source again, so that the current text is searched again. While a search of this handle
    /// is under way it waits for up to 10 ms, then leaves it at having the whole search repeated, once, when it
    /// completes.
    void OnDataChanged(TypeAheadSource* source, bool flush) override;
    void DeferSync(bool defer) override;
    void FlushResults(TypeAheadSourceID id, bool sendSync) override;
    /// Cancels the search worker; no call into the handle is under way or will come from the workers when it returns.
    /// Touches no source: those may be gone. The last handle ends the workers.
    ~TypeAheadSearchHandle() override;

    void OnSearchComplete() override;
    void OnPreloadComplete(TypeAheadSource* source) override;

private:
    friend class TypeAheadSourceAdderGuts;

    static void InitStatics();
    static void CleanupStatics();

    void AddSource(TypeAheadSource* source);
    void StartPreload();
    void StartSearch_Internal(const ORVustring& input, bool wait, bool restart, bool prepare);
    void SyncList(std::uint32_t generation);
    void SendSyncMessage(bool force);

    bool Ignoring() const;
    void NoticeLostPreloads();
    bool EnterCall() const;
    bool QueueSearch(const ORVustring& input, bool prepare);
    void EndSearch();
    bool TakeReport(TypeAheadSearchParams& params, bool& changed, bool& all);
    bool HasOrdinaryResult() const;
    bool NextInput(const TypeAheadSearchParams& params, bool changed, bool all, ORVustring& input);
    bool EnterChange();
    bool ClaimForChange(TypeAheadSource* source, TypeAheadSearchParams& params);
    void Reload(TypeAheadSource* source, bool flush, const TypeAheadSearchParams& params);
    bool JoinSearch(TypeAheadSource* source, TypeAheadSearchParams& params, std::uint32_t& serial);
    std::uint32_t Serial() const;
    void Quiesce(bool cancelSearches, bool cancelPreloads);
    void FlushResultsOf(TypeAheadSourceID id);

    static std::int32_t m_searchHandleCount;          // under the statics' lock
    static TypeAheadPreloadThread* m_pPreloadThread;  // these two do not change while a handle exists
    static TypeAheadSearchThread* m_pSearchThread;

    ListMgr_RC<TypeAheadResult> m_visible;  // the application thread's
    ListMgr_TS_RC<TypeAheadResult, critSec, true> m_pending;
    TVector<TypeAheadSource*> m_sources;  // not owned until FlushSources; under m_paramLock
    std::uint32_t m_pendingSources = 0;   // still to report on the current search; under m_paramLock
    TypeAheadSearchParams m_params;       // under m_paramLock
    mutable critSec m_paramLock;          // never held while a worker or a source is called
    const EMsgID m_syncMessage;
    std::uint32_t m_lastGeneration = 0xFFFFFFFFu;
    std::atomic<bool> m_searchActive{false};
    std::atomic<bool> m_smartSort{false};
    std::atomic<bool> m_needPreload{false};
    std::atomic<bool> m_syncPending{false};
    std::atomic<bool> m_deferSync{false};
    std::atomic<bool> m_exactSearch{false};
    const eSearchThreadingControl m_control;
    event m_completion{true};    // set: no search of this handle is under way; changed under m_paramLock
    bool m_dataChanged = false;  // the search under way is to be repeated; under m_paramLock

    TVector<TypeAheadSource*> m_awaited;           // sources whose report is due; under m_paramLock
    TVector<TypeAheadSource*> m_reported;          // sources done with the current text; under m_paramLock
    std::uint32_t m_serial = 0;                    // number of searches queued; under m_paramLock
    mutable critSec m_callLock;                    // one thread at a time starts a search or takes in a change
    mutable critSec m_queueLock;                   // the newest parameters are the last ones queued
    std::atomic<std::uint32_t> m_preloadEpoch{0};  // of the preload worker, at the last StartPreload
    std::atomic<std::int32_t> m_visitors{0};       // threads inside OnDataChanged
    std::atomic<bool> m_closing{false};            // reports are ignored
};

}  // namespace dorvutil
