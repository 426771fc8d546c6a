#include "dorvutil/system/number_format.h"

#include <gtest/gtest.h>

#include <string>

#include "dorvutil/system/system_info.h"

namespace dorvutil {
namespace {

struct Case {
    const char* name;
    const char16_t* number;
    NumberFormat format;
    const char16_t* expected;  // null: refused
};

constexpr NumberFormat Plain(std::int32_t digits) { return {u".", u",", digits, 1}; }
constexpr NumberFormat Order(std::int32_t order) { return {u".", u",", 0, order}; }

constexpr Case kCases[] = {
    {"no group below a thousand", u"999", Plain(0), u"999"},
    {"groups from the right", u"1234567", Plain(0), u"1,234,567"},
    {"decimals are added", u"5", Plain(2), u"5.00"},
    {"rounded down", u"1.2349", Plain(2), u"1.23"},
    {"half goes up", u"0.125", Plain(2), u"0.13"},
    {"half goes away from zero", u"-2.5", Plain(0), u"-3"},
    {"carry makes a digit and a group", u"999.5", Plain(0), u"1,000"},
    {"zero has no sign", u"-0.004", Plain(2), u"0.00"},
    {"most decimals", u"1", Plain(9), u"1.000000000"},
    {"long marks", u"-1234.5", {u"::", u"\u202F.", 1, 1}, u"-1\u202F.234::5"},
    {"order 0", u"-12", Order(0), u"(12)"},
    {"order 4", u"-1234", Order(4), u"1,234 -"},
    {"too many decimals", u"1", Plain(10), nullptr},
    {"no such order", u"1", Order(5), nullptr},
    {"empty", u"", Plain(0), nullptr},
    {"sign alone", u"-", Plain(0), nullptr},
    {"plus sign", u"+1", Plain(0), nullptr},
};

TEST(FormatNumber, WritesAsTheLocaleDoes) {
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        char16_t text[64] = u"untouched";
        const std::int32_t units = FormatNumber(c.number, c.format, text, 64);
        const std::u16string expected = c.expected ? c.expected : u"untouched";
        EXPECT_EQ(std::u16string(text), expected);
        EXPECT_EQ(units, c.expected ? static_cast<std::int32_t>(expected.size()) + 1 : 0);
        EXPECT_EQ(FormatNumber(c.number, c.format, nullptr, 0), units) << "asked for the size";
        char16_t small[64] = u"untouched";
        if (units == 0) continue;
        EXPECT_EQ(FormatNumber(c.number, c.format, small, units - 1), 0) << "one unit short";
        EXPECT_EQ(std::u16string(small), u"untouched");
    }
}

TEST(FormatNumber, TakesNumbersOfAnyLength) {
    const std::u16string nines(3000, u'9');
    std::u16string text(6000, u'\0');
    const std::int32_t units = FormatNumber(u"-" + nines + u".9", Plain(0), text.data(), 6000);
    EXPECT_EQ(units, 1 + 3001 + 1000 + 1);
    EXPECT_EQ(text.substr(0, 7), u"-1,000,");
}

// The C locale, in which the tests run, writes no groups.
TEST(LocalNumber, TakesItsMarksFromTheCallerOrTheLocale) {
    char text[512] = "";
    EXPECT_EQ(System_GetLocalNumberStr("1.5", text, 5), 5) << "the locale's decimals";
    EXPECT_STREQ(text, "1.50");
    EXPECT_EQ(System_GetLocalNumberStr("15.", text, 5), 3) << "none without a fraction";
    EXPECT_EQ(System_GetLocalNumberStr("1.5", text, 6, 1, "\xE2\x82\xAC"), 6);
    EXPECT_STREQ(text,
                 "1\xE2\x82\xAC"
                 "5");
    EXPECT_EQ(System_GetLocalNumberStr("1.5", text, 5, 1, "\xE2\x82\xAC"), 0) << "one byte short";
    EXPECT_EQ(System_GetLocalNumberStr("1.5", nullptr, 0, 1, "\xE2\x82\xAC"), 6) << "asked for the size";
    EXPECT_EQ(System_GetLocalNumberStr("x", text, 512), 0);
    EXPECT_EQ(System_GetLocalNumberStr(std::string(254, '1').c_str(), text, 512), 255);
    EXPECT_EQ(System_GetLocalNumberStr(std::string(255, '1').c_str(), text, 512), 0) << "longer than its buffer";
    EXPECT_EQ(System_GetLocalNumberStr(nullptr, text, 512), 0);
}

}  // namespace
}  // namespace dorvutil
