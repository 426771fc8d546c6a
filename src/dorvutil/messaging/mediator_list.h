#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <new>

#include "dorvutil/memory/list.h"
#include "dorvutil/platform/thread.h"

namespace dorvutil {

/// The mediators of one identifier, in the order of their calls; each with one reference. The list itself is counted
/// too: the manager has one hold on it and every dispatch going through it another. It is changed only under the
/// manager's lock, and only while the manager's hold is the only one.
template <class M>
class TMediatorList : public ListMgr_RC<M> {
public:
    TMediatorList() : ListMgr_RC<M>(true, 3) {}

    /// Only under the manager's lock.
    void Hold() { Add(1); }
    /// Any thread. The last one deletes the list.
    void Drop() {
        if (Add(-1) == 0) delete this;
    }
    /// Whether a dispatch goes through the list. Under the manager's lock the answer can only change to false.
    bool IsInUse() const { return m_holds.load(std::memory_order_acquire) != 1; }

    /// Appends with a reference of its own; false when memory ran out.
    bool Append(M* mediator) {
        mediator->Ref();
        if (ListMgr_RC<M>::Add(mediator) >= 0) return true;
        mediator->Unref();
        return false;
    }

    /// A copy without `mediator`, which may be null; null when memory ran out. The caller has the one hold on it.
    [[nodiscard]] TMediatorList* CopyWithout(const M* mediator) const {
        std::unique_ptr<TMediatorList> copy(new (std::nothrow) TMediatorList);
        for (std::uint32_t i = 0; copy && i < this->Count(); ++i) {
            if ((*this)[i] != mediator && !copy->Append((*this)[i])) copy.reset();
        }
        return copy.release();
    }

private:
    std::int32_t Add(std::int32_t change) {
        if (platform::IsOnlyThread()) {
            // A locked instruction costs more than the rest of a dispatch to one listener.
            const std::int32_t holds = m_holds.load(std::memory_order_relaxed) + change;
            m_holds.store(holds, std::memory_order_relaxed);
            return holds;
        }
        return m_holds.fetch_add(change, std::memory_order_acq_rel) + change;
    }

    std::atomic<std::int32_t> m_holds{1};
};

}  // namespace dorvutil
