#include "dorvutil/concurrency/locks.h"

#include "dorvutil/concurrency/crit_sec_inl.h"
#include "dorvutil/concurrency/object_name.h"
#include "dorvutil/platform/mutex.h"
#include "dorvutil/platform/thread.h"
#include "dorvutil/platform/wait_word.h"

namespace dorvutil {
namespace {

constexpr int kSpins = 60;  // looks at a held lock before sleeping: about as long as a short critical section

}  // namespace

void critSec::Enter() const { EnterInline(); }

void critSec::EnterContended(std::uint32_t self) const {
    // The waiters bit says that somebody sleeps, or may: the holder wakes one when it leaves.
    if ((m_word.load(std::memory_order_relaxed) & ~kWaiters) == self) {
        ++m_depth;
        return;
    }
    for (int i = 0; i < kSpins; ++i) {
        // Sleepers come first: they have waited longer than a spin lasts.
        const std::uint32_t seen = m_word.load(std::memory_order_relaxed);
        if (seen & kWaiters) break;
        if (seen == 0 && Claim(self)) return;
        platform::SpinPause();
    }
    for (;;) {
        std::uint32_t seen = m_word.load(std::memory_order_relaxed);
        if (seen == 0) {
            // Others may sleep as this thread did, and only the bit tells the next holder to wake them.
            if (m_word.compare_exchange_weak(seen, self | kWaiters, std::memory_order_acquire,
                                             std::memory_order_relaxed))
                return;
            continue;
        }
        if ((seen & kWaiters) == 0 && !m_word.compare_exchange_weak(seen, seen | kWaiters, std::memory_order_relaxed))
            continue;
        platform::WaitOnWord(m_word, seen | kWaiters, platform::kWaitForever);
    }
}

bool critSec::TryLock() const {
    const std::uint32_t self = platform::CurrentThreadId();
    if (Claim(self)) return true;
    if ((m_word.load(std::memory_order_relaxed) & ~kWaiters) != self) return false;
    ++m_depth;
    return true;
}

void critSec::Exit() const {
    const std::uint32_t holder = m_word.load(std::memory_order_relaxed) & ~kWaiters;
    if (holder == platform::CurrentThreadId()) ExitInline();
}

mutex::mutex(const char* name) : m_object(nullptr) {
    bool failed = false;
    const auto wide = WideObjectName(name, failed);
    if (!failed) m_object = platform::OpenMutex(wide.get());
}

mutex::~mutex() { platform::CloseMutex(m_object); }

void mutex::Enter() const { platform::LockMutex(m_object, true); }

bool mutex::TryLock() const {
    const platform::MutexWait result = platform::LockMutex(m_object, false);
    // An answer of false must not leave the caller with a hold it does not know of.
    if (result == platform::MutexWait::kAbandoned) platform::UnlockMutex(m_object);
    return result == platform::MutexWait::kAcquired;
}

void mutex::Exit() const { platform::UnlockMutex(m_object); }

}  // namespace dorvutil
