#include "dorvutil/time/format.h"

#include <gtest/gtest.h>

#include <string>

#include "time/clock_support.h"

namespace dorvutil {
namespace {

using testing_support::At;

constexpr std::int32_t kRoom = 64;

TEST(Format, Dates) {
    static constexpr struct {
        std::uint32_t flags;
        const char16_t *format, *expected;
    } kCases[] = {{0, nullptr, u"6/7/2011"},
                  {kDateShort, nullptr, u"6/7/2011"},
                  {kDateLong, nullptr, u"Tuesday, June 7, 2011"},
                  {kDateYearMonth, nullptr, u"June 2011"},
                  {0, u"dd.MM.yy", u"07.06.11"},
                  {0, u"ddd dddd MMM MMMM yyyy y gg|", u"Tue Tuesday Jun June 2011 11 |"},
                  {0, u"'d''M' d ''x'", u"d'M 7 x"},
                  {0, u"d 'open", u"7 open"},
                  {0, u"", u""}};
    const ORV_SYSTEMTIME date = At(2011, 6, 7);
    for (const auto& c : kCases) {
        char16_t out[kRoom];
        const std::int32_t length = TIME_GetDateFormat(0x409, c.flags, &date, c.format, out, 99, kRoom);
        EXPECT_EQ(std::u16string(out), c.expected);
        EXPECT_EQ(length, static_cast<std::int32_t>(std::u16string(c.expected).size()) + 1);
        EXPECT_EQ(TIME_GetDateFormat(0x409, c.flags, &date, c.format, nullptr, 99, 0), length);
    }
}

TEST(Format, Times) {
    static constexpr struct {
        int hour;
        std::uint32_t flags;
        const char16_t *format, *expected;
    } kCases[] = {{13, 0, nullptr, u"1:05:09 PM"},           {0, 0, nullptr, u"12:05:09 AM"},
                  {13, kTimeNoSeconds, nullptr, u"1:05 PM"}, {13, kTimeNoMinutes | kTimeNoMarker, nullptr, u"1"},
                  {3, kTime24Hours, nullptr, u"03:05:09"},   {13, 0, u"hh:m:s t H 'h' dd", u"01:5:9 P 13 h dd"}};
    for (const auto& c : kCases) {
        char16_t out[kRoom];
        const ORV_SYSTEMTIME time = At(0, 0, 0, c.hour, 5, 9);
        EXPECT_GT(TIME_GetTimeFormat(0x409, c.flags, &time, c.format, out, 99, kRoom, true), 0);
        EXPECT_EQ(std::u16string(out), c.expected);
    }
}

TEST(Format, FailsOnWhatIsNoDateAndWithoutRoom) {
    const ORV_SYSTEMTIME date = At(2011, 6, 7), none = At(2011, 6, 31), late = At(2011, 6, 7, 24);
    char16_t out[kRoom];
    EXPECT_EQ(TIME_GetDateFormat(0, 0, &none, nullptr, out, 0, kRoom), 0);
    EXPECT_EQ(TIME_GetTimeFormat(0, 0, &late, nullptr, out, 0, kRoom, false), 0);
    EXPECT_EQ(TIME_GetDateFormat(0, 0, &date, nullptr, nullptr, 0, kRoom), 0);
    EXPECT_EQ(TIME_GetDateFormat(0, 0, &date, nullptr, out, 0, -1), 0);
    for (std::int32_t size = 1; size <= 9; ++size) {
        std::u16string exact(static_cast<std::size_t>(size), u'#');
        EXPECT_EQ(TIME_GetDateFormat(0, 0, &date, nullptr, exact.data(), 0, size), size == 9 ? 9 : 0) << size;
        EXPECT_EQ(exact.back(), u'\0') << size;
    }
    EXPECT_GT(TIME_GetDateFormat(0, 0, nullptr, nullptr, out, 0, kRoom), 0) << "now";
    ORVustring text("kept");
    TIME_GetSystemLocaleDateString({}, text);
    EXPECT_STREQ(text.c_str(), "kept");
}

}  // namespace
}  // namespace dorvutil
