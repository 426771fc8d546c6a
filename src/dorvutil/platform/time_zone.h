#pragma once

#include <cstdint>

/// The time zone of the system (that of the process, where its environment names one).
namespace dorvutil::platform {

/// A switch that recurs each year: the `m_week`-th (5: the last) weekday of a month, in local time by the clock before.
struct ZoneSwitch {
    std::uint16_t m_month = 0;    ///< 1 to 12
    std::uint16_t m_weekday = 0;  ///< 0 is Sunday
    std::uint16_t m_week = 0;
    std::uint16_t m_hour = 0;
    std::uint16_t m_minute = 0;
    std::uint16_t m_second = 0;
};

/// A zone with its rules in one year. Biases are minutes: UTC = local + bias; daylight time is the one further east.
/// Without daylight time only the standard fields have a meaning.
struct TimeZone {
    std::int32_t m_standardBias = 0;
    std::int32_t m_daylightBias = 0;
    char m_standardName[32] = {};
    char m_daylightName[32] = {};
    ZoneSwitch m_toStandard;
    ZoneSwitch m_toDaylight;
    bool m_hasDaylight = false;
    bool m_daylightNow = false;
};

/// The zone at a time (100-nanosecond units since 1601), with its rules in that local year; false when the system does
/// not tell. Any thread.
bool ReadTimeZone(std::uint64_t fileTime, TimeZone& zone);

/// The bias alone, which takes much less time.
bool ReadZoneBias(std::uint64_t fileTime, std::int32_t& minutes);

}  // namespace dorvutil::platform
