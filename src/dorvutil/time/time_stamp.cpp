#include "dorvutil/time/time_stamp.h"

#include "dorvutil/time/packed_digits.h"

namespace dorvutil {
namespace {

constexpr std::int32_t kTooMany = 0x7FFFFFFF;  // units that do not fit the result
// Days whose seconds, minutes and hours still do.
constexpr std::int32_t kMaxDaysInSeconds = 24'854;
constexpr std::int32_t kMaxDaysInMinutes = 1'491'240;
constexpr std::int32_t kMaxDaysInHours = 89'474'400;

}  // namespace

ORV_UTCTIMESTAMP::ORV_UTCTIMESTAMP(const ORV_SYSTEMTIME& time) {
    m_date.Assign(time.wDay, time.wMonth, time.wYear);
    m_time.Assign(time.wHour, time.wMinute, time.wSecond);
}

void ORV_UTCTIMESTAMP::Init(const ORV_UTCDATE& date, const ORV_UTCTIME& time) {
    m_date = date;
    m_time = time;
}

ORV_SYSTEMTIME ORV_UTCTIMESTAMP::GetORVSystemTime() const {
    const std::int32_t date = m_date, time = m_time;
    const auto field = [](std::int32_t value) { return static_cast<std::uint16_t>(value); };
    ORV_SYSTEMTIME record;
    record.wYear = field(packed::TwoDigits(date, 1));
    record.wMonth = field(packed::TwoDigits(date, 100));
    record.wDay = field(date / 10'000);
    record.wHour = field(time / 10'000);
    record.wMinute = field(packed::TwoDigits(time, 100));
    record.wSecond = field(packed::TwoDigits(time, 1));
    return record;
}

bool ORV_UTCTIMESTAMP::IsValid() const { return m_time.IsValid() && m_date.IsValid(); }

void ORV_UTCTIMESTAMP::Reset() {
    m_date.Reset();
    m_time.Reset();
}

std::int32_t ORV_UTCTIMESTAMP::UnitsSince(const ORV_UTCTIMESTAMP& other, std::int32_t unitsPerDay, std::int32_t maxDays,
                                          std::int32_t (ORV_UTCTIME::*since)(const ORV_UTCTIME&) const) const {
    const bool later = *this > other;
    const ORV_UTCTIMESTAMP& last = later ? *this : other;
    const ORV_UTCTIMESTAMP& first = later ? other : *this;
    const std::int32_t days = last.m_date.DaysSince(first.m_date);
    const std::int32_t units = days > maxDays ? kTooMany : (last.m_time.*since)(first.m_time) + days * unitsPerDay;
    return later ? units : -units;
}

std::int32_t ORV_UTCTIMESTAMP::SecondsSince(const ORV_UTCTIMESTAMP& other) const {
    return UnitsSince(other, 86'400, kMaxDaysInSeconds, &ORV_UTCTIME::SecondsSince);
}

double ORV_UTCTIMESTAMP::SecondsSinceHighPrecision(const ORV_UTCTIMESTAMP& other) const { return SecondsSince(other); }

std::int32_t ORV_UTCTIMESTAMP::MinutesSince(const ORV_UTCTIMESTAMP& other) const {
    return UnitsSince(other, 1440, kMaxDaysInMinutes, &ORV_UTCTIME::MinutesSince);
}

std::int32_t ORV_UTCTIMESTAMP::HoursSince(const ORV_UTCTIMESTAMP& other) const {
    return UnitsSince(other, 24, kMaxDaysInHours, &ORV_UTCTIME::HoursSince);
}

std::int32_t ORV_UTCTIMESTAMP::DaysSince(const ORV_UTCTIMESTAMP& other) const {
    return UnitsSince(other, 1, kMaxDaysInHours, &ORV_UTCTIME::DaysSince);
}

void ORV_UTCTIMESTAMP::Add(std::uint32_t days, std::uint32_t hours, std::uint32_t minutes, std::uint32_t seconds) {
    ORV_UTCTIME more;
    const std::uint32_t carried = more.Assign(hours, minutes, seconds);
    const std::uint32_t midnight = m_time.Add(more) ? 1 : 0;
    m_date.AddDays(days + carried + midnight);
}

void ORV_UTCTIMESTAMP::Subtract(std::uint32_t days, std::uint32_t hours, std::uint32_t minutes, std::uint32_t seconds) {
    m_date.SubtractDays(days + m_time.Subtract(hours, minutes, seconds));
}

COrv_TimeDelta ORV_UTCTIMESTAMP::operator-(const ORV_UTCTIMESTAMP& other) const {
    if (other > *this) return other - *this;
    const auto days = static_cast<std::uint32_t>(m_date.DaysSince(other.m_date));
    return COrv_TimeDelta(days, m_time) - COrv_TimeDelta(0, other.m_time);
}

ORV_UTCTIMESTAMP ORV_UTCTIMESTAMP::operator+(const COrv_TimeDelta& delta) const {
    ORV_UTCTIMESTAMP sum = *this;
    sum.Add(delta.m_days, delta.m_hours, delta.m_minutes, delta.m_seconds);
    return sum;
}

bool ORV_UTCTIMESTAMP::operator>(const ORV_UTCTIMESTAMP& other) const {
    return m_date == other.m_date ? m_time > other.m_time : m_date > other.m_date;
}

void ORV_UTCTIMESTAMP::GetLocalTime(std::int32_t, std::int32_t longitude) {
    constexpr std::int64_t kZone = 15'000'000;  // millionths of a degree
    const std::int64_t distance = longitude < 0 ? -std::int64_t{longitude} : longitude;
    if (distance <= kZone / 2) return;
    const auto hours = static_cast<std::uint32_t>((distance - kZone / 2 + kZone - 1) / kZone);
    if (longitude <= 0) {
        Subtract(0, hours, 0, 0);
    } else {
        Add(0, hours, 0, 0);
    }
}

std::int32_t ORV_UTCTIMESTAMP::GetMinutesDifference(char*, std::int32_t) const { return 0; }

ORVwstring ORV_UTCTIMESTAMP::GetZoneName(char*, std::int32_t) const { return ORVwstring(u""); }

bool ORV_UTCTIMESTAMP::IsDaylightSavings(char*, std::int32_t) const { return false; }

ORV_UTCTIMESTAMP UTC_MIN() { return {10'181, 0}; }

ORV_UTCTIMESTAMP UTC_MAX() { return {311'280, 235'959}; }

}  // namespace dorvutil
