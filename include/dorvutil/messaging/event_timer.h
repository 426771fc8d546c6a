#pragma once

#include <cstdint>

#include "dorvutil/concurrency/timer.h"
#include "dorvutil/frame/export.h"
#include "dorvutil/messaging/payload.h"

namespace dorvutil {

/// Number of a user-interface event. Their meaning is the host's.
enum eOrvEventType : std::int32_t {};

/// A timer whose time-outs are UI messages: a CBDataUIMsg with the event, the parameter and the point goes to the
/// host's UI-message callback, on the timer thread; without a callback nothing happens.
class DORVUTIL_API OrvTimer : public OrvTimerAsync {
public:
    /// Parameter 0, point (0, 0).
    OrvTimer(eOrvEventType event, const char* name, std::uint32_t intervalMs, bool oneShot);
    OrvTimer(eOrvEventType event, std::int32_t parameter, const tagPOINT& point, const char* name,
             std::uint32_t intervalMs, bool oneShot);
    ~OrvTimer() override;

private:
    void OnTimeout() override;
    void ThrowUIMsg() const;

    const eOrvEventType m_event;
    const std::int32_t m_parameter;
    const tagPOINT m_point;
};

}  // namespace dorvutil
