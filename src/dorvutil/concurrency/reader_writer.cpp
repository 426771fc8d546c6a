#include "dorvutil/concurrency/reader_writer.h"

#include "dorvutil/platform/thread.h"

namespace dorvutil {
namespace {

using Guard = TScopedLock<TCompactSync<critSec>>;

}  // namespace

bool SingleWriterMultiReader::WaitToRead(bool wait) const {
    const std::uint32_t self = platform::CurrentThreadId();
    {
        const Guard guard(*this);
        bool granted = true;
        if (Holds(self)) {
            m_state += m_state > 0 ? 1 : -1;
        } else if (m_state < 0 || m_waitingWriters != 0) {
            granted = false;
            if (!wait) return false;
            ++m_waitingReaders;
        } else {
            ++m_state;
        }
        m_holders.Add(&self, 1);
        if (granted) return true;
    }
    m_readers.Wait(kWaitForever);
    return true;
}

void SingleWriterMultiReader::WaitToWrite() const {
    const std::uint32_t self = platform::CurrentThreadId();
    {
        const Guard guard(*this);
        bool granted = true;
        if (m_state == 0) {
            m_state = -1;
        } else if (m_state < 0 && Holds(self)) {
            --m_state;
        } else {
            granted = false;
            ++m_waitingWriters;
        }
        m_holders.Add(&self, 1);
        if (granted) return;
    }
    m_writers.Wait(kWaitForever);
}

void SingleWriterMultiReader::Done() const {
    const std::uint32_t self = platform::CurrentThreadId();
    TSem<critSec>* woken = nullptr;
    std::uint32_t count = 0;
    {
        const Guard guard(*this);
        if (m_state == 0) return;
        m_state += m_state > 0 ? -1 : 1;
        Forget(self);
        if (m_state != 0) return;
        if (m_waitingWriters != 0 && (m_writersTurn || m_waitingReaders == 0)) {
            woken = &m_writers;
            count = WakeWriter();
        } else if (m_waitingReaders != 0) {
            woken = &m_readers;
            count = WakeReaders();
        }
    }
    if (woken) woken->Release(count);
}

bool SingleWriterMultiReader::Holds(std::uint32_t thread) const {
    for (std::uint32_t i = 0; i < m_holders.Count(); ++i) {
        if (m_holders[i] == thread) return true;
    }
    return false;
}

void SingleWriterMultiReader::Forget(std::uint32_t thread) const {
    for (std::uint32_t i = 0; i < m_holders.Count(); ++i) {
        if (m_holders[i] == thread) {
            m_holders.DeleteAt(i);
            return;
        }
    }
}

// The threads woken are counted as holders here and do not touch the state when they run.
std::uint32_t SingleWriterMultiReader::WakeReaders() const {
    m_state = m_waitingReaders;
    m_waitingReaders = 0;
    m_writersTurn = true;
    return static_cast<std::uint32_t>(m_state);
}

std::uint32_t SingleWriterMultiReader::WakeWriter() const {
    --m_waitingWriters;
    m_state = -1;
    m_writersTurn = false;
    return 1;
}

}  // namespace dorvutil
