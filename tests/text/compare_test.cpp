#include "dorvutil/text/compare.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "dorvutil/text/chars.h"
#include "dorvutil/text/special_chars.h"
#include "text/encoding_samples.h"

namespace dorvutil {
namespace {

using test::ExactCopy;

int Sign(int value) { return (value > 0) - (value < 0); }
std::int32_t Length(const char* s) { return static_cast<std::int32_t>(std::strlen(s)); }

TEST(SpecialCharCompare, ModesAndOrder) {
    static constexpr struct {
        const char *a, *b;
        int exact, noCase, noAccents, neither;  // signs
    } kCases[] = {{"Müller", "MULLER", 1, 1, 1, 0},   {"müller", "MÜLLER", 1, 0, 1, 0},
                  {"Müller", "Muller", 1, 1, 0, 0},   {"straße", "strase", 1, 1, 0, 1},
                  {"straße", "strasse", 1, 1, -1, 1}, {"Ber", "Berlin", -1, -1, -1, -1},
                  {"", "a", -1, -1, -1, -1},          {nullptr, "", 0, 0, 0, 0},
                  {"ÿ", "€", -1, -1, -1, -1},         {"ΟΔΟΣ", "οδος", -1, 0, -1, 0},
                  {"Œ", "œ", -1, 0, -1, 0},           {"😀a", "😀b", -1, -1, -1, -1},
                  {"a\xFF", "aÿ", 1, 1, 1, 1},        {"\xC3z", "\xC3\xA9", -1, -1, 1, 1},
                  {"\xC1\x81", "A", 1, 1, 1, 1},      {"ı", "I", 1, 1, 1, 0}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::PrintToString(c.a) + " " + c.b);
        EXPECT_EQ(Sign(SpecialChar_strcmp(c.a, c.b)), c.exact);
        EXPECT_EQ(Sign(SpecialChar_stricmp(c.a, c.b)), c.noCase);
        EXPECT_EQ(Sign(SpecialChar_strcmp2(c.a, c.b)), c.noAccents);
        EXPECT_EQ(Sign(SpecialChar_stricmp2(c.a, c.b)), c.neither);
        EXPECT_EQ(Sign(SpecialChar_stricmp2(c.b, c.a)), -c.neither);
    }
}

TEST(SpecialCharCompare, CountsCharactersNotBytes) {
    EXPECT_EQ(SpecialChar_strnicmp("äöX", "ÄÖY", 2), 0);
    EXPECT_LT(SpecialChar_strnicmp("äöX", "ÄÖY", 3), 0);
    EXPECT_EQ(SpecialChar_strncmp2("äöX", "aoY", 2), 0);
    EXPECT_EQ(SpecialChar_strnicmp2("äöX", "AOY", 2), 0);
    EXPECT_EQ(SpecialChar_strnicmp2("a", "b", 0), 0);
    EXPECT_EQ(SpecialChar_stricmpSanitize("St. John's", "stjohns"), 0);
    EXPECT_NE(SpecialChar_stricmpSanitize("St. John's", "stjohn"), 0);
    EXPECT_EQ(SpecialChar_stricmpSanitize(nullptr, " "), 0);
}

TEST(WideCompare, ModesAndLengths) {
    static constexpr struct {
        const char16_t *a, *b;
        std::uint32_t n;
        int noCase, neither;
    } kCases[] = {{u"Müller", u"MULLER", 9, 1, 0},    {u"ÄÖ", u"äö", 9, 0, 0},
                  {u"abX", u"abY", 2, 0, 0},          {u"😀", u"😁", 2, -1, -1},
                  {u"\xD83D", u"\xD83Dz", 9, -1, -1}, {u"\uFFFD", u"😀", 9, -1, -1},
                  {nullptr, u"a", 9, -1, -1},         {u"ab", u"a", 9, 1, 1}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(&c - kCases);
        EXPECT_EQ(Sign(SpecialChar_wcsnicmp(c.a, c.b, c.n)), c.noCase);
        EXPECT_EQ(Sign(SpecialChar_wcsnicmp2(c.a, c.b, c.n)), c.neither);
        EXPECT_TRUE(c.n != 9 || Sign(SpecialChar_wcsicmp(c.a, c.b)) == c.noCase);
    }
    EXPECT_EQ(StringCompareW(u"äb", 2, u"ÄBC", 3), -1);
    EXPECT_EQ(StringCompareW(u"äb", 2, u"ab", 2), 1);
    EXPECT_EQ(StringCompareW2(u"äb", 2, u"AB", 2), 0);
    EXPECT_EQ(StringCompareW2(u"äb", -1, nullptr, 5), 0);
    EXPECT_EQ(StringCompareSanitizeW(u"St. John's", 10, u"stjohns", 7, true, false), 0);
    EXPECT_EQ(StringCompareSanitizeW(u"St. John's", 10, u"stjohns", 7, false, false), -1);
    EXPECT_EQ(StringCompareSanitizeW(u"a b", 3, u"a.b.c", 5, true, true), -1);
}

TEST(StringCompare, LengthsDecideLast) {
    static constexpr struct {
        const char *a, *b;
        std::int32_t aLen, bLen, exact, folded;
    } kCases[] = {{"abc", "abc", 3, 3, 0, 0},    {"abc", "ABC", 3, 3, 1, 0},   {"abcd", "abc", 4, 3, 1, 1},
                  {"abX", "abY", 2, 2, 0, 0},    {"é", "e", 2, 1, 1, 0},       {"abé", "ab", 3, 2, 1, 0},
                  {"ab", "ab", 9, 2, 1, 0},      {"ab", "", -1, 0, 0, 0},      {nullptr, "a", 3, 1, -1, -1},
                  {"M\xFCl", "Mül", 3, 4, 1, 1}, {"ab\x80", "ab", 3, 2, 1, 1}, {"a\xE2\x82", "ab", 3, 2, 1, -1}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(&c - kCases);
        EXPECT_EQ(StringCompare(c.a, c.aLen, c.b, c.bLen), c.exact);
        EXPECT_EQ(StringCompare2(c.a, c.aLen, c.b, c.bLen), c.folded);
        EXPECT_EQ(StringCompare2(c.b, c.bLen, c.a, c.aLen), -c.folded);
    }
    EXPECT_EQ(StringCompareSanitize("St. John's", 10, "stjohns", 7, true, false), 0);
    EXPECT_EQ(StringCompareSanitize("stjohns", 7, "St. John's", 10, true, false), 1);
    EXPECT_EQ(StringCompareSanitize("a b", 3, "a.b", 3, true, true), 0);
    EXPECT_EQ(StringCompareSanitize("a bc", 2, "a.b", 3, true, true), -1);
}

TEST(StringCompareTypeAhead, CutsTheInput) {
    static constexpr struct {
        const char *input, *name;
        std::int32_t maxChars;
        bool sanitize;
        std::int32_t expected;
    } kCases[] = {
        {"Berlin", "Ber", 3, false, 0},    {"Berlin", "Ber", 4, false, 1}, {"Be", "Ber", 3, false, -1},
        {"Zürich", "zur", 3, false, 0},    {"b e r", "BER", 3, true, 0},   {"b e r", "BER", 3, false, -1},
        {"\xE9\xE9", "\xE9", 1, false, 0}, {"abc", "", 0, false, 0},       {"abc", "a", -1, false, -1},
    };
    for (const auto& c : kCases) {
        const std::int32_t inputLength = Length(c.input), length = Length(c.name);
        EXPECT_EQ(StringCompareTypeAhead(c.input, inputLength, c.name, length, c.maxChars, c.sanitize), c.expected)
            << c.input << ' ' << c.name;
    }
}

TEST(StringCompareInputMinAndExact, ExactAndBoundary) {
    static constexpr struct {
        const char* input;
        std::int32_t pos, minChars;
        bool sanitize;
        int result;
        bool exact, boundary;
    } kCases[] = {{"main st", 4, 4, false, 0, false, true}, {"mains", 4, 4, false, 0, false, false},
                  {"main", 4, 4, false, 0, true, true},     {"main st", 4, 4, true, 0, false, false},
                  {"ma-in", 0, 4, true, 0, true, true},     {"ma", 0, 4, false, -2, false, false},
                  {"maim", 0, 4, false, -1, false, false},  {"mains", 99, 4, false, 0, false, false},
                  {"mains", -1, 4, false, 0, false, false}, {"mäi-", 4, 3, false, 0, false, true}};
    bool exact = false, boundary = false;
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.input) + " at " + std::to_string(c.pos));
        exact = boundary = !c.exact;
        const int r =
            StringCompareInputMinAndExact(c.input, "Main Street", c.pos, c.minChars, c.sanitize, exact, boundary);
        EXPECT_EQ(r < -1 ? r : Sign(r), c.result);
        EXPECT_TRUE(exact == c.exact && boundary == c.boundary);
    }
    EXPECT_EQ(StringCompareInputMinAndExact(nullptr, "a", 0, 1, false, exact, boundary), -1);
}

