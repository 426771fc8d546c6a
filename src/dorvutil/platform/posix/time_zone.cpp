#include "dorvutil/platform/time_zone.h"

#include <time.h>

#include <cstddef>
#include <utility>

namespace dorvutil::platform {
namespace {

constexpr std::int64_t kDay = 86'400;  // seconds

std::int64_t SecondsSince1970(std::uint64_t fileTime) {
    return static_cast<std::int64_t>(fileTime / 10'000'000) - 11'644'473'600;
}

// The C library reads the zone data itself, and checks it; it also locks its state.
bool LocalAt(std::int64_t seconds, tm& local) {
    const time_t time = seconds;
    return ::localtime_r(&time, &local) != nullptr;
}

std::int32_t BiasOf(const tm& local) { return static_cast<std::int32_t>(-local.tm_gmtoff / 60); }

template <std::size_t N>
void CopyName(const char* from, char (&to)[N]) {
    std::size_t i = 0;
    for (; from && from[i] != '\0' && i + 1 < N; ++i) to[i] = from[i];
    to[i] = '\0';
}

// Enters what one moment tells of the zone.
void Note(const tm& local, TimeZone& zone) {
    (local.tm_isdst > 0 ? zone.m_daylightBias : zone.m_standardBias) = BiasOf(local);
    CopyName(local.tm_zone, local.tm_isdst > 0 ? zone.m_daylightName : zone.m_standardName);
}

// The rule behind a switch at `seconds`, before which the local time was ahead of UTC by `offset` seconds.
ZoneSwitch RuleOf(std::int64_t seconds, std::int64_t offset) {
    const time_t wall = seconds + offset;
    tm date{}, weekLater{};
    const time_t later = wall + 7 * kDay;
    ::gmtime_r(&wall, &date);
    ::gmtime_r(&later, &weekLater);
    const int week = weekLater.tm_mon != date.tm_mon ? 5 : (date.tm_mday - 1) / 7 + 1;
    const auto field = [](int value) { return static_cast<std::uint16_t>(value); };
    return {field(date.tm_mon + 1), field(date.tm_wday), field(week),
            field(date.tm_hour),    field(date.tm_min),  field(date.tm_sec)};
}

// The first second in (from, to] whose daylight mark is not that at `from`.
std::int64_t FindSwitch(std::int64_t from, std::int64_t to, int markAtFrom) {
    while (to - from > 1) {
        const std::int64_t middle = from + (to - from) / 2;
        tm local{};
        LocalAt(middle, local);
        (local.tm_isdst == markAtFrom ? from : to) = middle;
    }
    return to;
}

// Looks for the switches from `begin` to `end`, the first of each kind.
void FindSwitches(std::int64_t begin, std::int64_t end, TimeZone& zone) {
    constexpr std::int64_t kStep = 7 * kDay;  // no zone keeps a time for less
    tm before{}, after{};
    LocalAt(begin, before);
    Note(before, zone);
    for (std::int64_t at = begin; at < end; at += kStep, before = after) {
        const std::int64_t next = at + kStep < end ? at + kStep : end - 1;
        LocalAt(next, after);
        Note(after, zone);
        if (after.tm_isdst == before.tm_isdst) continue;
        const std::int64_t when = FindSwitch(at, next, before.tm_isdst);
        tm last{};
        LocalAt(when - 1, last);
        ZoneSwitch& rule = after.tm_isdst > 0 ? zone.m_toDaylight : zone.m_toStandard;
        if (rule.m_month == 0) rule = RuleOf(when, last.tm_gmtoff);
        zone.m_hasDaylight = true;
    }
}

// A year in which only one of the two happens began in the other time.
void FillInNewYear(ZoneSwitch& rule, std::int64_t newYear) {
    if (rule.m_month == 0) rule = RuleOf(newYear, 0);
}

// Some zones call their winter time "daylight", with a negative shift.
void PutDaylightEast(TimeZone& zone) {
    if (zone.m_daylightBias <= zone.m_standardBias) return;
    std::swap(zone.m_daylightBias, zone.m_standardBias);
    std::swap(zone.m_daylightName, zone.m_standardName);
    std::swap(zone.m_toDaylight, zone.m_toStandard);
    zone.m_daylightNow = !zone.m_daylightNow;
}

}  // namespace

bool ReadTimeZone(std::uint64_t fileTime, TimeZone& zone) {
    ::tzset();
    tm now{};
    if (!LocalAt(SecondsSince1970(fileTime), now)) return false;
    tm newYear{};
    newYear.tm_year = now.tm_year;
    newYear.tm_mday = 1;
    tm nextYear = newYear;
    ++nextYear.tm_year;
    const std::int64_t wallNewYear = ::timegm(&newYear);
    zone = {};
    FindSwitches(wallNewYear - now.tm_gmtoff, ::timegm(&nextYear) - now.tm_gmtoff, zone);
    Note(now, zone);
    zone.m_daylightNow = zone.m_hasDaylight && now.tm_isdst > 0;
    if (!zone.m_hasDaylight) {
        zone.m_standardBias = BiasOf(now);
        CopyName(now.tm_zone, zone.m_standardName);
        CopyName(now.tm_zone, zone.m_daylightName);
        return true;
    }
    FillInNewYear(zone.m_toDaylight, wallNewYear);
    FillInNewYear(zone.m_toStandard, wallNewYear);
    PutDaylightEast(zone);
    return true;
}

bool ReadZoneBias(std::uint64_t fileTime, std::int32_t& minutes) {
    ::tzset();
    tm now{};
    if (!LocalAt(SecondsSince1970(fileTime), now)) return false;
    minutes = BiasOf(now);
    return true;
}

}  // namespace dorvutil::platform
