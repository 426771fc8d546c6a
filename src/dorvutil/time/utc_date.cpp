#include "dorvutil/time/utc_date.h"

#include <algorithm>
#include <tuple>

#include "dorvutil/time/calendar.h"
#include "dorvutil/time/packed_digits.h"

namespace dorvutil {
namespace {

using calendar::DaysInMonth;
using packed::TwoDigits;

// Day arithmetic judges leap years on the two-digit year, of which 0 is one: within a century of two digits every
// fourth year is.
constexpr std::uint32_t kDaysPerCentury = 36'525;

constexpr std::uint16_t Short(std::int32_t value) { return static_cast<std::uint16_t>(value); }

std::int32_t DaysBefore(const ORV_UTCDATE& date) {
    std::int32_t days = date.Day() - 1;
    for (std::int32_t month = 1; month < date.Month(); ++month) days += DaysInMonth(date.FullYear(), month);
    return days;
}

constexpr std::int32_t DaysInYear(std::int32_t year) { return calendar::IsLeap(year) ? 366 : 365; }

// Days from `earlier` to `later`.
std::int32_t DaysBetween(const ORV_UTCDATE& earlier, const ORV_UTCDATE& later) {
    if (earlier.FullYear() == later.FullYear()) return DaysBefore(later) - DaysBefore(earlier);
    std::int32_t days = DaysBefore(later) + DaysInYear(earlier.FullYear()) - DaysBefore(earlier);
    for (std::int32_t year = earlier.FullYear() + 1; year < later.FullYear(); ++year) days += DaysInYear(year);
    return days;
}

}  // namespace

ORV_UTCDATE::ORV_UTCDATE(std::uint16_t day, std::uint16_t month, std::uint16_t year) {
    const std::int32_t y = std::min<std::int32_t>(year, 99);
    const std::int32_t m = std::clamp<std::int32_t>(month, 1, 12);
    m_value = packed::Pack(std::clamp<std::int32_t>(day, 1, 31), m, y);
    if (!IsValid()) m_value = packed::Pack(28, m, y);
}

// Judges the digits as they stand, not what Day and Month make of them.
bool ORV_UTCDATE::IsValid() const {
    const std::int32_t day = m_value / 10'000;
    return m_value > 0 && day >= 1 && day <= DaysInMonth(TwoDigits(m_value, 1), TwoDigits(m_value, 100));
}

std::uint16_t ORV_UTCDATE::Day() const { return Short(TwoDigits(m_value, 10'000) % 32); }

std::uint16_t ORV_UTCDATE::Month() const { return Short(TwoDigits(m_value, 100) % 13); }

std::uint16_t ORV_UTCDATE::Year() const { return Short(TwoDigits(m_value, 1)); }

std::uint16_t ORV_UTCDATE::FullYear() const { return Short(packed::FullYear(Year())); }

bool ORV_UTCDATE::Leap() const { return calendar::IsLeap(FullYear()); }

// The published congruence of the Gregorian calendar; years count from March.
eDayOfWeek ORV_UTCDATE::DayOfWeek() const {
    const std::int32_t a = (14 - Month()) / 12;
    const std::int32_t y = FullYear() - a;
    const std::int32_t m = Month() + 12 * a - 2;
    return static_cast<eDayOfWeek>((Day() + y + y / 4 - y / 100 + y / 400 + 31 * m / 12) % 7);
}

std::uint16_t ORV_UTCDATE::DaysSoFarInYear() const { return Short(DaysBefore(*this)); }

std::uint16_t ORV_UTCDATE::DaysInThisYear() const { return Short(DaysInYear(FullYear())); }

std::uint16_t ORV_UTCDATE::DaysToNextYear() const { return Short(DaysInYear(FullYear()) - DaysBefore(*this)); }

std::int32_t ORV_UTCDATE::DaysSince(const ORV_UTCDATE& other) const {
    return *this > other ? DaysBetween(other, *this) : -DaysBetween(*this, other);
}

void ORV_UTCDATE::Assign(std::uint32_t day, std::uint32_t month, std::uint32_t fullYear) {
    // One step below 1 is the last month, the last day.
    const auto monthIndex = static_cast<std::int32_t>((std::uint64_t{month} + 11) % 12);
    const std::int64_t days = DaysInMonth(fullYear, monthIndex + 1);
    const auto dayIndex = static_cast<std::int32_t>(calendar::FloorModulo(std::int64_t{day} - 1, days));
    m_value = packed::Pack(dayIndex + 1, monthIndex + 1, static_cast<std::int32_t>(fullYear % 100));
}

void ORV_UTCDATE::AddDays(std::uint32_t days) {
    if (!IsValid()) return;
    std::uint32_t month = Month(), year = Year();
    std::uint32_t day = Day() - 1u + days % kDaysPerCentury;  // from 0
    for (;;) {
        const auto length = static_cast<std::uint32_t>(DaysInMonth(year, month));
        if (day < length) break;
        day -= length;
        if (++month <= 12) continue;
        month = 1;
        year = (year + 1) % 100;
    }
    Assign(day + 1, month, year);
}

void ORV_UTCDATE::SubtractDays(std::uint32_t days) {
    if (!IsValid()) return;
    std::int32_t month = Month(), year = Year();
    std::int64_t day = std::int64_t{Day()} - 1 - days;  // from 0
    while (day < 0) {
        if (--month < 1) {
            month = 12;
            if (--year < 0) return;
        }
        day += DaysInMonth(year, month);
    }
    Assign(static_cast<std::uint32_t>(day + 1), static_cast<std::uint32_t>(month), static_cast<std::uint32_t>(year));
}

bool ORV_UTCDATE::operator>(const ORV_UTCDATE& other) const {
    const auto fields = [](const ORV_UTCDATE& d) { return std::tuple(d.FullYear(), d.Month(), d.Day()); };
    return fields(*this) > fields(other);
}

}  // namespace dorvutil
