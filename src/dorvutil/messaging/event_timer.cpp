#include "dorvutil/messaging/event_timer.h"

#include "dorvutil/messaging/callback.h"

namespace dorvutil {

OrvTimer::OrvTimer(eOrvEventType event, const char* name, std::uint32_t intervalMs, bool oneShot)
    : OrvTimer(event, 0, {0, 0}, name, intervalMs, oneShot) {}

OrvTimer::OrvTimer(eOrvEventType event, std::int32_t parameter, const tagPOINT& point, const char* name,
                   std::uint32_t intervalMs, bool oneShot)
    : OrvTimerAsync(name, intervalMs, oneShot), m_event(event), m_parameter(parameter), m_point(point) {}

OrvTimer::~OrvTimer() = default;

void OrvTimer::OnTimeout() { ThrowUIMsg(); }

void OrvTimer::ThrowUIMsg() const {
    const CBDataUIMsg message(m_event, m_parameter, m_point);
    DORV_InvokeCallback(kUIMessage, &message);
}

}  // namespace dorvutil
