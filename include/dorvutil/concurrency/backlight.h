#pragma once

#include "dorvutil/concurrency/timer.h"
#include "dorvutil/frame/export.h"

namespace dorvutil {

/// A repeating timer of 4 seconds that a host switches on while the display must stay lit. Its time-outs do nothing:
/// the systems served here keep their display lit by other means. Threads as for its base.
class DORVUTIL_API OrvBacklight : public OrvTimerAsync {
public:
    OrvBacklight();
    ~OrvBacklight() override;  ///< Stops the timer.

    void OnTimeout() override;
    /// Starts the timer when it goes on and stops it when it goes off; saying the same again changes nothing.
    void KeepBacklightOn(bool on);

private:
    bool m_keepOn = false;
};

}  // namespace dorvutil
