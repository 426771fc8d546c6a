#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// Dates and times of day as decimal numbers: DDMMYY and HHMMSS. A two-digit year above 80 means 19YY, else 20YY. Any
/// input is taken; fields out of range give numbers out of range (modulo 2^32), nothing else. Null outputs are left
/// out. Any thread.
namespace dorvutil {

/// The UTC time of day, respectively date (year modulo 100), of `seconds` since 1 January 1970.
DORVUTIL_API std::int32_t TIME_UTCTimeToHHMMSS(std::int64_t seconds);
DORVUTIL_API std::int32_t TIME_UTCTimeToDDMMYY(std::int64_t seconds);

DORVUTIL_API std::int32_t TIME_YearOfUTCDate(std::int32_t date);   ///< The full year.
DORVUTIL_API std::int32_t TIME_MonthOfUTCDate(std::int32_t date);  ///< 1 to 12 of a valid date.
DORVUTIL_API std::int32_t TIME_DateOfUTCDate(std::int32_t date);   ///< The day of the month.

DORVUTIL_API void TIME_ConvUTCTimeToHMS(std::int32_t time, int* hour, int* minute, int* second);
/// Seconds since midnight.
DORVUTIL_API void TIME_ConvUTCTimeToSeconds(std::int32_t time, std::int32_t* seconds);

/// Readers of text. Each stores the packed number and returns it too; null and empty text give 0. Parts that are
/// missing or no number count as 0; parts after the last one wanted are not looked at.
/// "hour:minute:second". Splits the caller's text in place: the separators become terminators.
DORVUTIL_API std::int32_t TIME_ConvHMSToUTCTime(char* text, std::int32_t* time);
/// "hour:minute marker": with the marker "PM", "p" or "P" 12 hours are added unless the hour is 12; any other marker
/// makes an hour of 12 the hour 0; without one the hour stays. Looks at 31 characters and leaves the text unchanged.
DORVUTIL_API std::int32_t TIME_ConvAMPMToUTC(char* text, std::int32_t* time);
/// "month/day/year", the year modulo 100. Splits the caller's text in place.
DORVUTIL_API std::int32_t TIME_ConvMDYToUTCDate(char* text, std::int32_t* date);

/// Moves a date and time on by all the offsets at once, which may be negative: seconds carry into minutes and so on up
/// to days, months carry into years, and then days run over as many months as they need. A date or time left out counts
/// as zeros and is not written. The year is written modulo 100.
DORVUTIL_API void TIME_IncrementUTC(std::int32_t* date, std::int32_t* time, std::int32_t years, std::int32_t months,
                                    std::int32_t days, std::int32_t hours, std::int32_t minutes, std::int32_t seconds);

}  // namespace dorvutil
