#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/messaging/activity.h"
#include "dorvutil/messaging/payload.h"
#include "dorvutil/text/const_string.h"

namespace dorvutil {

/// Whom to tell whether a UI message was handled, and a value for him.
struct MsgHandledParams {
    void (*m_function)(bool handled, std::int32_t context) = nullptr;
    std::int32_t m_context = 0;
};

/// The activity that carries one event of the user interface. The comparisons serve a host's message queue. Not
/// synchronised, but for what COrvActivity is.
class DORVUTIL_API RoadlynUIMsg : public COrvActivity {
public:
    /// `notify` (null: nobody) is copied.
    explicit RoadlynUIMsg(std::int32_t event = 0, std::int32_t parameter = -1, tagPOINT point = {0, 0},
                          std::int32_t secondParameter = -1, const MsgHandledParams* notify = nullptr);
    /// Takes the event, its parameters, the point and the creation tick. Completion, references and notification are
    /// not copied: a new message has none, one that is assigned to keeps its own.
    RoadlynUIMsg(const RoadlynUIMsg& other);
    RoadlynUIMsg& operator=(const RoadlynUIMsg& other);
    ~RoadlynUIMsg() override;

    /// Calls the host's post-message handler when `handled` is set, then the notification in any case, then releases
    /// who waits for completion.
    void Completed(bool handled) override;
    /// Calls the host's user-message handler.
    void DoActivity() override;

    /// Whether one of the two can stand for both: the same event, and one of those that may be merged. Some events
    /// never are; some not while the registry's mouse-down flag is set, with different parameters, or on the kinds of
    /// device that the registry's hardware info tells.
    virtual bool operator==(const RoadlynUIMsg& other) const;
    /// The name of an activity; null for a plain message.
    virtual const ORVustring* ActivityName() const;

    /// By class of events: 1 to 30, 31 to 61, 62 to 143, all others.
    bool operator<(const RoadlynUIMsg& other) const;
    bool operator>(const RoadlynUIMsg& other) const { return other < *this; }

    /// Calls the notification, if there is one.
    void NotifySender(bool handled) const;

    std::int32_t Event() const { return m_event; }
    std::int32_t Parameter() const { return m_parameter; }
    std::int32_t SecondParameter() const { return m_secondParameter; }
    const tagPOINT& Point() const { return m_point; }
    std::uint32_t CreationTick() const { return m_creationTick; }  ///< Milliseconds; wraps after 49.7 days.

private:
    std::int32_t m_secondParameter;
    std::uint32_t m_creationTick;
    std::int32_t m_event;
    std::int32_t m_parameter;
    tagPOINT m_point;
    MsgHandledParams m_notify;
};

/// Base of the activities that a library hands to the interface thread (ScheduleUIActivity). As a message it is event
/// kEvent without parameters.
class DORVUTIL_API COrvUIActivity : public RoadlynUIMsg {
public:
    static constexpr std::int32_t kEvent = 64;

    ~COrvUIActivity() override;

    /// Whether the host may run it at once when it is scheduled on the interface thread itself.
    bool AllowSynchronous() const { return m_allowSynchronous; }

    /// As messages, and with the same name.
    bool operator==(const RoadlynUIMsg& other) const override;
    const ORVustring* ActivityName() const override { return &m_name; }

protected:
    /// `name` is a literal: it is not copied.
    COrvUIActivity(const char* name, bool allowSynchronous);

private:
    ORVcustring m_name;
    const bool m_allowSynchronous;
};

}  // namespace dorvutil
