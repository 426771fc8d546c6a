#include "dorvutil/logging/subscriber.h"

namespace dorvutil {

LogSubscriber::LogSubscriber(std::int32_t id, std::int32_t subscription, LogSubscriberHandler handler, void* context)
    : m_id(id), m_listensToAll(subscription == kSubscribeToAll), m_context(context), m_handler(handler) {
    if (subscription > kSubscribeToAll) AddSubscription(subscription);
}

LogSubscriber::~LogSubscriber() = default;

void LogSubscriber::LogHandler(LogDataMsg* record) {
    if (m_handler) m_handler(m_context, record);
}

void LogSubscriber::Init() {}

void LogSubscriber::Cleanup() {}

void LogSubscriber::Flush() {}

bool LogSubscriber::IsSubscribed(std::int32_t publisher) const {
    return m_listensToAll || m_subscriptions.FindR(publisher) != kVectorNotFound;
}

std::int32_t LogSubscriber::AddSubscription(std::int32_t publisher) {
    if (m_listensToAll || m_deaf || publisher < 0) return -1;
    return m_subscriptions.Add(publisher) < 0 ? -1 : publisher;
}

std::int32_t LogSubscriber::RemoveSubscription(std::int32_t publisher) {
    std::int32_t removed = -1;
    for (std::uint32_t i = m_subscriptions.Count(); i-- > 0;) {
        if (m_subscriptions[i] != publisher) continue;
        m_subscriptions.DeleteAt(i);
        removed = publisher;
    }
    return removed;
}

void LogSubscriber::RemoveAllSubscriptions() {
    m_subscriptions.Empty();
    m_listensToAll = false;
}

void LogSubscriber::Deafen() {
    RemoveAllSubscriptions();
    m_deaf = true;
}

}  // namespace dorvutil
