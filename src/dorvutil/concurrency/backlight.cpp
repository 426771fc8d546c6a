#include "dorvutil/concurrency/backlight.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kIntervalMs = 4000;

}  // namespace

OrvBacklight::OrvBacklight() : OrvTimerAsync("Timer_OrvBacklightFunc", kIntervalMs, false) {}

OrvBacklight::~OrvBacklight() { Stop(); }

void OrvBacklight::OnTimeout() {}

void OrvBacklight::KeepBacklightOn(bool on) {
    if (on && !m_keepOn) Start();
    if (!on && m_keepOn) Stop();
    m_keepOn = on;
}

}  // namespace dorvutil
