#include "dorvutil/time/packed.h"

#include <algorithm>
#include <cstring>

#include "dorvutil/text/number_text.h"
#include "dorvutil/time/calendar.h"
#include "dorvutil/time/packed_digits.h"

namespace dorvutil {
namespace {

using packed::Pack;

// Cuts the next part off a text: skips separators, ends the part at the first one after it. An empty text at the end.
char* NextPart(char*& rest, const char* separators) {
    char* const part = rest + std::strspn(rest, separators);
    rest = part + std::strcspn(part, separators);
    if (*rest != '\0') *rest++ = '\0';
    return part;
}

std::int32_t NumberIn(const char* text) { return ToSigned32(ParseInteger(text, 10)); }

std::int32_t NextNumber(char*& rest, const char* separators) { return NumberIn(NextPart(rest, separators)); }

std::int32_t Store(std::int32_t value, std::int32_t* out) {
    if (out) *out = value;
    return value;
}

std::int32_t HourOf24(std::int32_t hour, const char* marker) {
    if (*marker == '\0') return hour;
    const bool isTwelve = hour == 12;
    for (const char* const afternoon : {"PM", "p", "P"}) {
        if (std::strcmp(marker, afternoon) == 0) return isTwelve ? hour : std::min(hour, INT32_MAX - 12) + 12;
    }
    return isTwelve ? 0 : hour;
}

std::int32_t TwoDigitYear(std::int64_t year) { return static_cast<std::int32_t>(calendar::FloorModulo(year, 100)); }

// Keeps value below `limit` and returns what is carried.
std::int64_t Carry(std::int64_t& value, std::int64_t limit) {
    const std::int64_t carried = calendar::FloorDivide(value, limit);
    value -= carried * limit;
    return carried;
}

// A date whose month and day may lie anywhere, month counted from 0; brings them into range.
calendar::Date Normalised(std::int64_t year, std::int64_t month, std::int64_t day) {
    year += Carry(month, 12);
    const calendar::Date first{year, static_cast<std::int32_t>(month + 1), 1};
    return calendar::DateFromDays(calendar::DaysFromDate(first) + day - 1);
}

}  // namespace

std::int32_t TIME_UTCTimeToHHMMSS(std::int64_t seconds) {
    const auto ofDay = static_cast<std::int32_t>(calendar::FloorModulo(seconds, calendar::kSecondsPerDay));
    return Pack(ofDay / 3600, ofDay / 60 % 60, ofDay % 60);
}

std::int32_t TIME_UTCTimeToDDMMYY(std::int64_t seconds) {
    const calendar::Date date = calendar::DateFromDays(calendar::FloorDivide(seconds, calendar::kSecondsPerDay));
    return Pack(date.day, date.month, TwoDigitYear(date.year));
}

std::int32_t TIME_YearOfUTCDate(std::int32_t date) { return packed::FullYear(date % 100); }

std::int32_t TIME_MonthOfUTCDate(std::int32_t date) { return date / 100 % 100; }

std::int32_t TIME_DateOfUTCDate(std::int32_t date) { return date / 10'000 % 100; }

void TIME_ConvUTCTimeToHMS(std::int32_t time, int* hour, int* minute, int* second) {
    if (hour) *hour = time / 10'000;
    if (minute) *minute = time / 100 - time / 10'000 * 100;
    if (second) *second = time - time / 100 * 100;
}

void TIME_ConvUTCTimeToSeconds(std::int32_t time, std::int32_t* seconds) {
    int hour = 0, minute = 0, second = 0;
    TIME_ConvUTCTimeToHMS(time, &hour, &minute, &second);
    if (seconds) *seconds = hour * 3600 + minute * 60 + second;
}

std::int32_t TIME_ConvHMSToUTCTime(char* text, std::int32_t* time) {
    if (!text) return Store(0, time);
    const std::int32_t hour = NextNumber(text, ":");
    const std::int32_t minute = NextNumber(text, ":");
    return Store(Pack(hour, minute, NextNumber(text, ":")), time);
}

std::int32_t TIME_ConvAMPMToUTC(char* text, std::int32_t* time) {
    if (!text) return Store(0, time);
    char copy[32] = {};
    std::strncpy(copy, text, sizeof(copy) - 1);
    char* rest = copy;
    const std::int32_t hour = NextNumber(rest, ": ");
    const std::int32_t minute = NextNumber(rest, ": ");
    return Store(Pack(HourOf24(hour, NextPart(rest, ": ")), minute, 0), time);
}

std::int32_t TIME_ConvMDYToUTCDate(char* text, std::int32_t* date) {
    if (!text) return Store(0, date);
    const std::int32_t month = NextNumber(text, "/");
    const std::int32_t day = NextNumber(text, "/");
    return Store(Pack(day, month, NextNumber(text, "/") % 100), date);
}

void TIME_IncrementUTC(std::int32_t* date, std::int32_t* time, std::int32_t years, std::int32_t months,
                       std::int32_t days, std::int32_t hours, std::int32_t minutes, std::int32_t seconds) {
    int hour = 0, minute = 0, second = 0;
    if (time) TIME_ConvUTCTimeToHMS(*time, &hour, &minute, &second);
    std::int64_t s = std::int64_t{second} + seconds;
    std::int64_t m = std::int64_t{minute} + minutes + Carry(s, 60);
    std::int64_t h = std::int64_t{hour} + hours + Carry(m, 60);
    const std::int64_t day = Carry(h, 24) + days + (date ? TIME_DateOfUTCDate(*date) : 0);
    const std::int64_t month = std::int64_t{months} + (date ? TIME_MonthOfUTCDate(*date) : 0);
    const std::int64_t year = std::int64_t{years} + (date ? TIME_YearOfUTCDate(*date) : 0);
    if (time) *time = Pack(static_cast<std::int32_t>(h), static_cast<std::int32_t>(m), static_cast<std::int32_t>(s));
    if (!date) return;
    const calendar::Date result = Normalised(year, month - 1, day);
    *date = Pack(result.day, result.month, TwoDigitYear(result.year));
}

}  // namespace dorvutil
