#pragma once

#include <cstdint>

#include "dorvutil/concurrency/semaphore.h"
#include "dorvutil/memory/vector.h"

namespace dorvutil {

/// Reader/writer lock, recursive per thread. When readers and writers both wait, turns alternate: one writer, all
/// readers. A waiting writer keeps new readers out, but a thread that holds the lock gets further holds at once; read
/// requests of the writing thread count as nested write holds.
///
/// A thread must not ask for a write hold while it has only read holds: it would wait for itself. Each granted hold
/// needs one Done on the same thread. Any thread.
class DORVUTIL_API SingleWriterMultiReader : TCompactSync<critSec> {
public:
    SingleWriterMultiReader() = default;

    /// Takes a read hold. With `wait` false it never blocks; false when the hold cannot be had at once.
    bool WaitToRead(bool wait) const;
    /// Takes a write hold, blocking until granted.
    void WaitToWrite() const;
    /// Releases one hold of the calling thread; nothing happens on a free lock.
    void Done() const;

private:
    bool Holds(std::uint32_t thread) const;
    void Forget(std::uint32_t thread) const;
    std::uint32_t WakeReaders() const;
    std::uint32_t WakeWriter() const;

    mutable TVector<std::uint32_t> m_holders;  // one thread id for each hold granted or waited for
    mutable TSem<critSec> m_readers;
    mutable TSem<critSec> m_writers;
    mutable std::int32_t m_state = 0;  // 0 free, > 0 read holds, < 0 nested write holds of one thread
    mutable std::int32_t m_waitingReaders = 0;
    mutable std::int32_t m_waitingWriters = 0;
    mutable bool m_writersTurn = true;
};

}  // namespace dorvutil
