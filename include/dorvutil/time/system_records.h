#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/time/records.h"

/// The operating system's own records of time, as its interface lays them out, and the copies between them and the
/// library's. A null pointer on either side: nothing is copied. Any thread.
namespace dorvutil {

struct FILETIME {
    std::uint32_t dwLowDateTime;
    std::uint32_t dwHighDateTime;
};

struct SYSTEMTIME {
    std::uint16_t wYear;
    std::uint16_t wMonth;
    std::uint16_t wDayOfWeek;
    std::uint16_t wDay;
    std::uint16_t wHour;
    std::uint16_t wMinute;
    std::uint16_t wSecond;
    std::uint16_t wMilliseconds;
};

struct TIME_ZONE_INFORMATION {
    std::int32_t Bias;
    char16_t StandardName[32];
    SYSTEMTIME StandardDate;
    std::int32_t StandardBias;
    char16_t DaylightName[32];
    SYSTEMTIME DaylightDate;
    std::int32_t DaylightBias;
};

DORVUTIL_API void TIME_ORVFileTimeToFileTime(const ORV_FILETIME* from, FILETIME* to);
DORVUTIL_API void TIME_FileTimeToORVFileTime(const FILETIME* from, ORV_FILETIME* to);
DORVUTIL_API void TIME_ORVSystemTimeToSystemTime(const ORV_SYSTEMTIME* from, SYSTEMTIME* to);
DORVUTIL_API void TIME_SystemTimeToORVSystemTime(const SYSTEMTIME* from, ORV_SYSTEMTIME* to);
DORVUTIL_API void TIME_ORVTimeZoneInfoToTimeZoneInfo(const ORV_TIME_ZONE_INFORMATION* from, TIME_ZONE_INFORMATION* to);
DORVUTIL_API void TIME_TimeZoneInfoToORVTimeZoneInfo(const TIME_ZONE_INFORMATION* from, ORV_TIME_ZONE_INFORMATION* to);

}  // namespace dorvutil
