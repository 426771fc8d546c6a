#pragma once

#include <cstdint>

#include "dorvutil/time/records.h"

/// The zone that local time follows: the one the process has set, else the system's. Any thread.
namespace dorvutil {

/// Minutes from local time to UTC in force now (UTC = local + bias); false when the system does not tell.
bool CurrentBias(std::int32_t& minutes);

/// Whether daylight time is in force at `ticks` (a file time) by the rules of `zone`, which has daylight time.
bool IsDaylightAt(const ORV_TIME_ZONE_INFORMATION& zone, std::uint64_t ticks);

/// Goes back to the system's zone (tests only).
void UseSystemTimeZone();

}  // namespace dorvutil
