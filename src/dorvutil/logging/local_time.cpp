#include "dorvutil/logging/local_time.h"

#include <chrono>

#include "dorvutil/platform/local_time.h"

namespace dorvutil {
namespace {

constexpr std::int64_t kSecondsTo1970 = 11'644'473'600;

}  // namespace

ORV_SYSTEMTIME LocalTimeOfSecond(std::uint64_t secondsSince1601) {
    using namespace std::chrono;
    const std::int64_t utc = static_cast<std::int64_t>(secondsSince1601) - kSecondsTo1970;
    const sys_seconds local{seconds{utc + platform::LocalOffsetSeconds(utc)}};
    const sys_days day = floor<days>(local);
    const year_month_day date{day};
    const hh_mm_ss<seconds> time{local - day};
    ORV_SYSTEMTIME result;
    result.wYear = static_cast<std::uint16_t>(static_cast<int>(date.year()));
    result.wMonth = static_cast<std::uint16_t>(static_cast<unsigned>(date.month()));
    result.wDayOfWeek = static_cast<std::uint16_t>(weekday{day}.c_encoding());
    result.wDay = static_cast<std::uint16_t>(static_cast<unsigned>(date.day()));
    result.wHour = static_cast<std::uint16_t>(time.hours().count());
    result.wMinute = static_cast<std::uint16_t>(time.minutes().count());
    result.wSecond = static_cast<std::uint16_t>(time.seconds().count());
    return result;
}

}  // namespace dorvutil
