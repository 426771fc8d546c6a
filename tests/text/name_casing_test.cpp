#include "dorvutil/text/name_casing.h"

#include <gtest/gtest.h>

#include <string>

#include "dorvutil/text/name_casing_words.h"
#include "dorvutil/text/string.h"
#include "text/encoding_samples.h"

namespace dorvutil {
namespace {

std::string Fix(const std::string& text) { return FixNameCasing(ORVustring(text.c_str())).c_str(); }

constexpr struct {
    const char* text;
    const char* expected;
} kCases[] = {
    {"MAIN ST OF THE USPS", "Main St of The USPS"},
    {"O'BRIEN AVE", "O'Brien Ave"},
    {"MCDONALD RD", "McDonald Rd"},
    {"JOHN PAUL II", "John Paul II"},
    {"21ST AVE", "21ST Ave"},
    {"main st", "main st"},
    // Provinces and conjunctions.
    {"TORONTO ON", "Toronto ON"},
    {"on", "on"},
    {"AND And and AnD", "and and and And"},
    {"OF Of of oF", "of of of of"},
    // Acronyms in any case.
    {"at&t usaf pa", "AT&T USAF PA"},
    {"TRITOLL MARSX", "TRITOLL Marsx"},
    // Elided articles.
    {"D'ARCY d'arcy o'neil L'ANSE l'anse", "d'Arcy d'Arcy O'Neil L'Anse L'Anse"},
    {"O' O'-X N'DOUR", "O' O'-X N'dour"},
    // Scottish names.
    {"McGEE MC MC-X mcGEE", "McGee Mc Mc-X mcgee"},
    // Signs and bytes above ASCII first.
    {"(NORTH) (USAF) (usaf) (AB", "(North) (USAF) (USAF) (Ab"},
    {"ÉCOLE", "École"},
    {"+ABC", "+Abc"},
    {"(A", "(A"},
    {"*", "*"},
    // Digits.
    {"4TH 4Th 4TH-X A4TH B12", "4th 4Th 4TH-X A4th B12"},
    {"#4", "#4"},
    // Plain words.
    {"SMITH-JONES", "Smith-Jones"},
    {"A/B A&B X(Y Z)", "A/B A&B X(Y Z)"},
    {"'TIS `TIS", "'tis `tis"},
    // Marks: what follows is too short or not alphanumeric at the third place.
    {"+N @i #B", "+N @i #B"},
    {"#A-BC", "#A-Bc"},
    // Blanks.
    {"MAIN  ST   X", "Main  St   X"},
    {"MAIN ST  ", "Main St"},
    {"  MAIN ST", "MainSt"},
    {"MAIN\tST", "MainSt"},
    {"  ", ""},
    {"", ""},
    {"A B C D E F G H I J K", "A B C D E F G H I J"},
};

TEST(FixNameCasing, Rules) {
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
    constexpr std::uint32_t kSeed = 9;
    test::Random random(kSeed);
    static constexpr char kBytes[] = "AMCcDOLdol'1T H  \t+@#(&)-/`\xC3\x89";
    for (std::uint32_t i = 0; i < 20000; ++i) {
        std::string text(random() % 24, ' ');
        for (char& c : text) c = kBytes[random() % (sizeof kBytes - 1)];
        const auto src = test::ExactCopy(std::string_view(text));
        const auto out = std::make_unique<char[]>(text.size());
        ASSERT_LE(FixNameCasingBytes(src.get(), text.size(), out.get()), text.size()) << "seed " << kSeed;
    }
}

}  // namespace
}  // namespace dorvutil
