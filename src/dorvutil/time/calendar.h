#pragma once

#include <cstdint>

#include "dorvutil/time/records.h"

/// The Gregorian calendar and the tick count of file times, for every source of this folder.
namespace dorvutil::calendar {

inline constexpr std::uint64_t kTicksPerSecond = 10'000'000;  // of 100 nanoseconds
inline constexpr std::uint64_t kTicksPerMillisecond = 10'000;
inline constexpr std::int64_t kSecondsPerDay = 86'400;
inline constexpr std::int64_t kSecondsTo1970 = 11'644'473'600;  // from 1601: 369 years with 89 leap days
inline constexpr std::int64_t kDaysPerEra = 146'097;            // 400 years, after which the calendar repeats

constexpr std::int64_t FloorDivide(std::int64_t value, std::int64_t by) {
    return value / by - (value % by < 0 ? 1 : 0);
}
constexpr std::int64_t FloorModulo(std::int64_t value, std::int64_t by) {
    return value % by + (value % by < 0 ? by : 0);
}

constexpr bool IsLeap(std::int64_t year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

/// `month` from 1 to 12; 0 days for any other.
constexpr std::int32_t DaysInMonth(std::int64_t year, std::int64_t month) {
    constexpr std::uint8_t kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12) return 0;
    return month == 2 && IsLeap(year) ? 29 : kDays[month - 1];
}

struct Date {
    std::int64_t year;
    std::int32_t month;  // 1 to 12
    std::int32_t day;    // from 1
};

/// Days from 1 January 1970 to `date`, whose day may lie outside its month. Years count from March here, as in Howard
/// Hinnant's "chrono-Compatible Low-Level Date Algorithms": the leap day is then the last of its year.
constexpr std::int64_t DaysFromDate(const Date& date) {
    const std::int64_t year = date.month <= 2 ? date.year - 1 : date.year;
    const std::int64_t era = FloorDivide(year, 400);
    const std::int64_t yearOfEra = year - era * 400;
    const std::int64_t dayOfYear = (153 * (date.month > 2 ? date.month - 3 : date.month + 9) + 2) / 5 + date.day - 1;
    return era * kDaysPerEra + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719'468;
}

constexpr Date DateFromDays(std::int64_t days) {
    days += 719'468;  // from 1 March of the year 0
    const std::int64_t era = FloorDivide(days, kDaysPerEra);
    const std::int64_t day = days - era * kDaysPerEra;
    const std::int64_t year = (day - day / 1460 + day / 36'524 - day / 146'096) / 365;
    const auto dayOfYear = static_cast<std::int32_t>(day - (365 * year + year / 4 - year / 100));
    const std::int32_t month = (5 * dayOfYear + 2) / 153;  // 0 is March
    return {year + era * 400 + (month >= 10 ? 1 : 0), month < 10 ? month + 3 : month - 9,
            dayOfYear - (153 * month + 2) / 5 + 1};
}

/// 0 is Sunday.
constexpr std::int32_t WeekdayOf(std::int64_t days) { return static_cast<std::int32_t>(FloorModulo(days + 4, 7)); }

constexpr std::uint64_t Ticks(const ORV_FILETIME& time) {
    return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}
constexpr ORV_FILETIME FileTime(std::uint64_t ticks) {
    return {static_cast<std::uint32_t>(ticks), static_cast<std::uint32_t>(ticks >> 32)};
}

/// Seconds since 1970 of a tick count.
constexpr std::int64_t SecondsOf(std::uint64_t ticks) {
    return static_cast<std::int64_t>(ticks / kTicksPerSecond) - kSecondsTo1970;
}

/// Whether the record holds a date of 1601 to 30827, respectively a time of day; wDayOfWeek is not looked at.
bool IsDate(const ORV_SYSTEMTIME& time);
bool IsTimeOfDay(const ORV_SYSTEMTIME& time);

/// Between ticks and calendar form; false, with the output as before, where there is no such time.
bool ToTicks(const ORV_SYSTEMTIME& time, std::uint64_t& ticks);
bool FromTicks(std::uint64_t ticks, ORV_SYSTEMTIME& time);

/// `ticks` moved by `seconds`; false, with nothing changed, where that leaves the range of the count.
bool MoveTicks(std::uint64_t& ticks, std::int64_t seconds);

}  // namespace dorvutil::calendar
