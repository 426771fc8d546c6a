// Publishers and subscribers of the log manager.
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "dorvutil/logging/log_mgr.h"
#include "dorvutil/platform/clock.h"

namespace dorvutil {
namespace {

using Guard = TScopedLock<critSec>;

template <class T>
std::uint32_t IndexOf(const ListMgr<T>& list, std::int32_t id) {
    std::uint32_t i = 0;
    while (i < list.Count() && list[i]->Id() != id) ++i;
    return i;
}

}  // namespace

/// Holds the lists for a change.
class CLogMgr::WriteHold {
public:
    explicit WriteHold(CLogMgr& manager) : m_lock(manager.m_listsLock) {
        ++manager.m_writersWaiting;
        m_lock.WaitToWrite();
        --manager.m_writersWaiting;
    }
    ~WriteHold() { m_lock.Done(); }
    WriteHold(const WriteHold&) = delete;
    WriteHold& operator=(const WriteHold&) = delete;

private:
    SingleWriterMultiReader& m_lock;
};

LogPublisher* CLogMgr::FindPublisher(std::int32_t id) const {
    LogPublisher* const* const begin = m_publishers.Data();
    LogPublisher* const* const end = begin + m_publishers.Count();
    const auto at =
        std::lower_bound(begin, end, id, [](const LogPublisher* p, std::int32_t wanted) { return p->Id() < wanted; });
    return at != end && (*at)->Id() == id ? *at : nullptr;
}

const char* CLogMgr::GetLoglevelName(std::int32_t level) {
    static constexpr const char* kNames[] = {"OVERFLOW", "STATUS", "ERROR", "WARNING", "BRIEF", "INFO"};
    const auto index = static_cast<std::uint32_t>(level);
    return index < std::size(kNames) ? kNames[index] : kUnknown;
}

const char* CLogMgr::GetPublisherName(std::int32_t publisher) const {
    const Guard guard(m_bufferLock);
    const LogPublisher* const found = FindPublisher(publisher);
    return found ? found->Name() : kUnknown;
}

std::uint32_t CLogMgr::GetPublisherTickDelta(std::int32_t publisher, std::uint32_t now) {
    const Guard guard(m_bufferLock);
    LogPublisher* const found = FindPublisher(publisher);
    return found ? found->TickDelta(now) : 0;
}

std::int32_t CLogMgr::CreatePublisher(const char* name) {
    if (!name) return -1;
    const WriteHold hold(*this);
    for (std::uint32_t i = 0; i < m_publishers.Count(); ++i) {
        if (std::strcmp(m_publishers[i]->Name(), name) == 0) return m_publishers[i]->Id();
    }
    auto publisher = std::unique_ptr<LogPublisher>(new (std::nothrow) LogPublisher(m_nextPublisher, name));
    if (!publisher || !publisher->Name()) return -1;
    const Guard guard(m_bufferLock);
    if (m_publishers.Add(publisher.get()) < 0) return -1;
    publisher.release();
    return m_nextPublisher++;
}

void CLogMgr::DeletePublisher(std::int32_t publisher) {
    const WriteHold hold(*this);
    const Guard guard(m_bufferLock);
    m_publishers.DeleteAt(IndexOf(m_publishers, publisher));
}

// Takes the subscriber over.
std::int32_t CLogMgr::AddSubscriber(LogSubscriber* subscriber) {
    if (!subscriber) return -1;
    if (m_subscribers.Add(subscriber) < 0) {
        delete subscriber;
        return -1;
    }
    return m_nextSubscriber++;
}

std::int32_t CLogMgr::CreateSubscriber(std::int32_t subscription, LogSubscriberHandler handler, void* context) {
    const WriteHold hold(*this);
    return AddSubscriber(new (std::nothrow) LogSubscriber(m_nextSubscriber, subscription, handler, context));
}

std::int32_t CLogMgr::CreateFileLogger(const char* name, std::int32_t subscription, std::int32_t level) {
    const WriteHold hold(*this);
    return AddSubscriber(new (std::nothrow) FileLogger(name, m_nextSubscriber, subscription, level));
}

void CLogMgr::DeleteSubscriber(std::int32_t subscriber) {
    const WriteHold hold(*this);
    if (LogSubscriber* const found = m_subscribers[IndexOf(m_subscribers, subscriber)]) found->Deafen();
}

void CLogMgr::DeleteFileLogger(std::int32_t subscriber) {
    std::unique_ptr<LogSubscriber> removed;  // closes its file after the hold is over
    const WriteHold hold(*this);
    removed.reset(m_subscribers.Detach(IndexOf(m_subscribers, subscriber)));
}

std::int32_t CLogMgr::CreateDedicatedFileLogger(const char* name) {
    const std::int32_t publisher = CreatePublisher(name);
    if (publisher < 0) return -1;
    const std::int32_t subscriber = CreateFileLogger(name, publisher, kEveryLogLevel);
    if (subscriber < 0) return -1;
    auto pair = std::unique_ptr<DedicatedFileLogger>(
        new (std::nothrow) DedicatedFileLogger(name, publisher, subscriber, kEveryLogLevel));
    const WriteHold hold(*this);
    if (!pair || m_dedicated.Add(pair.get()) < 0) return -1;
    pair.release();
    return publisher;
}

void CLogMgr::DeleteDedicatedFileLogger(std::int32_t publisher) {
    const WriteHold hold(*this);
    std::uint32_t i = 0;
    while (i < m_dedicated.Count() && m_dedicated[i]->m_publisher != publisher) ++i;
    m_dedicated.DeleteAt(i);
}

std::int32_t CLogMgr::Subscribe(std::int32_t subscriber, std::int32_t publisher) {
    const WriteHold hold(*this);
    LogSubscriber* const found = m_subscribers[IndexOf(m_subscribers, subscriber)];
    if (!found || found->IsDeaf()) return -1;
    if (found->ListensToAll() || publisher < 0) return publisher;
    return found->AddSubscription(publisher);
}

std::int32_t CLogMgr::Unsubscribe(std::int32_t subscriber, std::int32_t publisher) {
    const WriteHold hold(*this);
    LogSubscriber* const found = m_subscribers[IndexOf(m_subscribers, subscriber)];
    if (!found) return -1;
    if (found->ListensToAll()) {
        found->RemoveAllSubscriptions();
        for (std::uint32_t i = 0; i < m_publishers.Count(); ++i) found->AddSubscription(m_publishers[i]->Id());
    }
    found->RemoveSubscription(publisher);
    return -1;
}

void CLogMgr::NotifySubscribers(LogDataMsg* record) {
    m_listsLock.WaitToRead(true);
    HandOut(record);
    m_listsLock.Done();
}

void CLogMgr::FlushSubscribers() {
    const std::uint32_t now = platform::TickCount();
    if (now - m_lastFlush <= kFlushIntervalMs) return;
    m_lastFlush = now;
    m_listsLock.WaitToRead(true);
    for (std::uint32_t i = 0; i < m_subscribers.Count(); ++i) m_subscribers[i]->Flush();
    m_listsLock.Done();
}

void CLogMgr::CleanupSubscribers() {
    const WriteHold hold(*this);
    for (std::uint32_t i = 0; i < m_subscribers.Count(); ++i) m_subscribers[i]->Cleanup();
}

}  // namespace dorvutil
