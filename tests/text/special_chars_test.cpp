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
    static constexpr const char* kPairs[][2] = {
        {"A", "a"}, {"Z", "z"}, {"À", "à"}, {"Þ", "þ"}, {"Ÿ", "ÿ"}, {"\u008A", "\u009A"}, {"İ", "ı"},
        {"Ł", "ł"}, {"Ș", "ș"}, {"Œ", "œ"}, {"Ż", "ż"}, {"Ŗ", "ŗ"}, {"Ё", "ё"},           {"Џ", "џ"},
        {"А", "а"}, {"Я", "я"}, {"Ά", "ά"}, {"Σ", "σ"}, {"Ϋ", "ϋ"}, {"Ώ", "ώ"},           {"×", "×"},
        {"Ŋ", "Ŋ"}, {"Ѝ", "Ѝ"}, {"@", "@"}, {"€", "€"}, {"😀", "😀"}};
    for (const auto& [upper, lower] : kPairs) {
        EXPECT_EQ(Lower(upper), lower);
        EXPECT_EQ(Upper(lower), upper);
    }
    EXPECT_EQ(Upper("\u03C2ß\u00F7"), "\u03A3ß\u00F7");
}

TEST(Case, StopsWhereTheTextIsOutOfPlace) {
    EXPECT_EQ(Lower("ABCÄÖ", 4), "abcäÖ");
    EXPECT_EQ(Lower("AB\x80XY"), "ab\x80XY");
    EXPECT_EQ(Lower("A\xC3XY"), "a\xC3xy");
    static constexpr struct {
        const char* text;
        std::int32_t length;
        const char* lower;
    } kCut[] = {{"ABÄX", 3, "abÄX"}, {"abÄX", 0, "abÄX"}, {"A\xE2XY", 3, "a\xE2XY"}};
    for (const auto& c : kCut) {
        std::string text(c.text);
        EXPECT_STREQ(SpecialChar_tolower(text.data(), c.length, 99), c.lower);
    }
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
        const char* text;
        std::int32_t size;
        bool route;
        const char* expected;
    } kCases[] = {{"Ærø", 64, false, "Aro"},       {"Straße", 64, false, "Strasse"},
                  {"Œ Șș", 64, false, "Œ Șș"},     {"€ 😀", 64, false, "€ 😀"},
                  {"Ήρα ΰΪ", 64, false, "Ηρα υΙ"}, {"\u008C", 64, false, "E"},
                  {"Þþ", 64, false, "PP"},         {"М-10", 64, false, "М-10"},
                  {"М АЕР", 64, true, "M AER"},    {"Έéаем", 64, true, "Εeaem"},
                  {"aß", 3, false, "a"},           {"a€", 4, false, "a"},
                  {"a\x80z", 64, false, "a"},      {"a\xC3z", 64, false, "a\xC3z"},
                  {"a\xC3", 64, false, "a"},       {"abc", 1, false, ""}};
    for (const auto& c : kCases) EXPECT_EQ(Fold(c.text, c.size, c.route), c.expected) << c.text;
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

TEST(SpecialCharMgr, EverythingDoesWithoutIt) {
    ASSERT_NE(GetSpecCharMgr(), nullptr);
    {
        GetSpecCharMgr()->ReleaseTables();
        char out[8] = "#######";
        EXPECT_EQ(Lower("AÄ"), "AÄ");
        EXPECT_TRUE(SpecialChar_towlower(u'A') == u'a' && SpecialChar_towlower(u'Ä') == u'Ä');
        EXPECT_TRUE(SpecialChar_Anglicize("é") == nullptr && ChangeSpecialChars(out, 8, "é", 2) == nullptr);
        EXPECT_TRUE(SpecialChar_strcmp("a", "b") == 0 && SpecialChar_wcsicmp(u"a", u"b") == 0);
        EXPECT_TRUE(StringCompare2("a", 1, "b", 1) == 0 && StringCompare2("a", 1, "bb", 2) == -1);
        EXPECT_EQ(CSpecialCharMgr_GetDecodedSpacialChar(9, 14, out, 8, ISO8859_1), 0);
        EXPECT_STREQ(out, "");
        EXPECT_TRUE(ORVConvertToISO8859("ab\xE9z", 4, out, 8, ISO8859_1));
        EXPECT_STREQ(out, "ab\xE9z");
        new (GetSpecCharMgr()) CSpecialCharMgr;
    }
    EXPECT_EQ(Lower("AÄ"), "aä");
}

}  // namespace
}  // namespace dorvutil
