#pragma once

#include <cstdint>

/// Plain records of time, field for field those of the operating system the interface grew up on.
namespace dorvutil {

/// 100-nanosecond units since 1 January 1601 UTC, as two halves of one unsigned 64-bit count.
struct ORV_FILETIME {
    std::uint32_t dwLowDateTime = 0;
    std::uint32_t dwHighDateTime = 0;
};
static_assert(sizeof(ORV_FILETIME) == 8);

/// A calendar date and time of day.
struct ORV_SYSTEMTIME {
    std::uint16_t wYear = 0;
    std::uint16_t wMonth = 0;      ///< 1 to 12
    std::uint16_t wDayOfWeek = 0;  ///< 0 is Sunday
    std::uint16_t wDay = 0;
    std::uint16_t wHour = 0;
    std::uint16_t wMinute = 0;
    std::uint16_t wSecond = 0;
    std::uint16_t wMilliseconds = 0;
};
static_assert(sizeof(ORV_SYSTEMTIME) == 16);

/// A time zone. UTC is local time plus Bias, plus StandardBias or DaylightBias where the zone has daylight time. Each
/// date tells when its time begins, as local time by the clock just before: with a wYear of 0 on the wDay-th wDayOfWeek
/// of wMonth (wDay 5: on the last), else once on that very date. Two dates with a wMonth of 0: no daylight time.
struct ORV_TIME_ZONE_INFORMATION {
    std::int32_t Bias = 0;           ///< Minutes.
    char16_t StandardName[32] = {};  ///< Ends with a zero unit.
    ORV_SYSTEMTIME StandardDate;
    std::int32_t StandardBias = 0;  ///< Minutes.
    char16_t DaylightName[32] = {};
    ORV_SYSTEMTIME DaylightDate;
    std::int32_t DaylightBias = 0;  ///< Minutes.
};
static_assert(sizeof(ORV_TIME_ZONE_INFORMATION) == 172);

}  // namespace dorvutil
