#pragma once

#include <atomic>
#include <cstdint>

namespace dorvutil {

/// A count of work to be done, for one thread that waits and any number that add. Adding costs one atomic operation;
/// the system is asked to wake the waiter only when it sleeps, or when it naps and the work is urgent.
class WorkUnits {
public:
    /// One unit more. True when the waiter is to be woken: the caller does that, best after leaving its locks.
    [[nodiscard]] bool Add(bool urgent);
    void Wake();

    bool TryTake();  ///< Takes a unit if there is one.
    /// The same after waiting for at most `milliseconds`; false may also come early.
    bool Take(std::uint32_t milliseconds) { return Wait(kAsleep, milliseconds); }
    /// The same, for work that may wait so long: nobody has to wake the waiter unless the work is urgent.
    bool TakeLater(std::uint32_t milliseconds) { return Wait(kNapping, milliseconds); }
    void TakeAll() { m_word.fetch_and(kAsleep | kNapping, std::memory_order_acq_rel); }
    bool Any() const { return (m_word.load(std::memory_order_acquire) & kCount) != 0; }

private:
    static constexpr std::uint32_t kAsleep = 0x80000000u;
    static constexpr std::uint32_t kNapping = 0x40000000u;
    static constexpr std::uint32_t kCount = kNapping - 1;
    bool Wait(std::uint32_t how, std::uint32_t milliseconds);

    std::atomic<std::uint32_t> m_word{0};  // the count, and how the waiter waits
};

}  // namespace dorvutil
