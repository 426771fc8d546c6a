#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

namespace dorvutil {

enum eDayOfWeek : std::int32_t {
    eSunday = 0,
    eMonday = 1,
    eTuesday = 2,
    eWednesday = 3,
    eThursday = 4,
    eFriday = 5,
    eSaturday = 6,
};

/// A calendar date from 1981 to 2080 as the decimal number DDMMYY; -1 is no date. A two-digit year above 80 means 19YY,
/// else 20YY. Numbers that are no date may be held; IsValid tells, and what is worked out from them means nothing (but
/// is always defined).
class DORVUTIL_API ORV_UTCDATE {
public:
    ORV_UTCDATE() = default;
    ORV_UTCDATE(std::int32_t packed) : m_value(packed) {}
    /// Forces each field into its range (year: two digits, at most 99); a day the month does not have becomes the 28th.
    ORV_UTCDATE(std::uint16_t day, std::uint16_t month, std::uint16_t year);

    operator std::int32_t() const { return m_value; }
    std::int32_t* operator&() { return &m_value; }  ///< Address of the packed number.
    const std::int32_t* operator&() const { return &m_value; }

    bool IsValid() const;
    void Reset() { m_value = -1; }

    std::uint16_t Day() const;       ///< 0 to 31
    std::uint16_t Month() const;     ///< 0 to 12
    std::uint16_t Year() const;      ///< 0 to 99
    std::uint16_t FullYear() const;  ///< 1981 to 2080
    bool Leap() const;
    eDayOfWeek DayOfWeek() const;

    std::uint16_t DaysSoFarInYear() const;  ///< 0 on 1 January.
    std::uint16_t DaysInThisYear() const;
    std::uint16_t DaysToNextYear() const;
    std::int32_t DaysSince(const ORV_UTCDATE& other) const;  ///< Negative when this date is earlier.

    /// Takes any numbers: the month wraps by 12, the day by the length of that month in that year, the year by 100.
    void Assign(std::uint32_t day, std::uint32_t month, std::uint32_t fullYear);
    /// Nothing on an invalid date. The two-digit year wraps from 99 to 0, and 31 December 2080 is followed by year 81,
    /// which reads as 1981.
    void AddDays(std::uint32_t days);
    /// Nothing on an invalid date, nor when the two-digit year would fall below 0.
    void SubtractDays(std::uint32_t days);

    /// Equality is that of the packed numbers; the order is that of year, month and day.
    bool operator==(const ORV_UTCDATE& other) const { return m_value == other.m_value; }
    bool operator==(std::int32_t packed) const { return m_value == packed; }
    bool operator>(const ORV_UTCDATE& other) const;
    bool operator<(const ORV_UTCDATE& other) const { return !(*this == other) && !(*this > other); }
    bool operator<=(const ORV_UTCDATE& other) const { return !(*this > other); }
    bool operator>=(const ORV_UTCDATE& other) const { return *this == other || *this > other; }

private:
    std::int32_t m_value = -1;
};
static_assert(sizeof(ORV_UTCDATE) == 4);

}  // namespace dorvutil
