#include "dorvutil/text/sanitize.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "dorvutil/text/string.h"
#include "text/encoding_samples.h"

namespace dorvutil {
namespace {

using test::ExactCopy;

TEST(SanitizeString, Narrow) {
    static constexpr struct {
        std::string_view text;
        std::int32_t size;
        const char* expected;
    } kCases[] = {{"Café-Bar", 99, "CaféBar"},
                  {"St. John's", 99, "StJohns"},
                  {"A 1/2", 99, "A12"},
                  {"a\x80\xC3z", 99, "az"},
                  {"a\xC3", 99, "a"},
                  {"abc", 3, "ab"},
                  {"aéb", 3, "a"},
                  {{"a\0b", 3}, 99, "a"},
                  {"€ 😀", 99, "€😀"},
                  {"abc", 1, ""}};
    for (const auto& c : kCases) {
        std::string out(static_cast<std::size_t>(c.size), '#');
        const auto length = static_cast<std::int32_t>(c.text.size());
        const std::int32_t written = SanitizeString(out.data(), c.size, ExactCopy(c.text).get(), length);
        EXPECT_EQ(written, static_cast<std::int32_t>(std::strlen(c.expected))) << c.text;
        EXPECT_STREQ(out.c_str(), c.expected);
    }
    char out[4] = "abc";
    EXPECT_EQ(SanitizeString(nullptr, 4, "a", 1), 0);
    EXPECT_EQ(SanitizeString(out, 0, "a", 1), 0);
    EXPECT_STREQ(out, "abc");
    EXPECT_EQ(SanitizeString(out, 4, static_cast<const char*>(nullptr), 1), 0);
    EXPECT_STREQ(out, "");
    char inPlace[] = "a-b c";
    EXPECT_EQ(SanitizeString(inPlace, 6, inPlace, 5), 3);
    EXPECT_STREQ(inPlace, "abc");
}

TEST(SanitizeString, WideAndObjects) {
    char16_t out[6];
    EXPECT_EQ(SanitizeString(out, 6, u"é-\u0080 z", 5), 3);
    EXPECT_EQ(std::u16string(out), u"é\u0080z");
    EXPECT_EQ(SanitizeString(out, 3, u"abc", 3), 2);
    EXPECT_EQ(SanitizeString(out, 6, static_cast<const char16_t*>(nullptr), 3), 0);
    EXPECT_TRUE(SanitizeString(ORVustring("St. John's")) == "StJohns");
    EXPECT_TRUE(SanitizeString(ORVwstring(u"St. Jöhn's")) == u"StJöhns");
    EXPECT_EQ(SanitizeString(ORVustring(std::string(300, 'a').c_str())).length(), 254u);
    EXPECT_EQ(SanitizeString(ORVustring((std::string(253, 'a') + "é").c_str())).length(), 253u);
    EXPECT_EQ(SanitizeString(ORVwstring(std::u16string(300, u'a').c_str())).length(), 254u);
    EXPECT_EQ(SanitizeString(ORVustring()).length(), 0u);
}

TEST(FilterString, SharpS) {
    static constexpr struct {
        const char* text;
        std::int32_t length, size;
        const char* expected;
    } kCases[] = {
        {"Straße", 7, 99, "Strasse"}, {"ßß", 4, 4, "ss"},        {"aßb", 4, 3, "a"},  {"aé", 3, 3, "a"},
        {"abc", 2, 99, "ab"},         {"a\xC3", 2, 99, "a\xC3"}, {"ab", 9, 99, "ab"}, {"abc", 3, 1, ""},
    };
    for (const auto& c : kCases) {
        std::string out(static_cast<std::size_t>(c.size), '\0');
        const std::int32_t written = FilterString(out.data(), c.size, c.text, c.length);
        EXPECT_EQ(written, static_cast<std::int32_t>(std::strlen(c.expected)));
        EXPECT_STREQ(out.c_str(), c.expected);
    }
    char out[4] = "";
    EXPECT_TRUE(FilterString(out, 4, "abc", 0) == 0 && FilterString(out, 4, nullptr, 3) == 0);
    EXPECT_EQ(FilterString(nullptr, 4, "abc", 3), 0);
}

}  // namespace
}  // namespace dorvutil
