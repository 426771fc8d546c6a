#include "dorvutil/messaging/progress_info.h"

#include <cstdint>
#include <limits>

#include "dorvutil/messaging/progress_mgr.h"
#include "dorvutil/time/clock.h"

namespace dorvutil {
ORVustring PrivateCopy(const ORVustring& text) {
    ORVustring copy(text);
    if (!copy.ThreadReady()) copy = ORVustring();
    return copy;
}

// FNV-1a, 32 bits.
std::uint32_t HashOfName(const ORVustring& text) {
    std::uint32_t hash = 0x811C9DC5u;
    const char* const bytes = text.c_str();
    for (std::uint32_t i = 0; i < text.length(); ++i) {
        hash = (hash ^ static_cast<unsigned char>(bytes[i])) * 0x01000193u;
    }
    return hash;
}

std::uint32_t Truncate(double value) {
    constexpr std::uint32_t kMax = std::numeric_limits<std::uint32_t>::max();
    return value >= static_cast<double>(kMax) ? kMax : static_cast<std::uint32_t>(value);
}

// Observers come and go while they are told; the round under way keeps its place.
struct ProgressInfo::Round {
    std::uint32_t m_next;
    std::uint32_t m_end;
    Round* m_outer;
};

ProgressInfo::ProgressInfo(ProgressMgr* manager, const ORVustring& name, std::uint32_t eventId)
    : m_name(PrivateCopy(name)), m_eventId(eventId), m_manager(manager) {
    m_runEvent.SignalEvent();
}

ProgressInfo::~ProgressInfo() { ReleaseChildren(); }

template <class F>
void ProgressInfo::ForEachObserver(F call) {
    AddRef();  // an observer may end the last handle
    Round round{0, m_observers.Count(), m_rounds};
    m_rounds = &round;
    while (round.m_next < round.m_end) call(m_observers[round.m_next++]);
    m_rounds = round.m_outer;
    DropRef();
}

void ProgressInfo::Notify(ProgressBarMsg what) {
    ForEachObserver([what](ProgressObserver* observer) { observer->OnProgressChanged(what); });
}

void ProgressInfo::OnProgressChanged(ProgressBarMsg what) {
    switch (what) {
        case kProgressStep:
        case kProgressSetNumSteps:
        case kProgressDecNumSteps:
        case kProgressIncNumSteps:
        case kProgressResetPosition:
            Notify(what);
            break;
        case kProgressClose:
            Notify(kProgressStep);
            break;
        default:
            break;
    }
}

void ProgressInfo::ForceUpdate() {
    ForEachObserver([](ProgressObserver* observer) { observer->ForceUpdate(); });
}

void ProgressInfo::RemoveObserver(const ProgressObserver* observer) {
    for (std::uint32_t i = m_observers.Count(); i-- > 0;) {
        if (m_observers[i] != observer) continue;
        m_observers.DeleteAt(i);
        for (Round* round = m_rounds; round; round = round->m_outer) {
            if (i < round->m_next) --round->m_next;
            if (i < round->m_end) --round->m_end;
        }
    }
}

void ProgressInfo::AddChild(ProgressInfo* child) {
    if (m_children.Add(child) < 0) return;
    child->AddRef();
    child->AddObserver(this);
}

void ProgressInfo::ReleaseChildren() {
    while (m_children.Count() != 0) {
        ProgressInfo* const child = m_children.Last();
        m_children.DeleteAt(m_children.Count() - 1);
        child->RemoveObserver(this);
        child->DropRef();
    }
}

bool ProgressInfo::IsSelfOrDescendant(const ProgressInfo* info) const {
    if (info == this) return true;
    for (const ProgressInfo* const child : m_children) {
        if (child->IsSelfOrDescendant(info)) return true;
    }
    return false;
}

void ProgressInfo::DropRef() {
    if (m_references.Decrement() > 0) return;
    if (m_manager) m_manager->Remove(this);
    delete this;
}

std::uint32_t ProgressInfo::PercentComplete() const {
    std::uint64_t total = m_numSteps;
    std::uint64_t done = m_currStep;
    for (const ProgressInfo* const child : m_children) {
        total += child->m_numSteps;
        done += child->m_currStep;
    }
    if (total == 0) return 0;
    return Truncate(static_cast<double>(done) * 100.0 / static_cast<double>(total));
}

void ProgressInfo::RestartTiming(std::uint32_t position) {
    m_currStep = position;
    m_startMarker = position;
    TIME_GetCurrentFileTime(m_startTime);
    m_lastUpdate = m_startTime;
    m_cancelled = false;
}

}  // namespace dorvutil
