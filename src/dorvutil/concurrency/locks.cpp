#include "dorvutil/concurrency/locks.h"

#include "dorvutil/concurrency/object_name.h"
#include "dorvutil/platform/mutex.h"
#include "dorvutil/platform/thread.h"
#include "dorvutil/platform/wait_word.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kWaiters = 0x80000000u;  // somebody sleeps, or may: the holder wakes one when it leaves
constexpr std::uint32_t kHolder = ~kWaiters;
constexpr int kSpins = 60;  // looks at a held lock before sleeping: about as long as a short critical section

inline bool Claim(std::atomic<std::uint32_t>& word, std::uint32_t self) {
    std::uint32_t seen = 0;
    if (platform::IsOnlyThread()) {
        // A locked instruction costs several times the rest of Enter and Exit, and nobody is there to race with.
        if (word.load(std::memory_order_relaxed) != 0) return false;
        word.store(self, std::memory_order_relaxed);
        return true;
    }
    return word.compare_exchange_strong(seen, self, std::memory_order_acquire, std::memory_order_relaxed);
}

}  // namespace

void critSec::Enter() const {
    const std::uint32_t self = platform::CurrentThreadId();
    if (!Claim(m_word, self)) [[unlikely]]
        EnterContended(self);
}

void critSec::EnterContended(std::uint32_t self) const {
    if ((m_word.load(std::memory_order_relaxed) & kHolder) == self) {
        ++m_depth;
        return;
    }
    for (int i = 0; i < kSpins; ++i) {
        // Sleepers come first: they have waited longer than a spin lasts.
        const std::uint32_t seen = m_word.load(std::memory_order_relaxed);
        if (seen & kWaiters) break;
        if (seen == 0 && Claim(m_word, self)) return;
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
    if (Claim(m_word, self)) return true;
    if ((m_word.load(std::memory_order_relaxed) & kHolder) != self) return false;
    ++m_depth;
    return true;
}

void critSec::Exit() const {
    const std::uint32_t self = platform::CurrentThreadId();
    if ((m_word.load(std::memory_order_relaxed) & kHolder) != self) return;
    if (m_depth != 0) {
        --m_depth;
        return;
    }
    if (platform::IsOnlyThread()) {
        m_word.store(0, std::memory_order_relaxed);
        return;
    }
    // After the exchange another thread may enter, leave and destroy this lock: only its address is used.
    if (m_word.exchange(0, std::memory_order_release) & kWaiters) platform::WakeOneOnWord(m_word);
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
