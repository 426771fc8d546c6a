#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

namespace dorvutil {

namespace platform {
struct EventObject;
}

/// A wait with no time-out.
inline constexpr std::uint32_t kWaitForever = 0xFFFFFFFFu;

/// Operating-system event, created cleared. A manual-reset event stays set until ClearEvent and releases every waiter;
/// an auto-reset event releases one waiter and clears itself. Not copied; any thread may use it.
class DORVUTIL_API event {
public:
    /// `name` (UTF-8): processes that use one name share one event; null or empty makes an anonymous one.
    explicit event(bool manualReset = true, const char* name = nullptr);
    ~event();
    event(const event&) = delete;
    event& operator=(const event&) = delete;

    /// Waits for at most `milliseconds` (kWaitForever: no limit): 1 signalled, 0 time-out, -1 failure.
    std::int32_t WaitForEvent(std::uint32_t milliseconds) const;
    /// Sets the event; the flag changes nothing.
    void SignalEvent(bool flag = true) const;
    void ClearEvent() const;

private:
    platform::EventObject* m_object;  // owned; null when the system refused: waits then fail
};

}  // namespace dorvutil
