#include "dorvutil/time/time_stamp.h"

#include <gtest/gtest.h>

#include <random>

#include "time/clock_support.h"

namespace dorvutil {
namespace {

TEST(UtcTime, BuildsAndCarries) {
    EXPECT_EQ(ORV_UTCTIME(25, 61, 61), 235959);
    EXPECT_TRUE(ORV_UTCTIME(0).IsValid() && ORV_UTCTIME(595923).IsValid());
    EXPECT_FALSE(ORV_UTCTIME().IsValid() || ORV_UTCTIME(595924).IsValid());
    static constexpr struct {
        std::uint32_t h, m, s;
        std::int32_t time;
        std::uint32_t days;
    } kCases[] = {{23, 59, 61, 1, 1},
                  {0, 0, 59, 59, 0},
                  {48, 0, 0, 0, 2},
                  {0, 1440, 86400, 0, 2},
                  {0xFFFFFFFF, 59, 59, 155959, 178956970},
                  {0, 0, 0xFFFFFFFF, 62815, 49710}};
    for (const auto& c : kCases) {
        ORV_UTCTIME time;
        EXPECT_EQ(time.Assign(c.h, c.m, c.s), c.days) << c.h;
        EXPECT_EQ(time, c.time) << c.h;
        ORV_UTCTIME noon(120000);
        EXPECT_EQ(noon.Subtract(c.h, c.m, c.s), c.days + (c.time > 120000)) << c.h;
        EXPECT_EQ(noon.Add(time), c.time > 120000) << c.h;
        EXPECT_EQ(noon, 120000) << c.h;
    }
}

TEST(UtcTime, DifferencesAreCutTowardsZero) {
    const ORV_UTCTIME early(10159), late(233000);
    EXPECT_EQ(late.SecondsSince(early), 80881);
    EXPECT_EQ(early.SecondsSince(late), -80881);
    EXPECT_EQ(early.SecondsSinceHighPrecision(late), -80881.0);
    EXPECT_EQ(early.MinutesSince(late), -1348);
    EXPECT_EQ(early.HoursSince(late), -22);
    EXPECT_EQ(late.DaysSince(early), 0);
    EXPECT_TRUE(early < late && late > early && !(late < early) && !(early > late) && !(early < ORV_UTCTIME(early)));
    for (const std::int32_t odd : {-1, INT32_MIN, INT32_MAX}) EXPECT_LT(ORV_UTCTIME(odd).SecondsSince(0), 86400);
}

// Against plain seconds since UTC_MIN, for any two moments of the range.
TEST(TimeStamp, ArithmeticAgreesWithSeconds) {
    const auto seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937_64 random(seed);
    constexpr std::int64_t kSpan = 36525LL * 86400;
    const auto fields = [](std::int64_t n) { return static_cast<std::uint32_t>(n); };
    for (int i = 0; i < 2000; ++i) {
        const auto from = static_cast<std::int64_t>(random() % kSpan);
        const std::int64_t to = i % 2 == 0 ? static_cast<std::int64_t>(random() % kSpan)
                                           : from + static_cast<std::int64_t>(random() % 200000);
        if (to < from || to >= kSpan) continue;
        ORV_UTCTIMESTAMP a = UTC_MIN(), b = UTC_MIN();
        a.Add(0, 0, 0, fields(from));
        b.Add(fields(to / 86400), 0, fields(to % 86400 / 60), fields(to % 60));
        const std::int64_t gap = to - from;
        const bool fits = b.m_date.DaysSince(a.m_date) <= 24854;
        ASSERT_EQ(b.SecondsSince(a), fits ? gap : 0x7FFFFFFF) << from;
        ASSERT_EQ(a.SecondsSince(b), fits ? -gap : -0x7FFFFFFF) << from;
        ASSERT_EQ(a.SecondsSinceHighPrecision(b), fits ? static_cast<double>(-gap) : -2147483647.0) << from;
        ASSERT_LE(std::abs(b.MinutesSince(a) - gap / 60), 1) << from;
        ASSERT_LE(std::abs(b.HoursSince(a) - gap / 3600), 1) << from;
        ASSERT_EQ(b.DaysSince(a), to / 86400 - from / 86400) << from;
        const COrv_TimeDelta delta = a - b;
        ASSERT_EQ(delta, b - a);
        ASSERT_EQ(delta, COrv_TimeDelta(0, 0, 0, fields(gap))) << from;
        ASSERT_EQ(a + delta, b) << from;
        ASSERT_EQ(b >= a && a <= b && (gap == 0) == (a == b) && (gap > 0) == (b > a) && (gap > 0) == (a < b), true);
        if (a.m_date.FullYear() < 2000 && b.m_date.FullYear() >= 2000) continue;
        b.Subtract(delta.m_days, delta.m_hours, delta.m_minutes, delta.m_seconds);
        ASSERT_EQ(a, b) << from;
    }
}

TEST(TimeStamp, RecordsAndLimits) {
    EXPECT_TRUE(UTC_MIN().IsValid() && UTC_MAX().IsValid());
    EXPECT_EQ(UTC_MAX().DayOfWeek(), eTuesday);
    ORV_SYSTEMTIME record = testing_support::At(2011, 6, 17, 8, 5, 9);
    record.wMilliseconds = 7;
    ORV_UTCTIMESTAMP stamp(record);
    EXPECT_EQ(stamp, ORV_UTCTIMESTAMP(170611, 80509));
    record = stamp.GetORVSystemTime();
    EXPECT_EQ(record.wYear * 10000 + record.wMonth * 100 + record.wDay, 110617);
    EXPECT_EQ(record.wHour * 10000 + record.wMinute * 100 + record.wSecond, 80509);
    EXPECT_EQ(record.wDayOfWeek + record.wMilliseconds, 0);
    EXPECT_FALSE(ORV_UTCTIMESTAMP(170611, 595924).IsValid() || ORV_UTCTIMESTAMP(-1, 0).IsValid());
    EXPECT_EQ(ORV_UTCTIMESTAMP(20111, 30).MinutesSince(ORV_UTCTIMESTAMP(10111, 100)), 1440) << "each part is cut";
    EXPECT_TRUE(stamp.GetMinutesDifference(nullptr, 1) == 0 && stamp.GetZoneName(nullptr, 1).empty() &&
                !stamp.IsDaylightSavings(nullptr, 1));
    stamp.Reset();
    EXPECT_EQ(stamp, ORV_UTCTIMESTAMP());
    stamp.Add(1, 25, 0, 0);
    EXPECT_EQ(stamp.m_date, -1);
}

TEST(TimeStamp, NauticalZones) {
    static constexpr struct {
        std::int32_t longitude;
        int hours;
    } kCases[] = {{0, 0},           {7'500'000, 0},    {-7'500'000, 0},   {7'500'001, 1},    {8'000'000, 1},
                  {22'500'000, 1},  {-22'500'000, -1}, {-23'000'000, -2}, {180'000'000, 12}, {-180'000'000, -12},
                  {INT32_MAX, 143}, {INT32_MIN, -143}};
    for (const auto& c : kCases) {
        ORV_UTCTIMESTAMP stamp(10111, 120000);
        stamp.GetLocalTime(0, c.longitude);
        EXPECT_EQ(stamp.HoursSince(ORV_UTCTIMESTAMP(10111, 120000)), c.hours) << c.longitude;
    }
}

TEST(TimeDelta, CarriesComparesAndBorrows) {
    const COrv_TimeDelta delta(300, 47, 0, 90);
    EXPECT_EQ(delta.m_days, 301u);
    EXPECT_EQ(delta, COrv_TimeDelta(301, ORV_UTCTIME(230130)));
    EXPECT_TRUE(COrv_TimeDelta().IsNull() && !delta.IsNull());
    const COrv_TimeDelta ordered[] = {{0, 23, 59, 59}, {1, 0, 0, 1}, {1, 0, 1, 0}, {1, 1, 0, 0}, {2, 0, 0, 0}};
    for (const COrv_TimeDelta& a : ordered) {
        for (const COrv_TimeDelta& b : ordered) {
            EXPECT_TRUE((a < b) == (&a < &b) && (a > b) == (&a > &b) && (a <= b) == (&a <= &b) &&
                        (a >= b) == (&a >= &b));
            COrv_TimeDelta c = a;
            c += b;
            EXPECT_EQ(c - b, a);
            c -= a;
            EXPECT_EQ(c, b);
        }
    }
    std::uint32_t d = 1, h = 0xFFFFFFFF, m = 61, s = 3600;
    delta.FormatTimeForTimeDelta(d, h, m, s);
    EXPECT_EQ(d, 1u) << "the hours wrap";
    EXPECT_EQ(h * 10000 + m * 100 + s, 10100u);
}

}  // namespace
}  // namespace dorvutil
