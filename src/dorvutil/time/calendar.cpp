#include "dorvutil/time/calendar.h"

namespace dorvutil::calendar {
namespace {

constexpr std::uint64_t kTicksPerDay = kTicksPerSecond * kSecondsPerDay;
constexpr std::int64_t kDaysTo1970 = kSecondsTo1970 / kSecondsPerDay;  // from 1601

template <class T>
constexpr std::uint16_t Field(T value) {
    return static_cast<std::uint16_t>(value);
}

}  // namespace

bool IsDate(const ORV_SYSTEMTIME& time) {
    return time.wYear >= 1601 && time.wYear <= 30'827 && time.wDay >= 1 &&
           time.wDay <= DaysInMonth(time.wYear, time.wMonth);
}

bool IsTimeOfDay(const ORV_SYSTEMTIME& time) {
    return time.wHour < 24 && time.wMinute < 60 && time.wSecond < 60 && time.wMilliseconds < 1000;
}

bool ToTicks(const ORV_SYSTEMTIME& time, std::uint64_t& ticks) {
    if (!IsDate(time) || !IsTimeOfDay(time)) return false;
    const std::int64_t days = DaysFromDate({time.wYear, time.wMonth, time.wDay}) + kDaysTo1970;
    const std::uint64_t seconds = (time.wHour * 60ULL + time.wMinute) * 60ULL + time.wSecond;
    ticks = static_cast<std::uint64_t>(days) * kTicksPerDay + seconds * kTicksPerSecond +
            time.wMilliseconds * kTicksPerMillisecond;
    return true;
}

bool FromTicks(std::uint64_t ticks, ORV_SYSTEMTIME& time) {
    if (ticks >> 63 != 0) return false;
    const std::int64_t days = static_cast<std::int64_t>(ticks / kTicksPerDay) - kDaysTo1970;
    const auto milliseconds = static_cast<std::uint32_t>(ticks % kTicksPerDay / kTicksPerMillisecond);
    const Date date = DateFromDays(days);
    time.wYear = Field(date.year);
    time.wMonth = Field(date.month);
    time.wDayOfWeek = Field(WeekdayOf(days));
    time.wDay = Field(date.day);
    time.wHour = Field(milliseconds / 3'600'000);
    time.wMinute = Field(milliseconds / 60'000 % 60);
    time.wSecond = Field(milliseconds / 1000 % 60);
    time.wMilliseconds = Field(milliseconds % 1000);
    return true;
}

bool MoveTicks(std::uint64_t& ticks, std::int64_t seconds) {
    constexpr std::uint64_t kMost = UINT64_MAX / kTicksPerSecond;
    const std::uint64_t distance =
        seconds < 0 ? 0u - static_cast<std::uint64_t>(seconds) : static_cast<std::uint64_t>(seconds);
    if (distance > kMost) return false;
    const std::uint64_t step = distance * kTicksPerSecond;
    if (seconds < 0 ? step > ticks : step > UINT64_MAX - ticks) return false;
    ticks = seconds < 0 ? ticks - step : ticks + step;
    return true;
}

}  // namespace dorvutil::calendar
