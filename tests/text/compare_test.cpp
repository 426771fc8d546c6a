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
        const char* name;
        const char* a;
        const char* b;
        int exact, noCase, noAccents, neither;  // signs
    } kCases[] = {
        {"accents and case", "Müller", "MULLER", 1, 1, 1, 0},
        {"case above ASCII", "müller", "MÜLLER", 1, 0, 1, 0},
        {"accents", "Müller", "Muller", 1, 1, 0, 0},
        {"sharp s is one s", "straße", "strase", 1, 1, 0, 1},
        {"sharp s is not two", "straße", "strasse", 1, 1, -1, 1},
        {"prefix first", "Ber", "Berlin", -1, -1, -1, -1},
        {"empty first", "", "a", -1, -1, -1, -1},
        {"null is empty", nullptr, "", 0, 0, 0, 0},
        {"two bytes before three", "ÿ", "€", -1, -1, -1, -1},
        {"final sigma", "ΟΔΟΣ", "οδος", -1, 0, -1, 0},
        {"no entry", "Œ", "œ", -1, 0, -1, 0},
        {"four bytes", "😀a", "😀b", -1, -1, -1, -1},
        {"byte out of place against a letter", "a\xFF", "aÿ", 1, 1, 1, 1},
        {"broken lead is one byte", "\xC3z", "\xC3\xA9", -1, -1, 1, 1},
        {"overlong form is no letter", "\xC1\x81", "A", 1, 1, 1, 1},
        {"dotless i", "ı", "I", 1, 1, 1, 0},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
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
        const char* name;
        const char16_t* a;
        const char16_t* b;
        std::uint32_t n;
        int noCase, neither;
    } kCases[] = {
        {"accents and case", u"Müller", u"MULLER", 9, 1, 0},
        {"case", u"ÄÖ", u"äö", 9, 0, 0},
        {"limit", u"abX", u"abY", 2, 0, 0},
        {"pairs", u"😀", u"😁", 2, -1, -1},
        {"half a pair", u"\xD83D", u"\xD83Dz", 9, -1, -1},
        {"pair above the plane", u"\uFFFD", u"😀", 9, -1, -1},
        {"null is empty", nullptr, u"a", 9, -1, -1},
        {"prefix", u"ab", u"a", 9, 1, 1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Sign(SpecialChar_wcsnicmp(c.a, c.b, c.n)), c.noCase);
        EXPECT_EQ(Sign(SpecialChar_wcsnicmp2(c.a, c.b, c.n)), c.neither);
        if (c.n == 9) {
            EXPECT_EQ(Sign(SpecialChar_wcsicmp(c.a, c.b)), c.noCase);
        }
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
        const char* name;
        const char* a;
        std::int32_t aLen;
        const char* b;
        std::int32_t bLen;
        std::int32_t exact, folded;
    } kCases[] = {
        {"equal", "abc", 3, "abc", 3, 0, 0},
        {"case", "abc", 3, "ABC", 3, 1, 0},
        {"longer", "abcd", 4, "abc", 3, 1, 1},
        {"limits", "abX", 2, "abY", 2, 0, 0},
        {"more bytes, as many characters", "\u00E9", 2, "e", 1, 1, 0},
        {"character across the limit", "abé", 3, "ab", 2, 1, 0},
        {"limit behind the terminator", "ab", 9, "ab", 2, 1, 0},
        {"negative is empty", "ab", -1, "", 0, 0, 0},
        {"null is empty", nullptr, 3, "a", 1, -1, -1},
        {"single-byte text", "M\xFCller", 6, "Müller", 7, 1, 1},
        {"single-byte text has a byte more", "ab\x80", 3, "ab", 2, 1, 1},
        {"broken end against a longer text", "a\xE2\x82", 3, "ab", 2, 1, -1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
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
        const char* input;
        const char* name;
        std::int32_t maxChars;
        bool sanitize;
        std::int32_t expected;
    } kCases[] = {
        {"Berlin", "Ber", 3, false, 0},    {"Berlin", "Ber", 4, false, 1}, {"Be", "Ber", 3, false, -1},
        {"Zürich", "zur", 3, false, 0},    {"b e r", "BER", 3, true, 0},   {"b e r", "BER", 3, false, -1},
        {"\xE9\xE9", "\xE9", 1, false, 0}, {"abc", "", 0, false, 0},       {"abc", "a", -1, false, -1},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(StringCompareTypeAhead(c.input, Length(c.input), c.name, Length(c.name), c.maxChars, c.sanitize),
                  c.expected)
            << c.input << ' ' << c.name;
    }
}

