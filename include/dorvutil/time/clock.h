#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/time/records.h"
#include "dorvutil/time/time_stamp.h"

/// The system's clocks. Null outputs are left out. Any thread.
namespace dorvutil {

/// Now, as a file time (UTC).
DORVUTIL_API void TIME_GetCurrentFileTime(ORV_FILETIME& now);
/// Now, in UTC and in the current zone.
DORVUTIL_API void TIME_GetSystemTime(ORV_SYSTEMTIME* now);
DORVUTIL_API void TIME_GetLocalTime(ORV_SYSTEMTIME* now);
/// Sets the clock of the system, in UTC or in the current zone: non-zero on success, 0 for null, for what is no date
/// and time, and when the system refuses (it asks for a privilege). wDayOfWeek is not looked at.
DORVUTIL_API std::int32_t TIME_SetSystemTime(const ORV_SYSTEMTIME* time);
DORVUTIL_API std::int32_t TIME_SetLocalTime(const ORV_SYSTEMTIME* time);

/// Milliseconds since system start, modulo 2^32: compare ticks by signed difference.
DORVUTIL_API std::uint32_t TIME_GetTickCount();

/// Seconds since 1 January 1970 UTC, the low 32 bits.
DORVUTIL_API std::int32_t TIME_GetEpochTimeStamp();
/// Now in UTC, as the packed numbers DDMMYY and HHMMSS. The two are one function.
DORVUTIL_API void TIME_EncodeUTCDate(std::int32_t* date, std::int32_t* time);
DORVUTIL_API void TIME_CurrentTimeToUTC(std::int32_t* date, std::int32_t* time);
/// Now in UTC; false for null.
DORVUTIL_API bool TIME_GetCurrentUTCDateTime(ORV_UTCTIMESTAMP* now);

}  // namespace dorvutil
