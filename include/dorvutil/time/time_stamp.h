#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"
#include "dorvutil/time/records.h"
#include "dorvutil/time/time_delta.h"
#include "dorvutil/time/utc_date.h"
#include "dorvutil/time/utc_time.h"

namespace dorvutil {

/// A date and a time of day in UTC, from UTC_MIN to UTC_MAX.
class DORVUTIL_API ORV_UTCTIMESTAMP {
public:
    ORV_UTCTIMESTAMP() = default;
    /// By ORV_UTCDATE::Assign and ORV_UTCTIME::Assign.
    ORV_UTCTIMESTAMP(const ORV_SYSTEMTIME& time);
    ORV_UTCTIMESTAMP(const ORV_UTCDATE& date, const ORV_UTCTIME& time) { Init(date, time); }
    ORV_UTCTIMESTAMP(std::int32_t date, std::int32_t time) { Init(date, time); }

    /// Field by field from the packed numbers: wYear has two digits; wDayOfWeek and wMilliseconds are 0.
    ORV_SYSTEMTIME GetORVSystemTime() const;
    bool IsValid() const;
    void Reset();

    /// This less the other: negative when this is earlier, 0x7FFFFFFF where the units are too many. The dates' and the
    /// times' differences are cut to whole units each on their own.
    std::int32_t SecondsSince(const ORV_UTCTIMESTAMP& other) const;
    double SecondsSinceHighPrecision(const ORV_UTCTIMESTAMP& other) const;
    std::int32_t MinutesSince(const ORV_UTCTIMESTAMP& other) const;
    std::int32_t HoursSince(const ORV_UTCTIMESTAMP& other) const;
    std::int32_t DaysSince(const ORV_UTCTIMESTAMP& other) const;

    /// Within the limits of ORV_UTCDATE::AddDays and SubtractDays, which leave an invalid date alone.
    void Add(std::uint32_t days, std::uint32_t hours, std::uint32_t minutes, std::uint32_t seconds);
    void Subtract(std::uint32_t days, std::uint32_t hours, std::uint32_t minutes, std::uint32_t seconds);
    eDayOfWeek DayOfWeek() const { return m_date.DayOfWeek(); }

    /// The time between the two, whichever is earlier.
    COrv_TimeDelta operator-(const ORV_UTCTIMESTAMP& other) const;
    ORV_UTCTIMESTAMP operator+(const COrv_TimeDelta& delta) const;

    /// By date, then time, with the comparisons of those.
    bool operator==(const ORV_UTCTIMESTAMP& other) const { return m_date == other.m_date && m_time == other.m_time; }
    bool operator>(const ORV_UTCTIMESTAMP& other) const;
    bool operator<(const ORV_UTCTIMESTAMP& other) const { return !(*this == other) && !(*this > other); }
    bool operator<=(const ORV_UTCTIMESTAMP& other) const { return !(*this > other); }
    bool operator>=(const ORV_UTCTIMESTAMP& other) const { return *this == other || *this > other; }

    /// Shifts the stamp to the nautical time zone of a longitude in millionths of a degree: one hour for each 15
    /// degrees, zones being centred on the multiples of 15. The first number is not used.
    void GetLocalTime(std::int32_t, std::int32_t longitude);
    /// These know no zones and no daylight rules: 0, empty and false.
    std::int32_t GetMinutesDifference(char* zone, std::int32_t date) const;
    ORVwstring GetZoneName(char* zone, std::int32_t date) const;
    bool IsDaylightSavings(char* zone, std::int32_t date) const;

    ORV_UTCTIME m_time;
    ORV_UTCDATE m_date;

private:
    void Init(const ORV_UTCDATE& date, const ORV_UTCTIME& time);
    std::int32_t UnitsSince(const ORV_UTCTIMESTAMP& other, std::int32_t unitsPerDay, std::int32_t maxDays,
                            std::int32_t (ORV_UTCTIME::*since)(const ORV_UTCTIME&) const) const;
};
static_assert(sizeof(ORV_UTCTIMESTAMP) == 8);

DORVUTIL_API ORV_UTCTIMESTAMP UTC_MIN();  ///< 1 January 1981 00:00:00
DORVUTIL_API ORV_UTCTIMESTAMP UTC_MAX();  ///< 31 December 2080 23:59:59

}  // namespace dorvutil
