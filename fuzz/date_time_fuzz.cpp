// Dates and times: the readers of text, the packed numbers, the calendar's arithmetic and the pictures.
#include "dorvutil/time/file_time.h"
#include "dorvutil/time/format.h"
#include "dorvutil/time/packed.h"
#include "dorvutil/time/time_stamp.h"
#include "dorvutil/time/utc_date.h"
#include "fuzz_support.h"

namespace dorvutil::fuzz {
namespace {

// Three numbers between separators, as the readers are given them.
std::string Numbers(std::int32_t a, char separator, std::int32_t b, std::int32_t c) {
    return std::to_string(a) + separator + std::to_string(b) + separator + std::to_string(c);
}

using Reader = std::int32_t (*)(char*, std::int32_t*);

std::int32_t Read(Reader reader, std::string_view text) {
    Exact<char> copy = Exact<char>::Terminated(text);
    std::int32_t stored = -1;
    const std::int32_t value = reader(copy.Data(), &stored);
    FUZZ_CHECK(value == stored);
    return value;
}

void CheckReaders(std::string_view text) {
    Read(TIME_ConvHMSToUTCTime, text);
    Read(TIME_ConvMDYToUTCDate, text);
    Exact<char> copy = Exact<char>::Terminated(text);
    std::int32_t time = 0;
    TIME_ConvAMPMToUTC(copy.Data(), &time);
    FUZZ_CHECK(copy.View().substr(0, text.size()) == text);
}

void CheckPacked(std::int64_t seconds, std::int32_t number) {
    const std::int32_t time = TIME_UTCTimeToHHMMSS(seconds), date = TIME_UTCTimeToDDMMYY(seconds);
    int hour = -1, minute = -1, second = -1;
    TIME_ConvUTCTimeToHMS(time, &hour, &minute, &second);
    FUZZ_CHECK(hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60);
    FUZZ_CHECK(Read(TIME_ConvHMSToUTCTime, Numbers(hour, ':', minute, second)) == time);
    std::int32_t ofDay = -1;
    TIME_ConvUTCTimeToSeconds(time, &ofDay);
    FUZZ_CHECK((seconds % 86400 - ofDay) % 86400 == 0);
    const std::int32_t year = TIME_YearOfUTCDate(date), month = TIME_MonthOfUTCDate(date),
                       day = TIME_DateOfUTCDate(date);
    FUZZ_CHECK(month >= 1 && month <= 12 && day >= 1 && day <= 31 && year >= 1981 && year <= 2080);
    FUZZ_CHECK(Read(TIME_ConvMDYToUTCDate, Numbers(month, '/', day, year)) == date);
    std::int32_t movedDate = number, movedTime = number;
    TIME_IncrementUTC(&movedDate, &movedTime, number, number, number, number, number, number);
    TIME_ConvUTCTimeToHMS(movedTime, &hour, &minute, &second);
    FUZZ_CHECK(hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60);
    FUZZ_CHECK(TIME_MonthOfUTCDate(movedDate) >= 1 && TIME_MonthOfUTCDate(movedDate) <= 12);
}

void CheckDate(std::int32_t packed, std::uint32_t days) {
    const ORV_UTCDATE date(packed);
    FUZZ_CHECK(date.Day() <= 31 && date.Month() <= 12 && date.Year() <= 99);
    FUZZ_CHECK(date.FullYear() >= 1981 && date.FullYear() <= 2080 && date.DaysSince(date) == 0);
    ORV_UTCDATE later(date);
    later.AddDays(days % 36'000);
    if (!date.IsValid()) {
        FUZZ_CHECK(later == date);
        return;
    }
    FUZZ_CHECK(later.IsValid() && date.DaysSoFarInYear() + date.DaysToNextYear() == date.DaysInThisYear());
    const std::int32_t apart = later.DaysSince(date);
    FUZZ_CHECK(apart == -date.DaysSince(later));
    // From 2080 on it starts again in 1981.
    if (later < date) return;
    FUZZ_CHECK(apart == static_cast<std::int32_t>(days % 36'000));
    FUZZ_CHECK((date.DayOfWeek() + apart) % 7 == later.DayOfWeek());
}

void CheckFileTime(const ORV_FILETIME& time) {
    ORV_SYSTEMTIME calendar;
    char text[32] = {};
    TIME_FileTimeToString(time, text, sizeof text);
    FUZZ_CHECK(std::memchr(text, 0, sizeof text) != nullptr);
    if (TIME_FileTimeToSystemTime(&time, &calendar) == 0) return;
    ORV_FILETIME back;
    if (TIME_SystemTimeToFileTime(&calendar, &back) == 0) {
        FUZZ_CHECK(calendar.wYear > 30827);
        return;
    }
    const auto whole = [](const ORV_FILETIME& t) {
        return (std::uint64_t{t.dwHighDateTime} << 32 | t.dwLowDateTime) / 10'000;
    };
    FUZZ_CHECK(whole(back) == whole(time) && TIME_CompareFileTime(&back, &time) <= 0);
}

using Picture = std::int32_t (*)(const ORV_SYSTEMTIME&, std::uint32_t, const char16_t*, char16_t*, std::int32_t);

std::int32_t Date(const ORV_SYSTEMTIME& t, std::uint32_t flags, const char16_t* picture, char16_t* out,
                  std::int32_t size) {
    return TIME_GetDateFormat(0, flags, &t, picture, out, 0, size);
}

std::int32_t Time(const ORV_SYSTEMTIME& t, std::uint32_t flags, const char16_t* picture, char16_t* out,
                  std::int32_t size) {
    return TIME_GetTimeFormat(0, flags, &t, picture, out, 0, size, false);
}

// The size asked for is the size needed: one unit less does not do.
void CheckPicture(Picture format, const ORV_SYSTEMTIME& time, std::uint32_t flags, const char16_t* picture) {
    const std::int32_t needed = format(time, flags, picture, nullptr, 0);
    FUZZ_CHECK(needed >= 0);
    if (needed == 0) return;
    Exact<char16_t> out(static_cast<std::size_t>(needed)), wider(out.Size() + 7), tight(out.Size() - 1);
    FUZZ_CHECK(format(time, flags, picture, out.Data(), needed) == needed);
    FUZZ_CHECK(out.Data()[needed - 1] == 0);
    FUZZ_CHECK(format(time, flags, picture, wider.Data(), wider.Length()) == needed);
    FUZZ_CHECK(wider.View().substr(0, out.Size()) == out.View());
    if (tight.Size() == 0) return;
    FUZZ_CHECK(format(time, flags, picture, tight.Data(), tight.Length()) == 0);
    FUZZ_CHECK(tight.View().find(u'\0') != std::u16string_view::npos);
}

void CheckPictures(const ORV_SYSTEMTIME& time, std::uint32_t flags, const std::u16string& picture) {
    for (const Picture format : {Date, Time}) {
        CheckPicture(format, time, flags, nullptr);
        CheckPicture(format, time, flags, picture.c_str());
    }
}

ORV_SYSTEMTIME ReadRecord(Input& input) {
    ORV_SYSTEMTIME t;
    t.wYear = input.Number<std::uint16_t>();
    t.wMonth = input.Byte() % 14;
    t.wDay = input.Byte() % 33;
    t.wHour = input.Byte() % 25;
    t.wMinute = input.Byte() % 61;
    t.wSecond = input.Byte() % 61;
    return t;
}

}  // namespace

// Numbers, a record, then a text that is read and is a picture as well.
void TestInput(Input& input) {
    const auto seconds = input.Number<std::int64_t>();
    const auto number = input.Number<std::int32_t>();
    const ORV_SYSTEMTIME record = ReadRecord(input);
    const std::uint32_t flags = input.Byte();
    const std::string text(UpToZero(input.Rest(256)));
    CheckReaders(text);
    CheckPacked(seconds, number);
    CheckDate(number, static_cast<std::uint32_t>(seconds));
    const auto bits = static_cast<std::uint64_t>(seconds);
    CheckFileTime({static_cast<std::uint32_t>(bits), static_cast<std::uint32_t>(bits >> 32)});
    CheckPictures(record, flags, Widened(text));
}

}  // namespace dorvutil::fuzz
