#include "dorvutil/text/name_casing.h"

#include <gtest/gtest.h>

#include <string>

#include "dorvutil/text/name_casing_words.h"
#include "dorvutil/text/string.h"
#include "text/encoding_samples.h"

namespace dorvutil {
namespace {

std::string Fix(const std::string& text) { return FixNameCasing(ORVustring(text.c_str())).c_str(); }

TEST(FixNameCasing, Rules) {
    static constexpr struct {
        const char *text, *expected;
    } kCases[] = {
        {"MAIN ST OF THE USPS", "Main St of The USPS"},
        {"MCDONALD RD O'BRIEN AVE", "McDonald Rd O'Brien Ave"},
        {"JOHN PAUL II 21ST AVE", "John Paul II 21ST Ave"},
        {"AND And and AnD OF Of of oF", "and and and And of of of of"},
        {"at&t usaf pa TRITOLL MARSX", "AT&T USAF PA TRITOLL Marsx"},
        {"D'ARCY d'arcy o'neil L'ANSE l'anse", "d'Arcy d'Arcy O'Neil L'Anse L'Anse"},
        {"O' O'-X N'DOUR 'TIS `TIS", "O' O'-X N'dour 'tis `tis"},
        {"McGEE MC MC-X mcGEE", "McGee Mc Mc-X mcgee"},
        {"(NORTH) (USAF) (usaf) (AB", "(North) (USAF) (USAF) (Ab"},
        {"ÉCOLE +ABC SMITH-JONES", "École +Abc Smith-Jones"},
        {"4TH 4Th 4TH-X A4TH B12 #4", "4th 4Th 4TH-X A4th B12 #4"},
        {"A/B A&B X(Y Z) #A-BC", "A/B A&B X(Y Z) #A-Bc"},
        {"+N @i #B", "+N @i #B"},  // too short behind the mark
        {"MAIN  ST   X", "Main  St   X"},
    };
    static constexpr struct {
        const char *text, *expected;
    } kShort[] = {{"main st", "main st"},
                  {"TORONTO ON", "Toronto ON"},
                  {"on", "on"},
                  {"(A", "(A"},
                  {"*", "*"},
                  {"  ", ""},
                  {"", ""},
                  {"MAIN ST  ", "Main St"},
                  {"  MAIN ST", "MainSt"},
                  {"MAIN\tST", "MainSt"}};
    for (const auto& c : kShort) EXPECT_EQ(Fix(c.text), c.expected) << c.text;
    EXPECT_EQ(Fix("A B C D E F G H I J K"), "A B C D E F G H I J") << "ten words";
    for (const auto& c : kCases) EXPECT_EQ(Fix(c.text), c.expected) << c.text;
    EXPECT_TRUE(FixNameCasing(ORVustring()).empty());
}

TEST(FixNameCasing, LongWordsAndTexts) {
    const std::string word(130, 'Q');
    EXPECT_EQ(Fix(word), "Q" + std::string(126, 'q') + "Qqq");
    EXPECT_EQ(Fix(word + std::string(2000, ' ') + "ST").substr(130), std::string(2000, ' ') + "St");
    EXPECT_EQ(Fix(std::string(5000, 'Q')).size(), 1270u);
}

TEST(FixNameCasing, NeverWritesMoreThanItReads) {
    test::Random random(9);
    static constexpr char kBytes[] = "AMCcDOLdol'1T H  \t+@#(&)-/`\xC3\x89";
    for (std::uint32_t i = 0; i < 20000; ++i) {
        std::string text(random() % 24, ' ');
        for (char& c : text) c = kBytes[random() % (sizeof kBytes - 1)];
        const auto src = test::ExactCopy(std::string_view(text));
        const auto out = std::make_unique<char[]>(text.size());
        ASSERT_LE(FixNameCasingBytes(src.get(), text.size(), out.get()), text.size());
    }
}

}  // namespace
}  // namespace dorvutil
