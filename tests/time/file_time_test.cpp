#include "dorvutil/time/file_time.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "dorvutil/time/calendar.h"
#include "dorvutil/time/system_records.h"
#include "time/clock_support.h"

namespace dorvutil {
namespace {

using calendar::FileTime;
using calendar::Ticks;
using testing_support::At;
using testing_support::TicksAt;

constexpr std::uint64_t kDay = 864'000'000'000;

TEST(FileTime, AgreesWithTheCalendarFrom1601To30827) {
    constexpr std::int64_t kFirst = -134774, kLast = 10'540'166;  // days from 1970
    std::int64_t tried = 0;
    for (std::int64_t days = kFirst; days <= kLast; days += days < 60'000 ? 1 : 41, ++tried) {
        const auto n = static_cast<std::uint64_t>(days - kFirst);
        const std::uint64_t ticks = n * kDay + n * 7919 % 86'400'000 * 10'000;
        const auto expected = testing_support::Calendar(days);
        ORV_SYSTEMTIME time;
        const ORV_FILETIME in = FileTime(ticks);
        ORV_FILETIME out;
        ASSERT_NE(TIME_FileTimeToSystemTime(&in, &time), 0);
        ASSERT_EQ(time.wYear, static_cast<int>(expected.year())) << days;
        ASSERT_EQ(time.wMonth, static_cast<unsigned>(expected.month())) << days;
        ASSERT_EQ(time.wDay, static_cast<unsigned>(expected.day())) << days;
        ASSERT_EQ(time.wDayOfWeek, std::chrono::weekday(std::chrono::sys_days(expected)).c_encoding()) << days;
        ASSERT_NE(TIME_SystemTimeToFileTime(&time, &out), 0) << days;
        ASSERT_EQ(Ticks(out), ticks) << days;
    }
    EXPECT_GT(tried, 400'000);
}

TEST(FileTime, WhatIsNoTimeIsRefused) {
    const ORV_SYSTEMTIME bad[] = {
        {1600, 1, 0, 1, 0, 0, 0, 0},  {30828, 1, 0, 1, 0, 0, 0, 0}, {2011, 0, 0, 1, 0, 0, 0, 0},
        {2011, 13, 0, 1, 0, 0, 0, 0}, {2011, 2, 0, 29, 0, 0, 0, 0}, {2012, 2, 0, 30, 0, 0, 0, 0},
        {2011, 1, 0, 0, 0, 0, 0, 0},  {2011, 4, 0, 31, 0, 0, 0, 0}, {2011, 1, 0, 1, 24, 0, 0, 0},
        {2011, 1, 0, 1, 0, 60, 0, 0}, {2011, 1, 0, 1, 0, 0, 60, 0}, {2011, 1, 0, 1, 0, 0, 0, 1000}};
    for (ORV_SYSTEMTIME time : bad) {
        ORV_FILETIME out{1, 2};
        EXPECT_EQ(TIME_SystemTimeToFileTime(&time, &out), 0) << time.wYear;
        EXPECT_EQ(out.dwHighDateTime, 2u);
        const ORV_SYSTEMTIME before = time;
        TIME_AddTime(&time, 1, 1);
        EXPECT_EQ(std::memcmp(&time, &before, sizeof(time)), 0) << time.wYear;
    }
    ORV_SYSTEMTIME time;
    const ORV_FILETIME last = FileTime(0x7FFF'FFFF'FFFF'FFFF), beyond = FileTime(0x8000'0000'0000'0000);
    EXPECT_NE(TIME_FileTimeToSystemTime(&last, &time), 0);
    EXPECT_EQ(time.wYear, 30828);
    EXPECT_EQ(TIME_FileTimeToSystemTime(&beyond, &time), 0);
    EXPECT_EQ(TIME_FileTimeToSystemTime(nullptr, &time) + TIME_FileTimeToSystemTime(&last, nullptr), 0);
    EXPECT_EQ(TIME_SystemTimeToFileTime(nullptr, nullptr) + TIME_FileTimeToLocalFileTime(nullptr, nullptr), 0);
    TIME_AddTime(nullptr, 1, 1);
}

TEST(FileTime, AddsHoursMinutesAndDays) {
    static constexpr struct {
        std::int32_t hours, minutes;
        ORV_SYSTEMTIME expected;
    } kCases[] = {{1, 1, {2011, 1, 6, 1, 1, 1, 1, 0}},
                  {-1, 30, {2010, 12, 5, 31, 23, 30, 1, 0}},
                  {INT32_MAX, INT32_MAX, {2011, 1, 6, 1, 0, 0, 1, 0}},  // beyond every time
                  {INT32_MIN, INT32_MIN, {2011, 1, 6, 1, 0, 0, 1, 0}},
                  {0, INT32_MIN, {2011, 1, 6, 1, 0, 0, 1, 0}}};
    for (const auto& c : kCases) {
        ORV_SYSTEMTIME time{2011, 1, 6, 1, 0, 0, 1, 0};
        TIME_AddTime(&time, c.hours, c.minutes);
        EXPECT_EQ(std::memcmp(&time, &c.expected, sizeof(time)), 0) << c.hours << " " << time.wYear;
    }
    ORV_FILETIME time = FileTime(10 * kDay + 5);
    TIME_AddDaysToDate(time, -3, time);
    EXPECT_EQ(Ticks(time), 7 * kDay + 5);
    TIME_AddDaysToDate(time, INT32_MIN, time);
    EXPECT_EQ(Ticks(time), 7 * kDay + 5 - 0x8000'0000u * kDay) << "modulo 2^64";
}

TEST(FileTime, Differences) {
    const auto diff = [](std::int64_t ticks, std::int32_t unit) {
        const ORV_FILETIME a = FileTime(100 * kDay), b = FileTime(100 * kDay + static_cast<std::uint64_t>(ticks));
        return TIME_GetDateDiff(a, b, static_cast<ETimeDiffReturnType>(unit));
    };
    constexpr auto kOneDay = std::int64_t{kDay};
    constexpr std::int32_t kUnits[] = {1, 24, 1440, 86400, 86400000, 0};  // 0: too many
    for (std::int32_t unit = 0; unit < 6; ++unit) EXPECT_EQ(diff(kOneDay, unit), kUnits[unit]) << unit;
    for (std::int32_t unit = 0; unit < 5; ++unit) EXPECT_EQ(diff(-kOneDay, unit), -kUnits[unit]) << unit;
    EXPECT_EQ(diff(25 * kOneDay, 4), 0);
    EXPECT_EQ(diff(kOneDay - 1, 0) + diff(1 - kOneDay, 0) + diff(-9999, 4), 0) << "cut towards zero";
    EXPECT_EQ(diff(7, -1) + diff(-7, 99), 0) << "ticks";
    EXPECT_EQ(diff(0x7FFFFFFF, 5), 0x7FFFFFFF);
    EXPECT_EQ(diff(0x80000000, 5), 0);
    EXPECT_EQ(diff(-0x80000000LL, 5), INT32_MIN);
    EXPECT_EQ(diff(-0x80000001LL, 5), INT32_MAX);
}

TEST(FileTime, OrderLooksAtTheHighHalfFirst) {
    const ORV_FILETIME times[] = {{0, 0}, {0xFFFFFFFF, 0}, {0, 1}, {0, 0x80000000}, {1, 0x80000000}};
    for (const ORV_FILETIME& a : times) {
        for (const ORV_FILETIME& b : times) {
            const int expected = &a < &b ? -1 : &a > &b ? 1 : 0;
            EXPECT_EQ(TIME_CompareFileTime(&a, &b), expected);
            EXPECT_EQ(TIME_ORV_FILETIME_Compare(a, b), expected);
            EXPECT_EQ(a < b, expected < 0);
        }
    }
    EXPECT_EQ(TIME_CompareFileTime(nullptr, times), 0);
}

TEST(FileTime, SecondsAndText) {
    ORV_FILETIME time;
    TIME_FileTimeToORVFileTime(std::int64_t{0}, &time);
    EXPECT_EQ(Ticks(time), 116444736000000000u);
    for (const std::int64_t seconds : {INT64_MIN, INT64_MAX}) TIME_FileTimeToORVFileTime(seconds, &time);
    TIME_FileTimeToORVFileTime(std::int64_t{0}, nullptr);
    char buffer[32] = "untouched";
    TIME_FileTimeToString(time, buffer, 0);
    TIME_FileTimeToString(time, nullptr, 32);
    EXPECT_STREQ(buffer, "untouched");
    TIME_FileTimeToString(FileTime(TicksAt(At(2011, 6, 17, 8, 5, 9))), buffer, 32);
    EXPECT_STREQ(buffer, "06/17/2011 08:05:09 GMT");
    TIME_FileTimeToString(FileTime(TicksAt(At(2011, 6, 17, 8, 5, 9))), buffer, 6);
    EXPECT_STREQ(buffer, "06/17");
    TIME_FileTimeToString({0, 0xFFFFFFFF}, buffer, 32);
    EXPECT_STREQ(buffer, "00/00/00 00:00:00 GMT");
}

template <class Own, class System>
void ExpectCopies(void (*there)(const Own*, System*), void (*back)(const System*, Own*)) {
    Own own, copy;
    System system{};
    for (std::size_t i = 0; i < sizeof(own); ++i)
        reinterpret_cast<unsigned char*>(&own)[i] = static_cast<unsigned char>(i + 1);
    there(&own, &system);
    back(&system, &copy);
    EXPECT_EQ(std::memcmp(&own, &system, sizeof(own)) + std::memcmp(&own, &copy, sizeof(own)), 0);
    there(nullptr, &system);
    back(&system, nullptr);
}

TEST(FileTime, SystemRecordsAreCopiedWhole) {
    ExpectCopies<ORV_FILETIME, FILETIME>(TIME_ORVFileTimeToFileTime, TIME_FileTimeToORVFileTime);
    ExpectCopies(TIME_ORVSystemTimeToSystemTime, TIME_SystemTimeToORVSystemTime);
    ExpectCopies(TIME_ORVTimeZoneInfoToTimeZoneInfo, TIME_TimeZoneInfoToORVTimeZoneInfo);
}

TEST(FileTime, OfFiles) {
    const std::string path = testing::TempDir() + "file_time_\xC3\xA4.tmp";
    std::FILE* const file = std::fopen(path.c_str(), "w");
    ASSERT_NE(file, nullptr);
    std::fclose(file);
    const std::uint64_t now = platform::FileTimeNow();
    const ORVwstring wide(path.c_str(), static_cast<std::int32_t>(path.size()));
    ORV_FILETIME created, accessed, written, times[3];
    ASSERT_EQ(TIME_GetFileTime(path.c_str(), &created, &accessed, &written), 1);
    for (const ORV_FILETIME& time : {created, accessed, written}) {
        EXPECT_LT(now - Ticks(time), 60 * calendar::kTicksPerSecond);
        EXPECT_EQ(Ticks(time) % calendar::kTicksPerSecond, 0u) << "whole seconds";
    }
    EXPECT_EQ(TIME_GetFileTime(ORVustring(path.c_str()), &times[0], nullptr, nullptr), 1);
    EXPECT_EQ(TIME_GetFileTime(wide, nullptr, &times[1], nullptr), 1);
    EXPECT_EQ(TIME_GetFileTime(wide.T_str(), nullptr, nullptr, &times[2]), 1);
    EXPECT_TRUE(Ticks(times[0]) == Ticks(created) && Ticks(times[2]) == Ticks(written));
    const ORVwstring cut((std::u16string(259, u'/') + u"none").c_str());
    EXPECT_EQ(TIME_GetFileTime(cut.T_str(), nullptr, nullptr, nullptr), 1) << "the path ends after 259 characters";
    EXPECT_EQ(TIME_GetFileTime(cut, nullptr, nullptr, nullptr), 0);
    const std::u16string pair = std::u16string(259, u'/') + u"\xD83D\xDE00";
    EXPECT_EQ(TIME_GetFileTime(pair.c_str(), nullptr, nullptr, nullptr), 1) << "a pair across the end is left out";
    EXPECT_EQ(TIME_GetFileTime(u"/\xD800", nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(TIME_GetFileTime("", &created, &accessed, &written), 0);
    EXPECT_EQ(TIME_GetFileTime(static_cast<const char16_t*>(nullptr), &created, &accessed, &written), 0);
    EXPECT_EQ(TIME_SetFileTime(nullptr, &created, &accessed, &written), 0);
    std::remove(path.c_str());
    EXPECT_EQ(TIME_GetFileTime(path.c_str(), &created, &accessed, &written), 0);
}

}  // namespace
}  // namespace dorvutil
