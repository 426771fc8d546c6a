#pragma once

#include <atomic>
#include <cstdint>

#include "dorvutil/frame/export.h"

/// The plain lock objects. Each owns one lock, is not copied, and must not be destroyed while held or waited on. Every
/// Enter needs one Exit on the same thread. All operations may be called from any thread.
namespace dorvutil {

namespace platform {
struct MutexObject;
}

/// Critical section: recursive for the thread that holds it, within one process. Uncontended Enter and Exit stay in
/// user space; a blocked thread sleeps in the operating system.
class DORVUTIL_API critSec {
public:
    critSec() = default;
    ~critSec() = default;
    critSec(const critSec&) = delete;
    critSec& operator=(const critSec&) = delete;

    void Enter() const;
    bool TryLock() const;  ///< True when entered without waiting.
    void Exit() const;     ///< Only by the holder; an Exit by another thread is ignored.

private:
    friend class QuickGuard;
    static constexpr std::uint32_t kWaiters = 0x80000000u;

    bool Claim(std::uint32_t self) const;
    void EnterInline() const;
    void ExitInline() const;
    void EnterContended(std::uint32_t self) const;

    mutable std::atomic<std::uint32_t> m_word{0};  // 0 free, else the holder's thread id and the waiters bit
    mutable std::uint32_t m_depth = 0;             // holds beyond the first; touched by the holder only
};

/// Operating-system mutex: recursive for the thread that holds it, released by the system when its holder dies.
class DORVUTIL_API mutex {
public:
    /// `name` (UTF-8): processes that use one name share one mutex; null or empty makes an anonymous one.
    explicit mutex(const char* name = nullptr);
    ~mutex();
    mutex(const mutex&) = delete;
    mutex& operator=(const mutex&) = delete;

    /// Blocks until held; a mutex abandoned by a dead holder is taken over.
    void Enter() const;
    /// True only for an ordinary acquisition at once. A mutex found abandoned gives false once and is then free.
    bool TryLock() const;
    void Exit() const;

private:
    platform::MutexObject* m_object;  // owned; null when the system refused: Enter and Exit then do nothing
};

/// No lock at all.
class nullSync {
public:
    nullSync() = default;
    nullSync(const nullSync&) = delete;
    nullSync& operator=(const nullSync&) = delete;

    void Enter() const {}
    bool TryLock() const { return true; }
    void Exit() const {}
};

/// Holds a lock for a scope: any class with Enter and Exit.
template <class L>
class TScopedLock {
public:
    explicit TScopedLock(const L& lock) : m_lock(lock) { m_lock.Enter(); }
    ~TScopedLock() { m_lock.Exit(); }
    TScopedLock(const TScopedLock&) = delete;
    TScopedLock& operator=(const TScopedLock&) = delete;

private:
    const L& m_lock;
};

}  // namespace dorvutil
