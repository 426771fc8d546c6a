#pragma once

#include <compare>
#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/time/utc_time.h"

namespace dorvutil {

/// A duration. Days wrap modulo 2^32, also below zero.
class DORVUTIL_API COrv_TimeDelta {
public:
    COrv_TimeDelta() = default;
    COrv_TimeDelta(std::uint32_t days, std::uint32_t hours, std::uint32_t minutes, std::uint32_t seconds);
    COrv_TimeDelta(std::uint32_t days, ORV_UTCTIME time);

    /// Carries seconds into minutes, those into hours and those into days, modulo 2^32.
    void Assign(std::uint32_t days, std::uint32_t hours, std::uint32_t minutes, std::uint32_t seconds);
    /// Carries the caller's four numbers in the same way, in place; the duration itself plays no part.
    void FormatTimeForTimeDelta(std::uint32_t& days, std::uint32_t& hours, std::uint32_t& minutes,
                                std::uint32_t& seconds) const;
    bool IsNull() const { return *this == COrv_TimeDelta(); }

    COrv_TimeDelta operator+(const COrv_TimeDelta& other) const;
    COrv_TimeDelta operator-(const COrv_TimeDelta& other) const;
    COrv_TimeDelta& operator+=(const COrv_TimeDelta& other) { return *this = *this + other; }
    COrv_TimeDelta& operator-=(const COrv_TimeDelta& other) { return *this = *this - other; }

    /// By days, hours, minutes and seconds: ==, <, <=, > and >=.
    bool operator==(const COrv_TimeDelta&) const = default;
    auto operator<=>(const COrv_TimeDelta&) const = default;

    std::uint32_t m_days = 0;
    std::uint8_t m_hours = 0;    ///< 0 to 23
    std::uint8_t m_minutes = 0;  ///< 0 to 59
    std::uint8_t m_seconds = 0;  ///< 0 to 59
};

}  // namespace dorvutil
