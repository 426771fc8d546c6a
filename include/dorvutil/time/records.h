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

}  // namespace dorvutil