TEST(StringCompareInputMinAndExact, ExactAndBoundary) {
    static constexpr struct {
        const char* name;
        const char* input;
        const char* against;
        std::int32_t pos, minChars;
        bool sanitize;
        int result;
        bool exact, boundary;
    } kCases[] = {
        {"boundary at a space", "main st", "Main Street", 4, 4, false, 0, false, true},
        {"no boundary inside a word", "mains", "Main Street", 4, 4, false, 0, false, false},
        {"exact", "main", "Main Street", 4, 4, false, 0, true, true},
        {"no boundary when sanitized", "main st", "Main Street", 4, 4, true, 0, false, false},
        {"sanitized", "ma-in", "Main", 0, 4, true, 0, true, true},
        {"too short", "ma", "Main", 0, 4, false, -2, false, false},
        {"different", "maim", "Main", 0, 4, false, -1, false, false},
        {"position behind the input", "mains", "Main Street", 99, 4, false, 0, false, false},
        {"negative position", "mains", "Main Street", -1, 4, false, 0, false, false},
        {"accents", "Zür-", "ZURICH", 4, 3, false, 0, false, true},
    };
    for (const auto& c : kCases) {
        bool exact = true;
        bool boundary = true;
        const int r = StringCompareInputMinAndExact(c.input, c.against, c.pos, c.minChars, c.sanitize, exact, boundary);
        EXPECT_EQ(r < -1 ? r : Sign(r), c.result) << c.name;
        EXPECT_EQ(exact, c.exact) << c.name;
        EXPECT_EQ(boundary, c.boundary) << c.name;
    }
    bool exact, boundary;
    EXPECT_EQ(StringCompareInputMinAndExact(nullptr, "a", 0, 1, false, exact, boundary), -1);
}

std::vector<std::string> SomeNames() {
    std::ifstream file(DORVUTIL_DATA_DIR "/places.tsv");
    std::vector<std::string> names;
    std::string line;
    for (std::uint32_t i = 0; std::getline(file, line); ++i) {
        if (i % 61 == 1) names.push_back(line.substr(0, line.find('\t')));
    }
    return names;
}

// The plain text in upper case is what the comparison without case and accents goes by.
std::string KeyOf(const std::string& name) {
    std::string upper = name;
    SpecialChar_toupper(upper.data(), static_cast<std::int32_t>(upper.size()), 0xFFFF'FFFFu);
    std::string key(256, '\0');
    ChangeSpecialChars(key.data(), 256, upper.c_str(), static_cast<std::int32_t>(upper.size()));
    return key.c_str();
}

TEST(StringCompare2, OrdersNamesAsTheirPlainUpperCaseForms) {
    const std::vector<std::string> names = SomeNames();
    ASSERT_GT(names.size(), 300u);
    for (const std::string& a : names) {
        if (a.find("ß") != std::string::npos) continue;
        const std::string key = KeyOf(a);
        for (const std::string& b : names) {
            if (b.find("ß") != std::string::npos) continue;
            const int r = StringCompare2(a.c_str(), Length(a.c_str()), b.c_str(), Length(b.c_str()));
            ASSERT_EQ(r, Sign(key.compare(KeyOf(b)))) << a << " | " << b;
        }
    }
}

TEST(StringCompare2, IsAnOrderOnDamagedNames) {
    constexpr std::uint32_t kSeed = 3;
    test::Random random(kSeed);
    std::vector<std::string> names = SomeNames();
    names.resize(120);
    for (std::string& name : names) {
        name.resize(std::min<std::size_t>(name.size(), 4));
        test::Mutate(random, name);
    }
    const auto Compare = [](const std::string& a, const std::string& b) {
        const auto x = ExactCopy(std::string_view(a));
        const auto y = ExactCopy(std::string_view(b));
        return StringCompare2(x.get(), static_cast<std::int32_t>(a.size()), y.get(),
                              static_cast<std::int32_t>(b.size()));
    };
    for (const std::string& a : names) {
        for (const std::string& b : names) {
            const int ab = Sign(SpecialChar_stricmp2(a.c_str(), b.c_str()));
            ASSERT_EQ(ab, -Sign(SpecialChar_stricmp2(b.c_str(), a.c_str()))) << "seed " << kSeed;
            ASSERT_EQ(Compare(a, b), -Compare(b, a)) << "seed " << kSeed;
            for (const std::string& c : names) {
                if (ab <= 0 && SpecialChar_stricmp2(b.c_str(), c.c_str()) <= 0) {
                    ASSERT_LE(SpecialChar_stricmp2(a.c_str(), c.c_str()), 0) << "seed " << kSeed;
                }
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
    EXPECT_EQ(custom_wctoint(u'9'), 9);
    EXPECT_EQ(custom_wctoint(u'A'), 10);
    EXPECT_EQ(custom_wctoint(u'z'), 35);
    EXPECT_EQ(custom_wctoint(u'{'), -1);
    EXPECT_EQ(custom_wctoint(u'é'), -1);
}

TEST(CustomChars, Search) {
    static constexpr struct {
        const char* h;
        const char* s;
        std::int32_t n;
        int ascii, folded;  // positions; -1: null
    } kCases[] = {
        {"Main Street", "STREET", -1, 5, 5},
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
    };
    for (const auto& c : kCases) {
        const char* const ascii = custom_stristr(c.h, c.s);
        const char* const folded = custom_strnistr(c.h, c.s, c.n);
        EXPECT_EQ(ascii == nullptr ? -1 : ascii - c.h, c.ascii) << c.h << ' ' << c.s;
        EXPECT_EQ(folded == nullptr ? -1 : folded - c.h, c.folded) << c.h << ' ' << c.s;
    }
    EXPECT_EQ(custom_stristr(nullptr, "a"), nullptr);
    EXPECT_EQ(custom_stristr("a", nullptr), nullptr);
    EXPECT_EQ(custom_strnistr(nullptr, "a", 1), nullptr);
    EXPECT_NE(custom_strnistr("a", nullptr, 1), nullptr);
}

}  // namespace
}  // namespace dorvutil
