#pragma once

#include <atomic>
#include <cstdint>

#include "dorvutil/concurrency/locks.h"

/// Reference counting: objects that live as long as somebody holds a reference, and the holder of one reference.
namespace dorvutil {

/// A signed counter whose changes are indivisible. S names the lock that would guard it; one atomic word gives the same
/// guarantee without the lock. A copy starts at 0: counts are never copied.
template <class S>
class TRefCount {
public:
    explicit TRefCount(std::int32_t initial = 0) : m_count(initial) {}
    TRefCount(const TRefCount&) : m_count(0) {}
    TRefCount& operator=(const TRefCount&) { return *this; }

    std::int32_t Increment() const { return m_count.fetch_add(1, std::memory_order_relaxed) + 1; }
    /// The thread that reads 0 sees everything the other holders did before they let go.
    std::int32_t Decrement() const { return m_count.fetch_sub(1, std::memory_order_acq_rel) - 1; }

private:
    mutable std::atomic<std::int32_t> m_count;
};

/// The reference-count interface.
class DORVUTIL_API CBaseLockable {
public:
    CBaseLockable() = default;
    CBaseLockable(const CBaseLockable&) = default;
    CBaseLockable& operator=(const CBaseLockable&) = default;
    virtual ~CBaseLockable() = default;

    virtual std::int32_t Ref() const = 0;  ///< Adds one reference; returns the new count.
    virtual std::int32_t Unref() = 0;      ///< Drops one reference; returns the new count.
};

/// Reference counting for heap objects, which delete themselves at the last Unref. A copy starts at count 0.
template <class S>
class TLockable : public CBaseLockable {
public:
    explicit TLockable(std::int32_t initial = 0) : m_count(initial) {}

    std::int32_t Ref() const override { return m_count.Increment(); }
    std::int32_t Unref() override {
        const std::int32_t left = m_count.Decrement();
        if (left == 0) delete this;
        return left;
    }

private:
    TRefCount<S> m_count;
};

/// One counted reference to a T (which offers Ref and Unref), or none. It locks nothing. Copying takes a reference. Not
/// synchronised: one holder belongs to one thread at a time.
template <class T>
class TLocker {
public:
    explicit TLocker(const T* lockable = nullptr) : m_lockable(const_cast<T*>(lockable)) {
        if (m_lockable) m_lockable->Ref();
    }
    TLocker(const TLocker& other) : TLocker(other.m_lockable) {}
    TLocker& operator=(const TLocker& other) {
        if (this != &other) SetLockable(other.m_lockable);
        return *this;
    }
    virtual ~TLocker() {
        if (m_lockable) m_lockable->Unref();
    }

    /// Takes the new reference before it drops the old one, so that setting the pointer held already is safe.
    void SetLockable(const T* lockable) {
        T* const old = m_lockable;
        m_lockable = const_cast<T*>(lockable);
        if (m_lockable) m_lockable->Ref();
        if (old) old->Unref();
    }

protected:
    T* GetLockable() const { return m_lockable; }

private:
    T* m_lockable;
};

}  // namespace dorvutil
