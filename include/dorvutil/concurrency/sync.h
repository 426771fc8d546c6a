#pragma once

#include <cstdint>
#include <memory>

#include "dorvutil/concurrency/locks.h"

/// The polymorphic lock and its implementations: by value, or of a kind chosen at run time.
namespace dorvutil {

/// The lock interface that managers, lists and pools derive from. Recursive for the holder unless the implementation is
/// the null lock; any thread.
class DORVUTIL_API CBaseSync {
public:
    virtual ~CBaseSync() = default;

    virtual void Enter() const = 0;    ///< Blocks until the lock is held.
    virtual bool TryLock() const = 0;  ///< Takes the lock only if that needs no waiting.
    virtual void Exit() const = 0;     ///< Releases one hold.

    void Lock() const { Enter(); }
    void Unlock() const { Exit(); }
};

/// A lock of class S held by value.
template <class S>
class TCompactSync : public CBaseSync {
public:
    TCompactSync() = default;
    TCompactSync(const TCompactSync&) = delete;
    TCompactSync& operator=(const TCompactSync&) = delete;

    void Enter() const override { m_lock.Enter(); }
    bool TryLock() const override { return m_lock.TryLock(); }
    void Exit() const override { m_lock.Exit(); }

private:
    S m_lock;
};

/// Kinds of lock that CCustomSync can hold; any other value means a critical section.
enum tstype : std::int32_t { ts_nullSync = 0, ts_critSec = 1, ts_mutex = 2 };

/// A lock whose kind is chosen at construction. Not copied.
class DORVUTIL_API CCustomSync : public CBaseSync {
public:
    explicit CCustomSync(tstype kind = ts_critSec);
    ~CCustomSync() override;
    CCustomSync(const CCustomSync&) = delete;
    CCustomSync& operator=(const CCustomSync&) = delete;

    void Enter() const override {
        if (m_lock) [[unlikely]]
            return EnterOther();
        m_critSec.Enter();
    }
    bool TryLock() const override { return m_lock ? m_lock->TryLock() : m_critSec.TryLock(); }
    void Exit() const override {
        if (m_lock) [[unlikely]]
            return ExitOther();
        m_critSec.Exit();
    }

private:
    friend class QuickGuard;

    void EnterOther() const;
    void ExitOther() const;

    critSec m_critSec;                  // the usual kind, without a call through a pointer
    std::unique_ptr<CBaseSync> m_lock;  // the lock in its place; null for ts_critSec, or when memory ran out
};

}  // namespace dorvutil
