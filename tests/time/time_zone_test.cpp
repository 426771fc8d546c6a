#include "dorvutil/time/time_zone.h"

#include <gtest/gtest.h>

#include <cstring>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/platform/time_zone.h"
#include "dorvutil/time/clock.h"
#include "dorvutil/time/file_time.h"
#include "dorvutil/time/time_zone_util.h"
#include "time/clock_support.h"

namespace dorvutil {
namespace {

using testing_support::At;
using testing_support::TicksAt;

using TimeZones = testing_support::ShiftedClock;
using Clocks = testing_support::ShiftedClock;

constexpr char kBerlin[] = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr char kAuckland[] = "NZST-12NZDT,M9.5.0,M4.1.0/3";

// month, weekday, week and hour of a switch as one number
int Rule(const ORV_SYSTEMTIME& date) {
    return date.wMonth * 10000 + date.wDayOfWeek * 1000 + date.wDay * 100 + date.wHour;
}

TEST_F(TimeZones, RulesOfTheSystemsZone) {
    static constexpr struct {
        const char* zone;
        int month;
        std::uint32_t state;
        std::int32_t bias, daylightBias;
        int toStandard, toDaylight;
        const char16_t *standardName, *daylightName;
    } kCases[] = {
        {kBerlin, 1, 1, -60, -60, 100503, 30502, u"CET", u"CEST"},
        {kBerlin, 7, 2, -60, -60, 100503, 30502, u"CET", u"CEST"},
        {"EST5EDT,M3.2.0,M11.1.0", 7, 2, 300, -60, 110102, 30202, u"EST", u"EDT"},
        {kAuckland, 1, 2, -720, -60, 40103, 90502, u"NZST", u"NZDT"},
        {"IST-1GMT0,M10.5.0,M3.5.0/1", 1, 1, 0, -60, 100502, 30501, u"GMT", u"IST"},  // winter time as the exception
        {"<+0530>-5:30", 7, 0, -330, 0, 0, 0, u"+0530", u"+0530"},
        {"UTC0", 7, 0, 0, 0, 0, 0, u"UTC", u"UTC"},
        {"///no such zone", 7, 0, 0, 0, 0, 0, nullptr, nullptr},
        {":/dev/null", 7, 0, 0, 0, 0, 0, nullptr, nullptr}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.zone);
        SetSystemZone(c.zone);
        SetNow(TicksAt(At(2011, c.month, 15)));
        ORV_TIME_ZONE_INFORMATION zone;
        ASSERT_EQ(TIME_GetTimeZoneInformation(&zone), c.state);
        EXPECT_EQ(zone.Bias, c.bias);
        EXPECT_EQ(zone.StandardBias, 0);
        EXPECT_EQ(zone.DaylightBias, c.daylightBias);
        EXPECT_EQ(Rule(zone.StandardDate), c.toStandard);
        EXPECT_EQ(Rule(zone.DaylightDate), c.toDaylight);
        if (c.standardName) {
            EXPECT_EQ(std::u16string(zone.StandardName), c.standardName);
            EXPECT_EQ(std::u16string(zone.DaylightName), c.daylightName);
        }
    }
    EXPECT_EQ(TIME_GetTimeZoneInformation(nullptr), kTimeZoneInvalid);
    EXPECT_FALSE(TIME_IsClockSetForAutoDST());
}

TEST_F(TimeZones, AZoneThatIsSetTellsTheSameTimeAsTheSystems) {
    for (const char* const name :
         {kBerlin, "EST5EDT,M3.2.0,M11.1.0", kAuckland, "AAA0BBB,M1.1.0/0,M12.5.6/23", "UTC0", "<-0330>3:30"}) {
        SCOPED_TRACE(name);
        SetSystemZone(name);
        SetNow(TicksAt(At(2011, 5, 1)));
        UseSystemTimeZone();
        ORV_TIME_ZONE_INFORMATION zone, back;
        const std::uint32_t state = TIME_GetTimeZoneInformation(&zone);
        ASSERT_NE(TIME_SetTimeZoneInformation(&zone), 0);
        EXPECT_EQ(TIME_GetTimeZoneInformation(&back), state);
        EXPECT_EQ(std::memcmp(&zone, &back, sizeof(zone)), 0);
        const std::uint64_t begin = TicksAt(At(2010, 12, 31)), end = TicksAt(At(2013, 1, 1));
        for (std::uint64_t at = begin; at < end; at += 1800 * calendar::kTicksPerSecond) {
            std::int32_t expected = 0, bias = 0;
            SetNow(at + calendar::kTicksPerSecond);
            ASSERT_TRUE(platform::ReadZoneBias(at + calendar::kTicksPerSecond, expected));
            ASSERT_TRUE(CurrentBias(bias));
            ASSERT_EQ(bias, expected) << (at - begin) / calendar::kTicksPerSecond / 60 << " minutes";
        }
    }
}

TEST_F(TimeZones, DatesWithAYearSwitchOnce) {
    ORV_TIME_ZONE_INFORMATION zone;
    zone.Bias = 60;
    zone.StandardBias = 10;
    zone.DaylightBias = -30;
    zone.DaylightDate = At(2011, 3, 10, 2);  // 03:10 UTC
    zone.StandardDate = At(2011, 9, 20, 2);  // 02:30 UTC
    const auto isDaylight = [&](auto... fields) { return IsDaylightAt(zone, TicksAt(At(fields...))); };
    EXPECT_TRUE(!isDaylight(2011, 3, 10, 3, 9, 59) && isDaylight(2011, 3, 10, 3, 10));
    EXPECT_TRUE(isDaylight(2011, 9, 20, 2, 29, 59) && !isDaylight(2011, 9, 20, 2, 30));
    EXPECT_FALSE(isDaylight(2012, 6, 1));
}

TEST_F(TimeZones, WhatIsNoZoneIsNotSet) {
    ORV_TIME_ZONE_INFORMATION good;
    good.DaylightDate = {0, 3, 0, 5, 2, 0, 0, 0};
    good.StandardDate = {0, 10, 0, 5, 3, 0, 0, 0};
    const auto isRefused = [&](auto damage) {
        ORV_TIME_ZONE_INFORMATION zone = good;
        damage(zone);
        return TIME_SetTimeZoneInformation(&zone) == 0;
    };
    EXPECT_TRUE(isRefused([](auto& zone) { zone.Bias = 1441; }));
    EXPECT_TRUE(isRefused([](auto& zone) { zone.StandardBias = INT32_MIN; }));
    EXPECT_TRUE(isRefused([](auto& zone) { zone.DaylightBias = INT32_MAX; }));
    for (const ORV_SYSTEMTIME& date : {At(0, 0, 5), At(0, 13, 5), At(0, 10, 6), At(0, 10, 0), At(0, 10, 5, 24),
                                       At(2011, 2, 29), ORV_SYSTEMTIME{0, 10, 7, 5, 0, 0, 0, 0}}) {
        EXPECT_TRUE(isRefused([&](auto& zone) { zone.StandardDate = date; })) << date.wMonth << " " << date.wDay;
    }
    EXPECT_EQ(TIME_SetTimeZoneInformation(nullptr), 0);
    EXPECT_NE(TIME_SetTimeZoneInformation(&good), 0);
}

TEST_F(Clocks, LocalTimeFollowsTheBiasInForceNow) {
    SetSystemZone(kBerlin);
    SetNow(TicksAt(At(2011, 7, 15, 23, 30)));
    ORV_SYSTEMTIME utc, local, winter = At(2011, 1, 15, 12);
    TIME_GetSystemTime(&utc);
    TIME_GetLocalTime(&local);
    EXPECT_EQ(utc.wDay * 10000 + utc.wHour * 100 + utc.wMinute, 152330);
    EXPECT_EQ(local.wDay * 10000 + local.wHour * 100 + local.wMinute, 160130);
    ASSERT_TRUE(TIME_ORVSystemTimeToORVLocalTime(&winter, &local));
    EXPECT_EQ(local.wHour, 14) << "summer bias, winter date";
    EXPECT_FALSE(TIME_ORVSystemTimeToORVLocalTime(nullptr, &local) ||
                 TIME_ORVSystemTimeToORVLocalTime(&winter, nullptr));
    ORV_FILETIME time = calendar::FileTime(TicksAt(winter)), back;
    ASSERT_NE(TIME_FileTimeToLocalTime(&time, &local), 0);
    EXPECT_EQ(local.wHour, 14);
    ASSERT_NE(TIME_FileTimeToLocalFileTime(&time, &back), 0);
    ASSERT_NE(TIME_LocalFileTimeToFileTime(&back, &back), 0);
    EXPECT_EQ(TIME_CompareFileTime(&time, &back), 0);
    const ORV_FILETIME first{}, last{0xFFFFFFFF, 0xFFFFFFFF};
    EXPECT_EQ(TIME_LocalFileTimeToFileTime(&first, &back) + TIME_FileTimeToLocalFileTime(&last, &back), 0);
}

std::uint64_t g_clock = 0;
bool TakeClock(std::uint64_t ticks) { return (g_clock = ticks) != 0; }
bool RefuseClock(std::uint64_t) { return false; }

TEST_F(Clocks, SettingPassesUtcOnAndReportsRefusal) {
    platform::ReplaceClockSetter(TakeClock);
    SetSystemZone("EST5");
    const ORV_SYSTEMTIME time = At(2011, 7, 15, 23, 30), none = At(2011, 2, 30);
    EXPECT_NE(TIME_SetSystemTime(&time), 0);
    EXPECT_EQ(g_clock, TicksAt(time));
    EXPECT_NE(TIME_SetLocalTime(&time), 0);
    EXPECT_EQ(g_clock, TicksAt(At(2011, 7, 16, 4, 30)));
    EXPECT_EQ(TIME_SetSystemTime(&none) + TIME_SetLocalTime(&none), 0);
    EXPECT_EQ(TIME_SetSystemTime(nullptr) + TIME_SetLocalTime(nullptr), 0);
    platform::ReplaceClockSetter(RefuseClock);
    EXPECT_EQ(TIME_SetSystemTime(&time) + TIME_SetLocalTime(&time), 0);
    platform::ReplaceClockSetter(nullptr);
    const ORV_SYSTEMTIME beforeEveryClock = At(1650, 1, 1);
    EXPECT_EQ(TIME_SetSystemTime(&beforeEveryClock), 0);
}

TEST_F(Clocks, NowInEveryForm) {
    SetNow(TicksAt(At(2045, 3, 9, 4, 5, 6)));
    EXPECT_EQ(TIME_GetEpochTimeStamp(), static_cast<std::int32_t>(2372645106u)) << "low 32 bits";
    std::int32_t date = 0, time = 0;
    TIME_CurrentTimeToUTC(&date, &time);
    EXPECT_EQ(date, 90345);
    EXPECT_EQ(time, 40506);
    TIME_EncodeUTCDate(nullptr, nullptr);
    ORV_UTCTIMESTAMP stamp;
    EXPECT_TRUE(TIME_GetCurrentUTCDateTime(&stamp));
    EXPECT_EQ(stamp, ORV_UTCTIMESTAMP(90345, 40506));
    EXPECT_FALSE(TIME_GetCurrentUTCDateTime(nullptr));
    TIME_GetSystemTime(nullptr);
    TIME_GetLocalTime(nullptr);
    const std::uint32_t before = TIME_GetTickCount();
    platform::ShiftTick(0x80000000u);
    EXPECT_LT(TIME_GetTickCount() - before - 0x80000000u, 60'000u) << "milliseconds";
    platform::ShiftTick(0);
}

class HostZones : public CTimeZoneUtil {
public:
    bool IsImplemented() override { return true; }
    bool HasDefaults() { return m_minOffset == -1440 && m_maxOffset == 1440 && !m_currentZone && !PopulateTimeZones(); }
    using CTimeZoneUtil::m_currentZone;
    using CTimeZoneUtil::m_regionFilter;
    using CTimeZoneUtil::SortTimeZones;
};

TEST(TimeZoneUtil, TheStubKnowsNothing) {
    CTimeZoneUtil* const zones = GetTimeZoneUtil();
    ASSERT_NE(zones, nullptr);
    ORVustring name("kept");
    EXPECT_FALSE(zones->IsImplemented() || zones->GetTimeZoneName(1, name) || zones->RestoreTimeZone(1) ||
                 zones->SetCurrentTimeZone(1u) || zones->SetCurrentTimeZone(static_cast<const DstData*>(nullptr)));
    EXPECT_FALSE(zones->GetTimeZoneCount() || zones->GetTimeZoneDataCount() || zones->GetTimeZoneData(0, name, name) ||
                 zones->GetCurrentTimeZoneUIIndex());
    EXPECT_STREQ(name.c_str(), "kept");
}

TEST(TimeZoneUtil, ReadsTwoFieldsOfTheHostsRecord) {
    unsigned char east[66] = {}, west[66] = {};
    east[24] = 1;  // the sort key is 1, the other -1
    std::memset(west + 24, 0xFF, 4);
    east[65] = 200;
    DstData* const a = reinterpret_cast<DstData*>(east);
    DstData* const b = reinterpret_cast<DstData*>(west);
    EXPECT_EQ(HostZones::SortTimeZones(&a, &b), -1);
    EXPECT_EQ(HostZones::SortTimeZones(&b, &a), 1);
    EXPECT_EQ(HostZones::SortTimeZones(&a, &a), 1);
    HostZones zones;
    EXPECT_TRUE(zones.HasDefaults());
    zones.m_currentZone = a;
    EXPECT_EQ(zones.GetCurrentTimeZoneUIIndex(), 200);
    zones.SetRegionFilter(9);
    EXPECT_EQ(zones.m_regionFilter, 9);
}

}  // namespace
}  // namespace dorvutil
