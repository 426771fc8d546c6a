#include "dorvutil/typeahead/match_quality.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <set>
#include <string>

#include "dorvutil/text/sanitize.h"
#include "dorvutil/text/string.h"

namespace dorvutil {
namespace {

TEST(MatchQuality, Grades) {
    static const struct {
        const char *input, *display;
        MatchQuality expected;
    } kCases[] = {{"main", "Main Street", MQ_PREFIX},
                  {"st", "Main Street", MQ_WORD_START},
                  {"ain", "Main Street", MQ_INSIDE},
                  {"x", "Main Street", MQ_NONE},
                  {"", "Main Street", MQ_PREFIX},
                  {"", "", MQ_NONE},
                  {"main", "", MQ_NONE},
                  {"stjohns", "St. John's Road", MQ_SANITIZED_PREFIX},
                  {"johns", "St. John's Road", MQ_SANITIZED_INSIDE},
                  {"j", "St.John", MQ_WORD_START},
                  {"b", "A-b", MQ_WORD_START},
                  {"b", "A'b", MQ_INSIDE},
                  {"?!", "Main Street", MQ_SANITIZED_PREFIX},
                  {"?!", "...", MQ_NONE},
                  {"öst", "Österreich", MQ_PREFIX}};
    for (const auto& c : kCases) EXPECT_EQ(GetTypeAheadMatchQuality(c.input, c.display), c.expected) << c.input;
    for (const std::size_t length : {300u, 600u}) {
        const std::string name = std::string(length, 'x') + " Main";
        EXPECT_EQ(GetTypeAheadMatchQuality("main", name.c_str()), MQ_WORD_START);
        EXPECT_EQ(GetTypeAheadMatchQuality("xmain", name.c_str()), MQ_NONE) << "sanitized texts end before it";
    }
}

// The rule in so many words, by string objects.
MatchQuality PlainGrade(const ORVustring& input, const ORVustring& display) {
    const std::int32_t p = display.find(input.c_str(), 0, true);
    if (p == 0) return MQ_PREFIX;
    const std::int32_t q = SanitizeString(display).find(SanitizeString(input).c_str(), 0, true);
    if (q == 0) return MQ_SANITIZED_PREFIX;
    if (p > 0) return std::string(" -.").find(display[p - 1]) != std::string::npos ? MQ_WORD_START : MQ_INSIDE;
    return q > 0 ? MQ_SANITIZED_INSIDE : MQ_NONE;
}

TEST(MatchQuality, RealNamesAgreeWithThePlainForm) {
    std::ifstream file(DORVUTIL_DATA_DIR "/places.tsv");
    std::set<MatchQuality> seen;
    for (std::string name; std::getline(file, name);) {
        name.resize(std::min(name.size(), name.find('\t')));
        for (const char* input : {"san", "St ", "\xC5\x82", "a'b", "an-", "alai", "\xC3\xA9", "-", "\xC3"}) {
            const MatchQuality grade = GetTypeAheadMatchQuality(input, name.c_str());
            ASSERT_EQ(grade, PlainGrade(input, name.c_str())) << input << " in " << name;
            seen.insert(grade);
        }
    }
    EXPECT_EQ(seen.size(), 6u);
}

TEST(MatchQuality, RandomBytesAgreeWithThePlainForm) {
    const auto seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    static constexpr char kAlphabet[] = "aAbB .-'\xC3\xA4\x84\xFF\xE2\x82\xAC";
    const auto text = [&](std::size_t most) {
        std::string s(random() % (most + 1), 'a');
        for (char& c : s) c = kAlphabet[random() % (sizeof kAlphabet)];  // the terminator too
        return s;
    };
    for (int i = 0; i < 20'000; ++i) {
        const std::string in = text(4);
        const std::string name = text(i % 100 == 0 ? 700 : 20);
        const ORVustring input(in.data(), static_cast<std::int32_t>(in.size()));
        const ORVustring display(name.data(), static_cast<std::int32_t>(name.size()));
        ASSERT_EQ(GetTypeAheadMatchQuality(input, display), PlainGrade(input, display)) << i;
    }
}

}  // namespace
}  // namespace dorvutil
