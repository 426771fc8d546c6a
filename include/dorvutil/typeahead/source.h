#pragma once

#include <atomic>
#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/messaging/progress.h"

namespace dorvutil {

class ORVustring;
class TypeAheadResult;
class TypeAheadSource;

/// Kind of data that a source offers. The application defines the values; the library gives ids 0 to 18 a rank in the
/// order of preloading and in the order of display (smaller first; every other id has rank 1000 in both):
///
///     id        0   1   2   3   4   5   6   7   8   9  10  11  12  13  14  15  16  17   18
///     preload   5  13   9  14  12   7 100 100 100  11   6   4   3   2   1 100  15 100 1000
///     display  11   9   9   9  10   6 100 100 100   7   7   5   4   2   1 100   3 100  100
///
/// Ids 11 and 12 are recent entries: in a list, an entry of source 11 gives its place to the entry of the same name of
/// source 1, 2 or 3 if there is one further down, an entry of source 12 to that of source 5.
using TypeAheadSourceID = std::int32_t;

/// The id of a result without a source; asks operations that take an id for all sources.
inline constexpr TypeAheadSourceID kNoTypeAheadSource = -1;

/// What a source reports to.
class DORVUTIL_API TypeAheadSourceObserver {
public:
    /// One more result. The observer takes a reference if it wants the result; a cancelled search does not.
    virtual void OnNewResult(TypeAheadResult* result) = 0;
    /// The data behind the source changed; `flush`: its earlier results are void.
    virtual void OnDataChanged(TypeAheadSource* source, bool flush) = 0;
    /// True: do not announce results one by one. False: announce what came since, as one.
    virtual void DeferSync(bool defer) = 0;
    /// Drops the results of one source, or of all (kNoTypeAheadSource); `sendSync`: announces that in any case.
    virtual void FlushResults(TypeAheadSourceID id, bool sendSync) = 0;
    virtual ~TypeAheadSourceObserver() = default;

protected:
    TypeAheadSourceObserver() = default;
    TypeAheadSourceObserver(const TypeAheadSourceObserver&) {}
    TypeAheadSourceObserver& operator=(const TypeAheadSourceObserver&) { return *this; }
};

/// Is told when a source's preload has succeeded.
class DORVUTIL_API TypeAheadPreloadObserver {
public:
    /// On the thread that ran the preload.
    virtual void OnPreloadComplete(TypeAheadSource* source) = 0;

protected:
    TypeAheadPreloadObserver() = default;
    TypeAheadPreloadObserver(const TypeAheadPreloadObserver&) = default;
    TypeAheadPreloadObserver& operator=(const TypeAheadPreloadObserver&) = default;
    ~TypeAheadPreloadObserver() = default;
};

/// One kind of searchable data. The application derives a class for each kind, implements Search, and hands an object
/// to one search handle (handle.h), which becomes its observer.
///
/// Threads: Preload, Search and PrepareSearch run one at a time for a source, on the shared workers (STC_THREADED) or
/// in the thread that calls the handle (STC_SYNCHRONOUS). Strings count their references without a lock: the input
/// handed to Search belongs to the searching thread; a source that keeps it for another thread builds its own from the
/// characters. A source that outlives its handle must not report to it any more: SetObserver(nullptr) first.
class DORVUTIL_API TypeAheadSource {
public:
    /// Destroys the object. The handle's FlushSources ends its sources this way.
    virtual void Delete();
    /// Releases what the source holds between searches. No search or preload of it is running.
    virtual void Cleanup() {}
    /// Whether Preload has work to do. Until that has succeeded the source is not searched.
    virtual bool HasPreload() const { return false; }
    virtual ~TypeAheadSource() = default;

protected:
    /// Loads the source's data; false when that failed or was cancelled: it then stays unloaded.
    virtual bool Preload() { return true; }
    /// Produces the results for `input` and reports each with the observer's OnNewResult (see ReportResult). Long
    /// searches poll IsCanceled and return early. An exception must not leave it.
    virtual void Search(const ORVustring& input) = 0;
    /// Prepares for a coming search on `input` without producing results.
    virtual void PrepareSearch(const ORVustring& input);

    explicit TypeAheadSource(TypeAheadSourceID id);

public:
    TypeAheadSource(const TypeAheadSource&) = delete;
    TypeAheadSource& operator=(const TypeAheadSource&) = delete;

    /// Preloads with `sink` as progress and cancel sink. True only when Preload ran and succeeded; false also when
    /// there was nothing to do, which leaves the source preloaded.
    bool DoPreload(CB_Dialog& sink);
    /// Searches, or with `prepare` prepares, and ends the deferral that the source may have begun. False when the
    /// source is not preloaded: nothing is searched.
    bool DoSearch(const ORVustring& input, bool prepare, CB_Dialog& sink);

    void SetObserver(TypeAheadSourceObserver* observer) { m_observer = observer; }  ///< Not owned; null for none.
    TypeAheadSourceID GetSourceID() const { return m_id; }
    bool IsPreloaded() const { return m_preloaded; }
    void ClearPreloadFlag() { m_preloaded = false; }
    bool operator==(const TypeAheadSource& other) const { return m_id == other.m_id; }  ///< Of the same kind.

protected:
    /// Whether the preload or search that is running shall stop. Only from within it.
    bool IsCanceled() const;
    /// The sink of the preload or search that is running, for progress; a sink that nobody watches between them.
    CB_Dialog& GetCBDialog() { return m_sink; }
    const CB_Dialog& GetCBDialog() const { return m_sink; }

    /// With true before a burst of results that should reach the user as one update. The end of the search ends it.
    void DeferSync(bool defer);
    /// To be called whenever the data behind the source changed, from any thread: the current text is searched again.
    /// `flush`: what the source reported earlier is void.
    void OnDataChanged(bool flush);
    /// Hands one result to the observer. The result may be gone when this returns, unless the caller holds a reference.
    void ReportResult(TypeAheadResult* result);

private:
    void MarkPreloaded(bool preloaded) { m_preloaded = preloaded; }

    std::atomic<TypeAheadSourceObserver*> m_observer{nullptr};
    const TypeAheadSourceID m_id;
    CB_Dialog m_sink;  // touched by the thread that runs the source's work
    std::atomic<bool> m_preloaded{false};
};

}  // namespace dorvutil
