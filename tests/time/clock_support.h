#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>

#include "dorvutil/platform/clock.h"
#include "dorvutil/time/calendar.h"
#include "dorvutil/time/current_zone.h"

namespace dorvutil::testing_support {

/// The record of a moment given as year, month, day, hour, minute, second.
inline ORV_SYSTEMTIME At(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    const auto field = [](int n) { return static_cast<std::uint16_t>(n); };
    return {field(year), field(month), 0, field(day), field(hour), field(minute), field(second), 0};
}

inline std::uint64_t TicksAt(const ORV_SYSTEMTIME& time) {
    std::uint64_t ticks = 0;
    EXPECT_TRUE(calendar::ToTicks(time, ticks));
    return ticks;
}

/// Tests that move the clock and the zone; both go back when a test ends.
class ShiftedClock : public testing::Test {
protected:
    ~ShiftedClock() override {
        platform::ShiftFileTime(0);
        platform::ReplaceClockSetter(nullptr);
        UseSystemTimeZone();
        ::unsetenv("TZ");
    }

    static void SetNow(std::uint64_t ticks) {
        platform::ShiftFileTime(0);
        platform::ShiftFileTime(static_cast<std::int64_t>(ticks - platform::FileTimeNow()));
    }
    /// A zone in the notation of POSIX.
    static void SetSystemZone(const char* zone) { ::setenv("TZ", zone, 1); }
};

/// The day `days` after 1 January 1970 by the standard library's calendar.
inline std::chrono::year_month_day Calendar(std::int64_t days) {
    return std::chrono::sys_days(std::chrono::days(static_cast<int>(days)));
}

inline std::int32_t Packed(const std::chrono::year_month_day& date) {
    return static_cast<std::int32_t>(static_cast<unsigned>(date.day()) * 10000 +
                                     static_cast<unsigned>(date.month()) * 100) +
           ((static_cast<int>(date.year()) % 100) + 100) % 100;
}

}  // namespace dorvutil::testing_support
