#pragma once

#include <atomic>

#include "dorvutil/platform/thread.h"
#include "dorvutil/platform/wait_word.h"

namespace dorvutil::dl {

/// A lock for short sections: one word and an atomic exchange. Not recursive.
class SpinLock {
public:
    constexpr SpinLock() = default;
    SpinLock(const SpinLock&) = delete;
    SpinLock& operator=(const SpinLock&) = delete;

    void Enter() {
        // The exchange costs several times the rest, and is left out while nobody is there to race with.
        if (platform::IsOnlyThread() && !m_held.load(std::memory_order_relaxed)) {
            m_held.store(true, std::memory_order_relaxed);
            return;
        }
        while (m_held.exchange(true, std::memory_order_acquire)) [[unlikely]] WaitUntilFree();
    }

    void Exit() { m_held.store(false, std::memory_order_release); }

private:
    static constexpr int kSpins = 100;   // longer than nearly every holder takes
    static constexpr int kYields = 100;  // from then on the holder may be one that a yield does not let run

    void WaitUntilFree() const {
        for (int turn = 0; m_held.load(std::memory_order_relaxed); ++turn) {
            if (turn < kSpins) {
                platform::SpinPause();
            } else if (turn < kSpins + kYields) {
                platform::YieldThread();
            } else {
                platform::SleepMs(1);
            }
        }
    }

    std::atomic<bool> m_held{false};
};

/// Holds the lock for a scope.
class SpinGuard {
public:
    explicit SpinGuard(SpinLock& lock) : m_lock(lock) { m_lock.Enter(); }
    ~SpinGuard() { m_lock.Exit(); }
    SpinGuard(const SpinGuard&) = delete;
    SpinGuard& operator=(const SpinGuard&) = delete;

private:
    SpinLock& m_lock;
};

}  // namespace dorvutil::dl
