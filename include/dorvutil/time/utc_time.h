#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

namespace dorvutil {

/// A time of day as the decimal number HHMMSS; -1 is no time. Numbers that are no time may be held; IsValid tells.
class DORVUTIL_API ORV_UTCTIME {
public:
    ORV_UTCTIME() = default;
    ORV_UTCTIME(std::int32_t packed) : m_value(packed) {}
    /// Cuts the fields to 23, 59 and 59.
    ORV_UTCTIME(std::uint16_t hour, std::uint16_t minute, std::uint16_t second);

    operator std::int32_t() const { return m_value; }
    std::int32_t* operator&() { return &m_value; }  ///< Address of the packed number.
    const std::int32_t* operator&() const { return &m_value; }

    bool IsValid() const { return m_value != -1 && m_value < 595924; }
    void Reset() { m_value = -1; }

    std::uint16_t Hour() const;    ///< 0 to 23
    std::uint16_t Minute() const;  ///< 0 to 59
    std::uint16_t Second() const;  ///< 0 to 59

    /// This time less the other one of the same day, cut to whole units towards zero; negative when this is earlier.
    std::int32_t SecondsSince(const ORV_UTCTIME& other) const;
    double SecondsSinceHighPrecision(const ORV_UTCTIME& other) const;
    std::int32_t MinutesSince(const ORV_UTCTIME& other) const;
    std::int32_t HoursSince(const ORV_UTCTIME& other) const;
    std::int32_t DaysSince(const ORV_UTCTIME& other) const;

    /// Carries seconds into minutes and those into hours (modulo 2^32), keeps the time of day and returns whole days.
    std::uint32_t Assign(std::uint32_t hours, std::uint32_t minutes, std::uint32_t seconds);
    /// True when the sum passed midnight.
    bool Add(const ORV_UTCTIME& other);
    /// Carries like Assign, goes back, and returns the days that took: those of the argument, one more past midnight.
    std::uint32_t Subtract(std::uint32_t hours, std::uint32_t minutes, std::uint32_t seconds);

    /// Equality is that of the packed numbers; the order is that of hour, minute and second.
    bool operator==(const ORV_UTCTIME& other) const { return m_value == other.m_value; }
    bool operator==(std::int32_t packed) const { return m_value == packed; }
    bool operator>(const ORV_UTCTIME& other) const { return SecondsSince(other) > 0; }
    bool operator<(const ORV_UTCTIME& other) const { return !(*this == other) && !(*this > other); }

private:
    std::int32_t m_value = -1;
};
static_assert(sizeof(ORV_UTCTIME) == 4);

}  // namespace dorvutil
