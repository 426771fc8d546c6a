#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/logging/log_message.h"
#include "dorvutil/memory/vector.h"

namespace dorvutil {

/// What a subscriber listens to from the start; other values from 2 on are the identifier of one publisher.
inline constexpr std::int32_t kSubscribeToNone = 0;
inline constexpr std::int32_t kSubscribeToAll = 1;

/// Called on the delivery thread, one record after another; the record belongs to the call. The handler may publish
/// (without waiting: it is the one that makes room) but must not create, change or delete publishers or subscribers.
using LogSubscriberHandler = void (*)(void* context, LogDataMsg* record);

/// Who listens. Kept by the log manager, whose lists lock guards it.
class DORVUTIL_API LogSubscriber {
public:
    /// `subscription`: kSubscribeToAll, none (0 and below), or one publisher. `handler` may be null.
    LogSubscriber(std::int32_t id, std::int32_t subscription, LogSubscriberHandler handler, void* context);
    LogSubscriber(const LogSubscriber&) = delete;
    LogSubscriber& operator=(const LogSubscriber&) = delete;

    virtual ~LogSubscriber();
    virtual void LogHandler(LogDataMsg* record);  ///< Here: calls the handler.
    virtual void Init();                          ///< Nothing here, as in the two that follow.
    virtual void Cleanup();                       ///< The delivery thread ends.
    virtual void Flush();                         ///< Now and then: what was heard is to be safe from here on.

    std::int32_t Id() const { return m_id; }
    bool ListensToAll() const { return m_listensToAll; }
    bool IsSubscribed(std::int32_t publisher) const;
    /// Listens to one more publisher (again: counted twice) and returns its identifier; -1 when it listens to all
    /// already, for a negative identifier and when memory ran out.
    std::int32_t AddSubscription(std::int32_t publisher);
    /// Ends every subscription to the publisher; its identifier, or -1 when there was none.
    std::int32_t RemoveSubscription(std::int32_t publisher);
    void RemoveAllSubscriptions();

    /// Ends all subscriptions for good: a deaf subscriber is as good as gone.
    void Deafen();
    bool IsDeaf() const { return m_deaf; }

private:
    const std::int32_t m_id;
    bool m_listensToAll;
    void* const m_context;
    const LogSubscriberHandler m_handler;
    TVector<std::int32_t> m_subscriptions;
    bool m_deaf = false;
};

}  // namespace dorvutil
