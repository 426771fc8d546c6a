#include "dorvutil/logging/work_units.h"

#include "dorvutil/platform/wait_word.h"

namespace dorvutil {

bool WorkUnits::Add(bool urgent) {
    const std::uint32_t waits = m_word.fetch_add(1, std::memory_order_acq_rel) & (urgent ? ~kCount : kAsleep);
    // One wake-up is enough: who adds next finds a waiter that is on its way.
    if (waits != 0) m_word.fetch_and(kCount, std::memory_order_relaxed);
    return waits != 0;
}

void WorkUnits::Wake() { platform::WakeOneOnWord(m_word); }

bool WorkUnits::TryTake() {
    std::uint32_t seen = m_word.load(std::memory_order_relaxed);
    while ((seen & kCount) != 0) {
        if (m_word.compare_exchange_weak(seen, seen - 1, std::memory_order_acq_rel, std::memory_order_relaxed))
            return true;
    }
    return false;
}

bool WorkUnits::Wait(std::uint32_t how, std::uint32_t milliseconds) {
    std::uint32_t none = 0;
    if (m_word.compare_exchange_strong(none, how, std::memory_order_acq_rel, std::memory_order_relaxed)) {
        platform::WaitOnWord(m_word, how, milliseconds);
        m_word.fetch_and(kCount, std::memory_order_relaxed);
    }
    return TryTake();
}

}  // namespace dorvutil
