#include "dorvutil/geometry/delta_time.h"

#include "dorvutil/time/file_time.h"
#include "dorvutil/time/records.h"

namespace dorvutil {
namespace {

constexpr std::int32_t kFirstDosYear = 1980;
constexpr std::int32_t kDosYears = 128;  // seven bits
constexpr std::int32_t kYearBase = 1920;

// In units of 100 nanoseconds since 1601; 0 for what is no date or time. A negative number has negative parts, which as
// 16 bits are no part of a date.
std::int64_t Instant(std::int32_t date, std::int32_t time) {
    const auto field = [](std::int32_t value) { return static_cast<std::uint16_t>(value); };
    const auto dosYear = static_cast<std::uint32_t>(kYearBase + date / 10000 - kFirstDosYear) % kDosYears;
    ORV_SYSTEMTIME calendar;
    calendar.wYear = field(kFirstDosYear + static_cast<std::int32_t>(dosYear));
    calendar.wMonth = field(date / 100 % 100);
    calendar.wDay = field(date % 100);
    calendar.wHour = time < 0 || time >= 240000 ? field(-1) : field(time / 10000);
    calendar.wMinute = field(time / 100 % 100);
    calendar.wSecond = field(time % 100 / 2 * 2);
    ORV_FILETIME instant;
    TIME_SystemTimeToFileTime(&calendar, &instant);
    return static_cast<std::int64_t>(std::uint64_t{instant.dwHighDateTime} << 32 | instant.dwLowDateTime);
}

}  // namespace

double GetDeltaTime(std::int32_t date1, std::int32_t time1, std::int32_t date2, std::int32_t time2) {
    const std::int64_t difference = Instant(date2, time2) - Instant(date1, time1);
    return static_cast<double>(difference) / 1e7 / 60 / 60;
}

}  // namespace dorvutil
