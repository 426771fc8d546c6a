#include "dorvutil/time/utc_date.h"

#include <gtest/gtest.h>

#include "time/clock_support.h"

namespace dorvutil {
namespace {

using namespace std::chrono;
using testing_support::Calendar;
using testing_support::Packed;

constexpr int kFirst = sys_days(1981y / 1 / 1).time_since_epoch().count();  // days from 1970
constexpr int kLast = sys_days(2080y / 12 / 31).time_since_epoch().count();

TEST(UtcDate, ValidExactlyForTheDatesOfTheCalendar) {
    int valid = 0;
    for (std::int32_t value = -1; value <= 1'000'000; ++value) {
        const int year = value % 100 + (value % 100 > 80 ? 1900 : 2000);
        const auto field = [&](int unit) { return static_cast<unsigned>(value / unit % 100); };
        const bool expected = value > 0 && value < 1'000'000 &&
                              year_month_day(std::chrono::year(year), month(field(100)), day(field(10'000))).ok();
        ASSERT_EQ(ORV_UTCDATE(value).IsValid(), expected) << value;
        valid += expected;
    }
    EXPECT_EQ(valid, kLast - kFirst + 1);
    for (const std::int32_t value : {INT32_MIN, INT32_MAX, -10111, 1'010'111})
        EXPECT_FALSE(ORV_UTCDATE(value).IsValid());
}

TEST(UtcDate, AgreesWithTheCalendarOnEveryDay) {
    const ORV_UTCDATE first(10181);
    for (int days = kFirst; days <= kLast; ++days) {
        const year_month_day expected = Calendar(days);
        const ORV_UTCDATE date(Packed(expected));
        const int inYear = days - static_cast<int>(sys_days(expected.year() / 1 / 1).time_since_epoch().count());
        const int length = expected.year().is_leap() ? 366 : 365;
        ASSERT_EQ(date.FullYear(), static_cast<int>(expected.year()));
        ASSERT_EQ(date.DayOfWeek(), static_cast<std::int32_t>(weekday(sys_days(expected)).c_encoding())) << date;
        ASSERT_EQ(date.DaysSoFarInYear(), inYear) << date;
        ASSERT_EQ(date.DaysInThisYear(), date.Leap() ? 366 : 365) << date;
        ASSERT_EQ(date.DaysToNextYear(), length - inYear) << date;
        ASSERT_EQ(date.DaysSince(first), days - kFirst) << date;
        ASSERT_EQ(first.DaysSince(date), kFirst - days) << date;
        ORV_UTCDATE next = date;
        next.AddDays(1);
        if (days == kLast) break;
        ASSERT_EQ(next, Packed(Calendar(days + 1)));
        ASSERT_TRUE(next > date && next >= date && date < next && date <= next && next != date) << date;
        ASSERT_FALSE(date > next || date >= next || next < date || next <= date) << date;
        next.SubtractDays(1);  // the turn of the century is a wall for two-digit years
        ASSERT_EQ(next, date == 311299 ? 10100 : static_cast<std::int32_t>(date));
    }
}

TEST(UtcDate, AtTheLimitsOfItsArithmetic) {
    static constexpr struct {
        std::int32_t date;
        std::uint32_t add, subtract;
        std::int32_t expected;
    } kCases[] = {{311280, 1, 0, 10181},
                  {290200, 36525, 0, 290200},
                  {280299, 366, 0, 290200},
                  {10111, 0xFFFFFFFF, 0, 40890},
                  {10100, 0, 1, 10100},
                  {290200, 0, 60, 290200},
                  {290200, 0, 59, 10100},
                  {10111, 0, 0xFFFFFFFF, 10111},
                  {-1, 1, 0, -1},
                  {-1, 0, 1, -1},
                  {310211, 5, 5, 310211},
                  {0, 5, 5, 0},
                  {311299, 0xFFFFFFFF, 0, 30879}};
    for (const auto& c : kCases) {
        ORV_UTCDATE date(c.date);
        date.AddDays(c.add);
        date.SubtractDays(c.subtract);
        EXPECT_EQ(date, c.expected) << c.date;
    }
}

TEST(UtcDate, ForcesFieldsIntoADate) {
    EXPECT_EQ(ORV_UTCDATE(31, 2, 11), 280211);
    EXPECT_EQ(ORV_UTCDATE(29, 2, 0), 290200);
    EXPECT_EQ(ORV_UTCDATE(29, 2, 99), 280299);
    EXPECT_EQ(ORV_UTCDATE(0, 0, 120), 10199);
    EXPECT_EQ(ORV_UTCDATE(65535, 65535, 65535), 311299);
    static constexpr struct {
        std::uint32_t day, month, year;
        std::int32_t expected;
    } kAssigned[] = {{1, 1, 2011, 10111},   {31, 2, 2011, 30211},
                     {30, 2, 2012, 10212},  {29, 2, 2100, 10200},
                     {29, 2, 2000, 290200}, {1, 13, 1999, 10199},
                     {0, 3, 2011, 310311},  {1, 0, 2011, 11211},
                     {32, 12, 2011, 11211}, {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 30395}};
    for (const auto& c : kAssigned) {
        ORV_UTCDATE date;
        date.Assign(c.day, c.month, c.year);
        EXPECT_EQ(date, c.expected) << c.day;
    }
}

TEST(UtcDate, HoldsNoDateAndAnyNumber) {
    ORV_UTCDATE none, date(10180);
    EXPECT_EQ(none, -1);
    EXPECT_EQ(date.FullYear(), 2080);
    EXPECT_EQ(ORV_UTCDATE(10111).DayOfWeek(), eSaturday);
    *&date = 311299;
    EXPECT_EQ(date.Day() * 10000 + date.Month() * 100 + date.Year(), 311299);
    for (const std::int32_t value : {-1, INT32_MIN, INT32_MAX, 999999, -999999, 320000, 1300}) {
        ORV_UTCDATE odd(value);
        EXPECT_TRUE(odd.Day() < 32 && odd.Month() < 13 && odd.DayOfWeek() < 7) << value;
        EXPECT_EQ(odd.DaysSince(date), -date.DaysSince(odd)) << value;
        odd.Reset();
        EXPECT_EQ(odd, none);
    }
    EXPECT_FALSE(ORV_UTCDATE(10111) == ORV_UTCDATE(1010111)) << "packed differently";
}

}  // namespace
}  // namespace dorvutil
