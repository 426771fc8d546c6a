#pragma once

#include <cstdint>

#include "dorvutil/concurrency/event.h"
#include "dorvutil/concurrency/lockable.h"
#include "dorvutil/memory/vector.h"
#include "dorvutil/messaging/progress_observer.h"
#include "dorvutil/text/string.h"
#include "dorvutil/time/records.h"

namespace dorvutil {

class ProgressMgr;

/// A text that shares no storage with `text`: string reference counts are not atomic, and the callers' strings are not
/// guarded by the manager's lock. Empty when memory ran out.
ORVustring PrivateCopy(const ORVustring& text);

/// Hash of all bytes, since most names differ in their last digits only.
std::uint32_t HashOfName(const ORVustring& name);

/// `value`, which is not negative, without its fraction; at most 0xFFFFFFFF.
std::uint32_t Truncate(double value);

/// The state that handles share. Guarded by its manager's lock. As an observer of its children it passes their progress
/// on to its own observers.
class ProgressInfo : public ProgressObserver {
public:
    static constexpr int kMessageLines = 3;

    /// No reference yet.
    ProgressInfo(ProgressMgr* manager, const ORVustring& name, std::uint32_t eventId);
    ProgressInfo(const ProgressInfo&) = delete;
    ProgressInfo& operator=(const ProgressInfo&) = delete;
    ~ProgressInfo() override;

    void OnProgressChanged(ProgressBarMsg what) override;
    void ForceUpdate() override;

    /// Tells the observers, in order: those attached by now, less those that leave before their turn.
    void Notify(ProgressBarMsg what);
    void AddObserver(ProgressObserver* observer) { m_observers.Add(observer); }
    void RemoveObserver(const ProgressObserver* observer);  ///< Every occurrence.
    void AddChild(ProgressInfo* child);
    void ReleaseChildren();
    bool IsSelfOrDescendant(const ProgressInfo* info) const;

    void AddRef() { m_references.Increment(); }
    /// The last one takes the state out of its manager and deletes it.
    void DropRef();
    /// Null once the manager is gone. Such a state is never used, only released.
    const ProgressMgr* Manager() const { return m_manager; }
    void LeaveManager() { m_manager = nullptr; }

    const ORVustring& Name() const { return m_name; }
    std::uint32_t EventId() const { return m_eventId; }
    std::uint32_t PercentComplete() const;
    void RestartTiming(std::uint32_t position);  ///< Also takes a cancellation back.

private:
    struct Round;  // one pass over the observers
    template <class F>
    void ForEachObserver(F call);

    ORVustring m_name;
    TVector<ProgressObserver*> m_observers;  // not owned

public:
    std::uint32_t m_numSteps = 1;
    int m_value1 = 0;
    int m_value2 = 0;
    ORVustring m_messageLines[kMessageLines];
    ORV_FILETIME m_lastUpdate;
    ORV_FILETIME m_startTime;
    std::uint32_t m_startMarker = 0;
    std::uint32_t m_secondsRemaining = 0;
    bool m_cancelled = false;
    std::uint32_t m_currStep = 0;

private:
    TRefCount<critSec> m_references;  // handles, parents and passes under way; atomic for states without a manager
    std::uint32_t m_eventId;

public:
    event m_runEvent{true};  // set: running; cleared: paused

private:
    TVector<ProgressInfo*> m_children;  // one reference each
    Round* m_rounds = nullptr;          // the passes under way, innermost first
    ProgressMgr* m_manager;
};

}  // namespace dorvutil
