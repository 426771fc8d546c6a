#include "dorvutil/time/time_zone.h"

#include <algorithm>
#include <atomic>
#include <cstddef>

#include "dorvutil/concurrency/locks.h"
#include "dorvutil/platform/clock.h"
#include "dorvutil/platform/time_zone.h"
#include "dorvutil/time/calendar.h"
#include "dorvutil/time/current_zone.h"

namespace dorvutil {
namespace {

constinit critSec g_lock;  // guards g_zone
constinit ORV_TIME_ZONE_INFORMATION g_zone;
constinit std::atomic<bool> g_zoneIsSet{false};  // read without the lock: most processes never set a zone

bool GetOwnZone(ORV_TIME_ZONE_INFORMATION& zone) {
    if (!g_zoneIsSet.load(std::memory_order_acquire)) return false;
    const TScopedLock<critSec> held(g_lock);
    zone = g_zone;
    return true;
}

std::uint32_t StateAt(const ORV_TIME_ZONE_INFORMATION& zone, std::uint64_t ticks) {
    if (zone.DaylightDate.wMonth == 0) return kTimeZoneUnknown;
    return IsDaylightAt(zone, ticks) ? kTimeZoneDaylight : kTimeZoneStandard;
}

constexpr std::int32_t BiasIn(const ORV_TIME_ZONE_INFORMATION& zone, std::uint32_t state) {
    if (state == kTimeZoneUnknown) return zone.Bias;
    return zone.Bias + (state == kTimeZoneDaylight ? zone.DaylightBias : zone.StandardBias);
}

// The day of a switch in `year`, from 1970.
std::int64_t SwitchDay(const ORV_SYSTEMTIME& date, std::int64_t year) {
    if (date.wYear != 0) return calendar::DaysFromDate({date.wYear, date.wMonth, date.wDay});
    const std::int64_t first = calendar::DaysFromDate({year, date.wMonth, 1});
    const std::int64_t day =
        calendar::FloorModulo(date.wDayOfWeek - calendar::WeekdayOf(first), 7) + 7 * (date.wDay - 1);
    return first + (day < calendar::DaysInMonth(year, date.wMonth) ? day : day - 7);  // the fifth may be the fourth
}

// Seconds since 1970 of a switch in `year`, where `bias` was in force before.
std::int64_t SwitchTime(const ORV_SYSTEMTIME& date, std::int64_t year, std::int32_t bias) {
    const std::int64_t minutes = date.wHour * 60 + date.wMinute + bias;
    return SwitchDay(date, year) * calendar::kSecondsPerDay + minutes * 60 + date.wSecond;
}

bool IsSwitch(const ORV_SYSTEMTIME& date) {
    if (!calendar::IsTimeOfDay(date)) return false;
    if (date.wYear != 0) return calendar::IsDate(date);
    return date.wMonth >= 1 && date.wMonth <= 12 && date.wDayOfWeek <= 6 && date.wDay >= 1 && date.wDay <= 5;
}

bool IsZone(const ORV_TIME_ZONE_INFORMATION& zone) {
    constexpr std::int32_t kDay = 1440;  // minutes
    for (const std::int32_t bias : {zone.Bias, zone.StandardBias, zone.DaylightBias}) {
        if (bias < -kDay || bias > kDay) return false;
    }
    if (zone.StandardDate.wMonth == 0 && zone.DaylightDate.wMonth == 0) return true;
    return IsSwitch(zone.StandardDate) && IsSwitch(zone.DaylightDate);
}

// Abbreviations of zones are ASCII; any other byte stands for its Latin-1 character.
template <std::size_t N>
void CopyName(const char (&from)[N], char16_t (&to)[N]) {
    std::transform(from, from + N, to, [](char c) { return static_cast<char16_t>(static_cast<unsigned char>(c)); });
}

ORV_SYSTEMTIME RuleOf(const platform::ZoneSwitch& from) {
    ORV_SYSTEMTIME rule;
    rule.wMonth = from.m_month;
    rule.wDayOfWeek = from.m_weekday;
    rule.wDay = from.m_week;
    rule.wHour = from.m_hour;
    rule.wMinute = from.m_minute;
    rule.wSecond = from.m_second;
    return rule;
}

std::uint32_t SystemZone(ORV_TIME_ZONE_INFORMATION& zone) {
    platform::TimeZone system;
    if (!platform::ReadTimeZone(platform::FileTimeNow(), system)) return kTimeZoneInvalid;
    zone = {};
    zone.Bias = system.m_standardBias;
    CopyName(system.m_standardName, zone.StandardName);
    CopyName(system.m_daylightName, zone.DaylightName);
    if (!system.m_hasDaylight) return kTimeZoneUnknown;
    zone.DaylightBias = system.m_daylightBias - system.m_standardBias;
    zone.StandardDate = RuleOf(system.m_toStandard);
    zone.DaylightDate = RuleOf(system.m_toDaylight);
    return system.m_daylightNow ? kTimeZoneDaylight : kTimeZoneStandard;
}

}  // namespace

bool IsDaylightAt(const ORV_TIME_ZONE_INFORMATION& zone, std::uint64_t ticks) {
    const std::int64_t now = calendar::SecondsOf(ticks);
    const std::int32_t standardBias = BiasIn(zone, kTimeZoneStandard);
    const std::int64_t localDay =
        calendar::FloorDivide(now - std::int64_t{standardBias} * 60, calendar::kSecondsPerDay);
    const std::int64_t year = calendar::DateFromDays(localDay).year;
    const std::int64_t toDaylight = SwitchTime(zone.DaylightDate, year, standardBias);
    const std::int64_t toStandard = SwitchTime(zone.StandardDate, year, BiasIn(zone, kTimeZoneDaylight));
    // South of the equator the year begins and ends in daylight time.
    if (toDaylight < toStandard) return now >= toDaylight && now < toStandard;
    return now < toStandard || now >= toDaylight;
}

bool CurrentBias(std::int32_t& minutes) {
    const std::uint64_t now = platform::FileTimeNow();
    ORV_TIME_ZONE_INFORMATION zone;
    if (!GetOwnZone(zone)) return platform::ReadZoneBias(now, minutes);
    minutes = BiasIn(zone, StateAt(zone, now));
    return true;
}

void UseSystemTimeZone() { g_zoneIsSet.store(false, std::memory_order_release); }

std::uint32_t TIME_GetTimeZoneInformation(ORV_TIME_ZONE_INFORMATION* zone) {
    if (!zone) return kTimeZoneInvalid;
    return GetOwnZone(*zone) ? StateAt(*zone, platform::FileTimeNow()) : SystemZone(*zone);
}

std::int32_t TIME_SetTimeZoneInformation(const ORV_TIME_ZONE_INFORMATION* zone) {
    if (!zone || !IsZone(*zone)) return 0;
    const TScopedLock<critSec> held(g_lock);
    g_zone = *zone;
    g_zone.StandardName[std::size(g_zone.StandardName) - 1] = 0;
    g_zone.DaylightName[std::size(g_zone.DaylightName) - 1] = 0;
    g_zoneIsSet.store(true, std::memory_order_release);
    return 1;
}

bool TIME_IsClockSetForAutoDST() { return false; }

}  // namespace dorvutil
