#include "dorvutil/messaging/ui_message.h"

#include <algorithm>
#include <iterator>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/messaging/callback_mgr.h"
#include "dorvutil/platform/clock.h"

namespace dorvutil {
namespace {

// The last event of each class but the fourth, which also takes what lies below 1.
constexpr std::int32_t kLastOfClass[] = {30, 61, 143};
constexpr std::int32_t kOtherClass = 3;

// Events of which each one counts: always, while a mouse button is down, and on some devices.
constexpr std::int32_t kNeverMerged[] = {2, 18, 93};
constexpr std::int32_t kKeptWhileMouseDown[] = {42, 49, 51, 55};
constexpr std::int32_t kKeptOnSomeDevices[] = {35, 36, 60, 61};
constexpr std::int32_t kComparedByParameter = 87;

template <std::size_t N>
bool IsOneOf(const std::int32_t (&events)[N], std::int32_t event) {
    return std::find(std::begin(events), std::end(events), event) != std::end(events);
}

std::int32_t ClassOf(std::int32_t event) {
    if (event < 1) return kOtherClass;
    return static_cast<std::int32_t>(std::distance(
        std::begin(kLastOfClass), std::lower_bound(std::begin(kLastOfClass), std::end(kLastOfClass), event)));
}

bool DeviceKeepsEvents() {
    const std::uint32_t kind = HardwareDeviceKind();
    return kind == 1 || kind == 2 || HardwareSecondFlag();
}

void CallHandler(CallbackMgr::MsgHandler (CallbackMgr::*handler)() const, const RoadlynUIMsg& message) {
    const CallbackMgr* const manager = GetCallbackMgr();
    const CallbackMgr::MsgHandler call = manager ? (manager->*handler)() : nullptr;
    if (call) call(message);
}

}  // namespace

RoadlynUIMsg::RoadlynUIMsg(std::int32_t event, std::int32_t parameter, tagPOINT point, std::int32_t secondParameter,
                           const MsgHandledParams* notify)
    : m_secondParameter(secondParameter),
      m_creationTick(platform::TickCount()),
      m_event(event),
      m_parameter(parameter),
      m_point(point),
      m_notify(notify ? *notify : MsgHandledParams{}) {}

RoadlynUIMsg::RoadlynUIMsg(const RoadlynUIMsg& other) : RoadlynUIMsg() { *this = other; }

RoadlynUIMsg& RoadlynUIMsg::operator=(const RoadlynUIMsg& other) {
    m_secondParameter = other.m_secondParameter;
    m_creationTick = other.m_creationTick;
    m_event = other.m_event;
    m_parameter = other.m_parameter;
    m_point = other.m_point;
    return *this;
}

RoadlynUIMsg::~RoadlynUIMsg() = default;

void RoadlynUIMsg::Completed(bool handled) {
    if (handled) CallHandler(&CallbackMgr::GetPostMsgHandler, *this);
    NotifySender(handled);
    COrvActivity::Completed(handled);
}

void RoadlynUIMsg::DoActivity() { CallHandler(&CallbackMgr::GetUserMsgHandler, *this); }

bool RoadlynUIMsg::operator==(const RoadlynUIMsg& other) const {
    if (m_event != other.m_event || IsOneOf(kNeverMerged, m_event)) return false;
    if (IsOneOf(kKeptWhileMouseDown, m_event)) return !IsMouseDown();
    if (IsOneOf(kKeptOnSomeDevices, m_event)) return !DeviceKeepsEvents();
    return m_event != kComparedByParameter || m_parameter == other.m_parameter;
}

const ORVustring* RoadlynUIMsg::ActivityName() const { return nullptr; }

bool RoadlynUIMsg::operator<(const RoadlynUIMsg& other) const { return ClassOf(m_event) < ClassOf(other.m_event); }

void RoadlynUIMsg::NotifySender(bool handled) const {
    if (m_notify.m_function) m_notify.m_function(handled, m_notify.m_context);
}

COrvUIActivity::COrvUIActivity(const char* name, bool allowSynchronous)
    : RoadlynUIMsg(kEvent), m_name(name), m_allowSynchronous(allowSynchronous) {}

COrvUIActivity::~COrvUIActivity() = default;

bool COrvUIActivity::operator==(const RoadlynUIMsg& other) const {
    const ORVustring* const name = other.ActivityName();
    return RoadlynUIMsg::operator==(other) && name && *name == m_name;
}

}  // namespace dorvutil
