#pragma once

#include "dorvutil/concurrency/sync.h"
#include "dorvutil/platform/thread.h"
#include "dorvutil/platform/wait_word.h"

/// The uncontended paths of the critical section, for the sources that pass one at a high rate.
namespace dorvutil {

/// Takes a free lock word for `self`. A locked instruction costs several times the rest, and is left out while nobody
/// is there to race with.
inline bool critSec::Claim(std::uint32_t self) const {
    if (platform::IsOnlyThread()) {
        if (m_word.load(std::memory_order_relaxed) != 0) return false;
        m_word.store(self, std::memory_order_relaxed);
        return true;
    }
    std::uint32_t seen = 0;
    return m_word.compare_exchange_strong(seen, self, std::memory_order_acquire, std::memory_order_relaxed);
}

inline void critSec::EnterInline() const {
    const std::uint32_t self = platform::CurrentThreadId();
    if (!Claim(self)) [[unlikely]]
        EnterContended(self);
}

/// The caller is the holder.
inline void critSec::ExitInline() const {
    if (m_depth != 0) [[unlikely]] {
        --m_depth;
        return;
    }
    if (platform::IsOnlyThread()) {
        m_word.store(0, std::memory_order_relaxed);
        return;
    }
    // After the exchange another thread may enter, leave and destroy this lock: only its address is used.
    if (m_word.exchange(0, std::memory_order_release) & kWaiters) [[unlikely]]
        platform::WakeOneOnWord(m_word);
}

/// Holds a lock for a scope without a call where it is a free critical section.
class QuickGuard {
public:
    explicit QuickGuard(const CCustomSync& lock) : m_lock(lock) {
        if (m_lock.m_lock) [[unlikely]]
            m_lock.EnterOther();
        else
            m_lock.m_critSec.EnterInline();
    }
    ~QuickGuard() {
        if (m_lock.m_lock) [[unlikely]]
            m_lock.ExitOther();
        else
            m_lock.m_critSec.ExitInline();
    }
    QuickGuard(const QuickGuard&) = delete;
    QuickGuard& operator=(const QuickGuard&) = delete;

private:
    const CCustomSync& m_lock;
};

}  // namespace dorvutil
