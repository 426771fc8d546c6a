#include "dorvutil/time/packed.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <utility>

#include "time/clock_support.h"

namespace dorvutil {
namespace {

TEST(Packed, FieldsOfAnyNumber) {
    EXPECT_EQ(TIME_YearOfUTCDate(311280), 2080);
    EXPECT_EQ(TIME_YearOfUTCDate(10181), 1981);
    EXPECT_EQ(TIME_DateOfUTCDate(311280) * 100 + TIME_MonthOfUTCDate(311280), 3112);
    for (const std::int32_t time : {0, 235959, 10203, INT32_MAX, INT32_MIN, -1}) {
        int h = 0, m = 0, s = 0;
        std::int32_t seconds = 0;
        TIME_ConvUTCTimeToHMS(time, &h, &m, &s);
        EXPECT_EQ(std::int64_t{h} * 10000 + m * 100 + s, time);
        EXPECT_LT(std::abs(m) + std::abs(s), 199);
        TIME_ConvUTCTimeToSeconds(time, &seconds);
        EXPECT_EQ(seconds, h * 3600 + m * 60 + s);
    }
    std::int32_t seconds = 0;
    TIME_ConvUTCTimeToSeconds(235959, &seconds);
    EXPECT_EQ(seconds, 86399);
    TIME_ConvUTCTimeToHMS(1, nullptr, nullptr, nullptr);
    TIME_ConvUTCTimeToSeconds(1, nullptr);
}

TEST(Packed, BreaksAnySecondDown) {
    EXPECT_EQ(TIME_UTCTimeToDDMMYY(-1), 311269);
    EXPECT_EQ(TIME_UTCTimeToHHMMSS(-1), 235959);
    EXPECT_EQ(TIME_UTCTimeToDDMMYY(951782400), 290200);
    EXPECT_EQ(TIME_UTCTimeToDDMMYY(1308297909), 170611);
    EXPECT_EQ(TIME_UTCTimeToHHMMSS(1308297909), 80509);
    // The calendar repeats every 400 years.
    constexpr std::int64_t kEra = 146097LL * 86400;
    for (const std::int64_t seconds : {INT64_MAX, INT64_MIN}) {
        EXPECT_EQ(TIME_UTCTimeToDDMMYY(seconds), TIME_UTCTimeToDDMMYY(seconds % kEra)) << seconds;
        EXPECT_EQ(TIME_UTCTimeToHHMMSS(seconds), TIME_UTCTimeToHHMMSS(seconds % kEra)) << seconds;
    }
}

TEST(Packed, ReadsText) {
    static constexpr struct {
        std::int32_t (*read)(char*, std::int32_t*);
        std::string_view cases;  // each a text, '>', the number and ','
    } kReaders[] = {
        {TIME_ConvHMSToUTCTime,
         "12:34:56>123456,1:2:3:4>10203,7>70000,7:5>70500,>0,:::>0,::8:9>80900,a:b:c>0,"
         " 9:10x:11>91011,-1:0:0>-10000,99999999999:0:0>-10000,"},
        {TIME_ConvMDYToUTCDate, "6/17/2011>170611,12/31/80>311280,2/1>10200,>0,/>0,1/2/3/4>20103,6-17-2011>600,"},
        {TIME_ConvAMPMToUTC,
         "12:30 AM>3000,12:30 PM>123000,1:05 p>130500,1:05 P>130500,1:05 pm>10500,1:05 PM>130500,"
         "12:30>123000,12:30 x>3000,13:00>130000,>0,1:05  PM >130500,11 20 PM>232000,"
         "0000000000000000000000001:05 PM>130500,000000000000000000000000001:05 PM>10500,"}};
    for (const auto& [read, cases] : kReaders) {
        for (std::string_view rest = cases; !rest.empty(); rest.remove_prefix(rest.find(',') + 1)) {
            const std::string text(rest.substr(0, rest.find('>')));
            const std::int32_t expected = std::stoi(std::string(rest.substr(text.size() + 1)));
            SCOPED_TRACE(text);
            std::string work = text;
            std::int32_t value = -7;
            EXPECT_EQ(read(work.data(), &value), expected);
            EXPECT_EQ(value, expected);
            if (read == TIME_ConvAMPMToUTC) {
                EXPECT_EQ(work, text);
            }
            EXPECT_EQ(read(nullptr, &value) + value, 0);
        }
    }
    char split[] = "1:2:3", large[] = "99999999999:0 PM";
    TIME_ConvHMSToUTCTime(split, nullptr);
    EXPECT_EQ(split[1] + split[3], 0) << "split in place";
    TIME_ConvAMPMToUTC(large, nullptr);
}

TEST(Packed, IncrementsByAllUnits) {
    const auto moved = [](std::int32_t date, std::int32_t time, std::int32_t months, std::int32_t days,
                          std::int32_t s) {
        TIME_IncrementUTC(&date, &time, 0, months, days, 0, 0, s);
        return std::pair(date, time);
    };
    EXPECT_EQ(moved(280212, 0, 0, 1, 0), std::pair(290212, 0));
    EXPECT_EQ(moved(311210, 235959, 0, 0, 1), std::pair(10111, 0));
    EXPECT_EQ(moved(10311, 0, 0, -1, 0), std::pair(280211, 0));
    EXPECT_EQ(moved(10311, 0, 0, -3, 0), std::pair(260211, 0));
    EXPECT_EQ(moved(10111, 100000, 0, 0, -60), std::pair(10111, 95900));
    EXPECT_EQ(moved(310111, 0, 1, 0, 0), std::pair(30311, 0)) << "the day runs over";
    EXPECT_EQ(moved(10180, 0, 240, 0, 0), std::pair(10100, 0));
    std::int32_t time = 235959, date = 311210;
    TIME_IncrementUTC(nullptr, &time, 0, 0, 0, 0, 0, 1);
    EXPECT_EQ(time, 0);
    TIME_IncrementUTC(&date, nullptr, 0, 0, 0, 23, 59, 60);
    EXPECT_EQ(date, 10111);
    TIME_IncrementUTC(nullptr, nullptr, 1, 1, 1, 1, 1, 1);
}

TEST(Packed, IncrementsLikeTheCalendar) {
    using namespace std::chrono;
    const auto seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto within = [&](int limit) {
        return static_cast<int>(random() % (2u * static_cast<unsigned>(limit))) - limit;
    };
    for (int i = 0; i < 5000; ++i) {
        const int y = within(300), mo = within(3000), d = within(100'000), h = within(1'000'000),
                  s = within(1'000'000'000);
        const year_month_day from = testing_support::Calendar(10'000 + within(5000));
        std::int32_t date = testing_support::Packed(from), time = 123456;
        TIME_IncrementUTC(&date, &time, y, mo, d, h, -h, s);
        const auto expected = sys_days((from.year() / from.month() + years(y) + months(mo)) / 1) + days(d - 1) +
                              days(static_cast<unsigned>(from.day())) + hours(12 + h) + minutes(34 - h) +
                              seconds(56 + s);
        const auto day = floor<days>(expected);
        ASSERT_EQ(date, testing_support::Packed(year_month_day(day))) << y << " " << mo << " " << d;
        const hh_mm_ss clock(expected - day);
        ASSERT_EQ(time, clock.hours().count() * 10000 + clock.minutes().count() * 100 + clock.seconds().count());
    }
    for (const std::int32_t n : {INT32_MIN, INT32_MAX}) {
        std::int32_t date = n, time = n;
        TIME_IncrementUTC(&date, &time, n, n, n, n, n, n);
        EXPECT_LT(date, 320000);
        EXPECT_GT(date, 10000);
        EXPECT_LT(static_cast<std::uint32_t>(time), 240000u);
    }
}

}  // namespace
}  // namespace dorvutil
