#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"
#include "dorvutil/time/records.h"

/// Dates and times as text for people, in English whatever the locale. Any thread.
namespace dorvutil {

/// What is shown without a picture of the caller's own; other flags are not looked at.
inline constexpr std::uint32_t kDateShort = 1;      ///< "6/7/2011", also without any flag.
inline constexpr std::uint32_t kDateLong = 2;       ///< "Tuesday, June 7, 2011"
inline constexpr std::uint32_t kDateYearMonth = 8;  ///< "June 2011"
inline constexpr std::uint32_t kTimeNoMinutes = 1;  ///< Hours alone; without any flag "1:05:09 PM".
inline constexpr std::uint32_t kTimeNoSeconds = 2;
inline constexpr std::uint32_t kTimeNoMarker = 4;
inline constexpr std::uint32_t kTime24Hours = 8;

/// Writes the date, or now in the current zone when it is null, by the picture `format`, or by `flags` when that is
/// null. Letters of a date picture: d dd (day), ddd dddd (weekday, short or full), M MM MMM MMMM (month), y yy (two-
/// digit year) yyyy (full year), g gg (era: nothing); text between apostrophes stands for itself, two apostrophes for
/// one, and so does every other character. The weekday is worked out from the date.
/// Returns the units written with the terminator; for a `size` (in units) of 0 the units needed, writing nothing. 0
/// when the record holds no date or the text does not fit, which then leaves `out` unspecified but terminated. The
/// unnamed numbers are not used.
DORVUTIL_API std::int32_t TIME_GetDateFormat(std::uint32_t locale, std::uint32_t flags, const ORV_SYSTEMTIME* date,
                                             const char16_t* format, char16_t* out, std::int32_t, std::int32_t size);
/// The same for a time of day: h hh (of 12 hours) H HH (of 24) m mm s ss t tt (A or P, AM or PM).
DORVUTIL_API std::int32_t TIME_GetTimeFormat(std::uint32_t locale, std::uint32_t flags, const ORV_SYSTEMTIME* time,
                                             const char16_t* format, char16_t* out, std::int32_t, std::int32_t size,
                                             bool);
/// Does nothing: `text` stays as it is.
DORVUTIL_API void TIME_GetSystemLocaleDateString(const ORV_FILETIME& time, ORVustring& text);

}  // namespace dorvutil
