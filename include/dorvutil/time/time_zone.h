#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/time/records.h"

/// The current time zone. Any thread.
namespace dorvutil {

/// Results of TIME_GetTimeZoneInformation.
inline constexpr std::uint32_t kTimeZoneUnknown = 0;   ///< The zone has no daylight time this year.
inline constexpr std::uint32_t kTimeZoneStandard = 1;  ///< Standard time is in force.
inline constexpr std::uint32_t kTimeZoneDaylight = 2;  ///< Daylight time is in force.
inline constexpr std::uint32_t kTimeZoneInvalid = 0xFFFFFFFFu;

/// Copies the zone out, its rules being those of the running year, and tells which time is in force. kTimeZoneInvalid,
/// with the record as before, for null and when the system does not tell.
DORVUTIL_API std::uint32_t TIME_GetTimeZoneInformation(ORV_TIME_ZONE_INFORMATION* zone);

/// Makes `zone` the current zone: of the whole system where that has such a call, else of this process (what it set
/// before, and the system's zone, are then out of use until the process ends). Non-zero on success; 0 for null and for
/// a record that is no zone: a bias beyond a day, one switch without the other, or a switch at no possible time.
DORVUTIL_API std::int32_t TIME_SetTimeZoneInformation(const ORV_TIME_ZONE_INFORMATION* zone);

/// Whether the clock follows daylight time by itself: not queried, false.
DORVUTIL_API bool TIME_IsClockSetForAutoDST();

}  // namespace dorvutil
