#pragma once

#include <cstdint>

#include "dorvutil/concurrency/event.h"
#include "dorvutil/concurrency/lockable.h"
#include "dorvutil/concurrency/sync.h"

/// Counting semaphore whose waiters are served strictly in order of arrival.
namespace dorvutil {

/// One waiting thread's place in the queue: counted twice at birth, once for the chain and once for the waiter.
template <class S>
class OrvEventChain : public TRefCount<S>, public event {
public:
    OrvEventChain() : TRefCount<S>(2), event(true) {}

    OrvEventChain* m_next = nullptr;
};

/// Storage for one `OrvEventChain`: the critSec form takes it from the registry's pool (or the general heap when there
/// is no registry), the others from the general heap. Null when memory ran out. FreeEventChain gives it back.
template <class S>
void* AllocEventChain();
template <class S>
void FreeEventChain(void* node);
template <>
void* AllocEventChain<critSec>();
template <>
void FreeEventChain<critSec>(void* node);

template <class S>
class TSem;

/// The semaphore. Units handed to a waiter are taken off the count by the releaser. Any thread.
template <>
class DORVUTIL_API TSem<critSec> : TCompactSync<critSec> {
public:
    TSem() = default;

    /// Takes one unit: 1 taken, 0 none in time (at once for 0 milliseconds; also when memory for the waiting place ran
    /// out), -1 when the wait failed. kWaitForever: no limit.
    std::int32_t Wait(std::uint32_t milliseconds);
    /// Adds `count` units, up to the maximum of 0xFFFFFFFF, and wakes waiters in order of arrival.
    void Release(std::uint32_t count);

private:
    using Node = OrvEventChain<critSec>;
    bool Unlink(Node* node);
    static void Drop(Node* node);

    std::uint32_t m_maximum = 0xFFFFFFFFu;
    std::uint32_t m_initial = 0;
    std::uint32_t m_available = m_initial;
    Node* m_head = nullptr;
};

}  // namespace dorvutil