std::vector<std::string> SomeNames() {
    std::ifstream file(DORVUTIL_DATA_DIR "/places.tsv");
    std::vector<std::string> names;
    std::string line;
    for (std::uint32_t i = 0; std::getline(file, line); ++i) {
        if (i % 61 == 1 && line.find("ß") == std::string::npos) names.push_back(line.substr(0, line.find('\t')));
    }
    return names;
}

// The plain text in upper case is what the comparison without case and accents goes by.
TEST(StringCompare2, OrdersNamesAsTheirPlainUpperCaseForms) {
    const std::vector<std::string> names = SomeNames();
    ASSERT_GT(names.size(), 300u);
    std::vector<std::string> keys;
    for (std::string name : names) {
        SpecialChar_toupper(name.data(), static_cast<std::int32_t>(name.size()), 0xFFFF'FFFFu);
        char key[256];
        keys.emplace_back(ChangeSpecialChars(key, sizeof key, name.c_str(), static_cast<std::int32_t>(name.size())));
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        for (std::size_t k = 0; k < names.size(); ++k) {
            const char *const a = names[i].c_str(), *const b = names[k].c_str();
            ASSERT_EQ(StringCompare2(a, Length(a), b, Length(b)), Sign(keys[i].compare(keys[k]))) << a << " | " << b;
        }
    }
}

TEST(StringCompare2, IsAnOrderOnDamagedNames) {
    test::Random random(3);
    std::vector<std::string> names = SomeNames();
    names.resize(120);
    for (std::string& name : names) {
        name.resize(std::min<std::size_t>(name.size(), 4));
        test::Mutate(random, name);
    }
    const auto compare = [](const std::string& a, const std::string& b) {
        return StringCompare2(ExactCopy<char>(a).get(), static_cast<std::int32_t>(a.size()), ExactCopy<char>(b).get(),
                              static_cast<std::int32_t>(b.size()));
    };
    for (const std::string& a : names) {
        for (const std::string& b : names) {
            const int ab = Sign(SpecialChar_stricmp2(a.c_str(), b.c_str()));
            ASSERT_EQ(ab, -Sign(SpecialChar_stricmp2(b.c_str(), a.c_str())));
            ASSERT_EQ(compare(a, b), -compare(b, a));
            for (const std::string& c : names) {
                const bool ordered = ab <= 0 && SpecialChar_stricmp2(b.c_str(), c.c_str()) <= 0;
                ASSERT_TRUE(!ordered || SpecialChar_stricmp2(a.c_str(), c.c_str()) <= 0);
            }
        }
    }
}

TEST(CustomChars, Classification) {
    for (int i = 0; i < 256; ++i) {
        const char c = static_cast<char>(i);
        const bool ascii = i < 0x80;
        EXPECT_EQ(custom_isdigit(c), ascii && std::isdigit(i)) << i;
        EXPECT_EQ(custom_isxdigit(c), ascii && std::isxdigit(i)) << i;
        EXPECT_EQ(custom_isalpha(c), ascii && std::isalpha(i)) << i;
        EXPECT_EQ(custom_isalnum(c), ascii && std::isalnum(i)) << i;
        EXPECT_EQ(custom_isspace(c), ascii && std::isspace(i)) << i;
        EXPECT_EQ(custom_isupper(c), ascii && std::isupper(i)) << i;
        EXPECT_EQ(custom_islower(c), ascii && std::islower(i)) << i;
    }
    EXPECT_TRUE(custom_wctoint(u'9') == 9 && custom_wctoint(u'A') == 10 && custom_wctoint(u'z') == 35);
    EXPECT_TRUE(custom_wctoint(u'{') == -1 && custom_wctoint(u'é') == -1);
}

TEST(CustomChars, Search) {
    static constexpr struct {
        const char *h, *s;
        std::int32_t n;
        int ascii, folded;  // positions; -1: null
    } kCases[] = {{"Main Street", "STREET", -1, 5, 5},
                  {"Main", "x", -1, -1, -1},
                  {"aab", "AB", -1, 1, 1},
                  {"Zürich", "ÜRI", -1, -1, 1},
                  {"abcd", "cd", 3, 2, -1},
                  {"abcd", "cd", 4, 2, 2},
                  {"abcd", "abcde", 9, -1, -1},
                  {"abc", "", 2, 0, 0},
                  {"", "a", -1, -1, -1},
                  {"abc", "a", -2, 0, -1},
                  {"x\xC3", "\xC3\xA9", -1, -1, -1},
                  {nullptr, "a", 1, -1, -1},
                  {"a", nullptr, 1, -1, 0}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::PrintToString(c.h) + " " + testing::PrintToString(c.s));
        const char *const ascii = custom_stristr(c.h, c.s), *const folded = custom_strnistr(c.h, c.s, c.n);
        EXPECT_EQ(ascii == nullptr ? -1 : ascii - c.h, c.ascii);
        EXPECT_EQ(folded == nullptr ? -1 : folded - c.h, c.folded);
    }
}

}  // namespace
}  // namespace dorvutil
