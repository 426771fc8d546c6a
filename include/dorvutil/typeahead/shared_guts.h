#pragma once

#include <cstdint>

#include "dorvutil/concurrency/lockable.h"

/// Objects shared by value-like holders and destroyed by the last one.
namespace dorvutil {

/// Base of a shared object: a reference count whose changes are indivisible. Any thread.
class SharedGuts {
public:
    SharedGuts(const SharedGuts&) = delete;
    SharedGuts& operator=(const SharedGuts&) = delete;

    std::int32_t Ref() const { return m_count.Increment(); }
    std::int32_t Unref() const { return m_count.Decrement(); }  ///< Returns the new count and destroys nothing.

protected:
    SharedGuts() = default;
    ~SharedGuts() = default;

private:
    TRefCount<critSec> m_count;
};

/// Holds one reference to a G (derived from SharedGuts, made with new) or nothing; the last holder deletes it. Copies
/// share it. One holder belongs to one thread at a time; holders of one object may live on different threads.
template <class G>
class SharedGutsHolder {
public:
    explicit SharedGutsHolder(G* guts = nullptr) : m_guts(guts) {
        if (m_guts) m_guts->Ref();
    }
    SharedGutsHolder(const SharedGutsHolder& other) : SharedGutsHolder(other.m_guts) {}
    SharedGutsHolder& operator=(const SharedGutsHolder& other) {
        G* const old = m_guts;
        m_guts = other.m_guts;
        if (m_guts) m_guts->Ref();
        Release(old);
        return *this;
    }
    ~SharedGutsHolder() { Release(m_guts); }

protected:
    G* Guts() const { return m_guts; }

private:
    static void Release(G* guts) {
        if (guts && guts->Unref() == 0) delete guts;
    }

    G* m_guts;
};

}  // namespace dorvutil
