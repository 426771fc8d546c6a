#include "dorvutil/text/special_chars.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/text/compare.h"
#include "text/encoding_samples.h"

namespace dorvutil {
namespace {

using test::ExactCopy;

std::string Lower(std::string text, std::uint32_t maxChars = 99) {
    return SpecialChar_tolower(text.data(), static_cast<std::int32_t>(text.size()), maxChars);
}
std::string Upper(std::string text, std::uint32_t maxChars = 99) {
    return SpecialChar_toupper(text.data(), static_cast<std::int32_t>(text.size()), maxChars);
}

TEST(Case, PairsByName) {
    static constexpr struct {
        const char* upper;
        const char* lower;
        bool back;  // the lower-case form has this upper-case form
    } kPairs[] = {
        {"A", "a", true},           {"Z", "z", true},
        {"\u00C0", "\u00E0", true}, {"\u00DE", "\u00FE", true},
        {"\u0178", "\u00FF", true}, {"\u008A", "\u009A", true},
        {"\u0130", "\u0131", true}, {"\u0141", "\u0142", true},
        {"\u0218", "\u0219", true}, {"\u0152", "\u0153", true},
        {"\u017B", "\u017C", true}, {"\u0156", "\u0157", true},
        {"\u0401", "\u0451", true}, {"\u040F", "\u045F", true},
        {"\u0410", "\u0430", true}, {"\u042F", "\u044F", true},
        {"\u0386", "\u03AC", true}, {"\u03A3", "\u03C3", true},
        {"\u03AB", "\u03CB", true}, {"\u038F", "\u03CE", true},
        {"\u00D7", "\u00D7", true}, {"\u014A", "\u014A", true},
        {"\u040D", "\u040D", true}, {"@", "@", true},
        {"\u20AC", "\u20AC", true}, {"\U0001F600", "\U0001F600", true},
    };
    for (const auto& pair : kPairs) {
        EXPECT_EQ(Lower(pair.upper), pair.lower);
        EXPECT_EQ(Upper(pair.lower), pair.upper);
    }
    EXPECT_EQ(Upper("\u03C2ß\u00F7"), "\u03A3ß\u00F7");
}

TEST(Case, StopsWhereTheTextIsOutOfPlace) {
    EXPECT_EQ(Lower("ABCÄÖ", 4), "abcäÖ");
    EXPECT_EQ(Lower("AB\x80"
                    "CD"),
              "ab\x80"
              "CD");
    EXPECT_EQ(Lower("A\xC3"
                    "BC"),
              "a\xC3"
              "bc");
    EXPECT_EQ(Lower("ABÄ").size(), 4u);
    char crossing[] =
        "AB\xC3\x84"
        "C";
    EXPECT_STREQ(SpecialChar_tolower(crossing, 3, 99),
                 "ab\xC3\x84"
                 "C");
    EXPECT_STREQ(SpecialChar_tolower(crossing, 0, 99),
                 "ab\xC3\x84"
                 "C");
    char brokenToo[] =
        "A\xE2"
        "BC";
    EXPECT_STREQ(SpecialChar_tolower(brokenToo, 3, 99),
                 "a\xE2"
                 "BC");
    EXPECT_EQ(SpecialChar_toupper(nullptr, 3, 9), nullptr);
}

TEST(Case, WideUnits) {
    static constexpr struct {
        char16_t upper, lower;
    } kPairs[] = {{u'A', u'a'}, {u'Ä', u'ä'}, {u'Ÿ', u'ÿ'},     {u'Ω', u'ω'},    {u'Я', u'я'},
                  {u'1', u'1'}, {u'€', u'€'}, {0xD83D, 0xD83D}, {0xDE00, 0xDE00}};
    for (const auto& pair : kPairs) {
        EXPECT_EQ(SpecialChar_towlower(pair.upper), pair.lower);
        EXPECT_EQ(SpecialChar_towupper(pair.lower), pair.upper);
    }
    EXPECT_EQ(SpecialChar_towupper(u'ς'), u'Σ');
}

std::string Fold(std::string_view text, std::int32_t size = 64, bool route = false) {
    std::string out(static_cast<std::size_t>(size), '#');
    const auto src = ExactCopy(text);
    const auto length = static_cast<std::int32_t>(text.size());
    char* const dst = out.data();
    EXPECT_EQ(route ? SpecialChar_AnglicizeRouteNum(dst, size, src.get(), length)
                    : ChangeSpecialChars(dst, size, src.get(), length),
              dst);
    return out.c_str();
}

TEST(Fold, Texts) {
    static constexpr struct {
        const char* name;
        const char* text;
        std::int32_t size;
        bool route;
        const char* expected;
    } kCases[] = {
        {"ligature", "Ærø", 64, false, "Aro"},
        {"sharp s", "Straße", 64, false, "Strasse"},
        {"no entry", "Œuvre Șș €😀", 64, false, "Œuvre Șș €😀"},
        {"Greek stays Greek", "Ήρα ΰΪ", 64, false, "Ηρα υΙ"},
        {"control characters of 1252", "\u008C\u0083\u009F", 64, false, "EfY"},
        {"thorn", "Þþ", 64, false, "PP"},
        {"look-alikes stay", "М-10", 64, false, "М-10"},
        {"look-alikes for routes", "М-10 АЕΕРаеεмр", 64, true, "M-10 AEERaeemr"},
        {"fold goes before look-alike", "Έé", 64, true, "Εe"},
        {"no room for both letters", "aß", 3, false, "a"},
        {"no room for a character", "a€", 4, false, "a"},
        {"byte out of place ends", "a\x80z", 64, false, "a"},
        {"broken lead is copied", "a\xC3z", 64, false, "a\xC3z"},
        {"sequence across the end", "a\xC3", 64, false, "a"},
        {"just the terminator", "abc", 1, false, ""},
    };
    for (const auto& c : kCases) EXPECT_EQ(Fold(c.text, c.size, c.route), c.expected) << c.name;
    char kept[] = "kept";
    EXPECT_STREQ(ChangeSpecialChars(kept, 5, nullptr, 3), "kept");
    EXPECT_STREQ(ChangeSpecialChars(kept, 0, "a", 1), "kept");
    EXPECT_EQ(ChangeSpecialChars(nullptr, 5, "a", 1), nullptr);
    EXPECT_STREQ(SpecialChar_Anglicize(kept, 5, "é", 2), "e");
}

TEST(Fold, OneCharacter) {
    EXPECT_STREQ(SpecialChar_Anglicize("ßx"), "ss");
    EXPECT_STREQ(SpecialChar_Anglicize("İ"), "I");
    for (const char* const same : {"a", "", "€", "\xC3", "\xC1\x81", "\x80", "Ж"}) {
        EXPECT_EQ(SpecialChar_Anglicize(same), same);
    }
    EXPECT_EQ(SpecialChar_Anglicize(nullptr), nullptr);
}

// The registry's manager with its tables released, for the length of a scope.
class WithoutManager {
public:
    WithoutManager() { GetSpecCharMgr()->ReleaseTables(); }
    ~WithoutManager() { new (GetSpecCharMgr()) CSpecialCharMgr; }
};

TEST(SpecialCharMgr, EverythingDoesWithoutIt) {
    ASSERT_NE(GetSpecCharMgr(), nullptr);
    {
        const WithoutManager scope;
        char out[8] = "#######";
        EXPECT_EQ(Lower("AÄ"), "AÄ");
        EXPECT_EQ(SpecialChar_towlower(u'A'), u'a');
        EXPECT_EQ(SpecialChar_towlower(u'Ä'), u'Ä');
        EXPECT_EQ(SpecialChar_Anglicize("é"), nullptr);
        EXPECT_EQ(ChangeSpecialChars(out, 8, "é", 2), nullptr);
        EXPECT_EQ(SpecialChar_strcmp("a", "b"), 0);
        EXPECT_EQ(SpecialChar_wcsicmp(u"a", u"b"), 0);
        EXPECT_EQ(StringCompare2("a", 1, "b", 1), 0);
        EXPECT_EQ(StringCompare2("a", 1, "bb", 2), -1);
        EXPECT_EQ(CSpecialCharMgr_GetDecodedSpacialChar(9, 14, out, 8, ISO8859_1), 0);
        EXPECT_STREQ(out, "");
        EXPECT_TRUE(ORVConvertToISO8859("ab\xE9z", 4, out, 8, ISO8859_1));
        EXPECT_STREQ(out, "ab\xE9z");
    }
    EXPECT_EQ(Lower("AÄ"), "aä");
}

}  // namespace
}  // namespace dorvutil
