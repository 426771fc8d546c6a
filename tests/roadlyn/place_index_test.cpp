#include "place_index.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "library_quality.h"
#include "text_fold.h"

namespace roadlyn {
namespace {

constexpr auto kGoOn = [](unsigned) { return true; };
constexpr auto kNeverCanceled = [] { return false; };

PlaceTable TableOf(const std::vector<std::string>& names) {
    PlaceTable table;
    Place place{};
    place.admin1 = table.AddAdmin1("");
    place.population = static_cast<std::int32_t>(names.size());
    for (const std::string& name : names) {
        table.Add(name, place);
        --place.population;
    }
    table.SortForDisplay();
    return table;
}

// What the index has to give, from the definition alone: every row looked at, graded by the library, sorted.
std::vector<PlaceHit> PlainScan(const PlaceTable& table, const std::string& input, std::size_t limit,
                                ResultOrder order) {
    const std::string folded = FoldedText(input);
    std::vector<PlaceHit> hits;
    for (std::uint32_t row = 0; row < table.Count(); ++row) {
        const std::string_view name = table.Name(row);
        const bool matches = folded.empty() ? LowerText(name).find(LowerText(input)) != std::string::npos
                                            : FoldedText(name).find(folded) != std::string::npos;
        if (matches) hits.push_back({row, LibraryMatchQuality(input, name)});
    }
    if (order == ResultOrder::MatchQuality) {
        std::stable_sort(hits.begin(), hits.end(),
                         [](const PlaceHit& a, const PlaceHit& b) { return a.quality > b.quality; });
    }
    hits.resize(std::min(hits.size(), limit));
    return hits;
}

void ExpectLikePlainScan(PlaceIndex& index, const PlaceTable& table, const std::string& input, std::size_t limit) {
    for (const ResultOrder order : {ResultOrder::MatchQuality, ResultOrder::RelevanceOnly}) {
        std::vector<PlaceHit> hits;
        index.Search(input, limit, order, kNeverCanceled, hits);
        const std::vector<PlaceHit> wanted = PlainScan(table, input, limit, order);
        ASSERT_EQ(hits.size(), wanted.size()) << "'" << input << "'";
        for (std::size_t i = 0; i < hits.size(); ++i) {
            ASSERT_EQ(hits[i].row, wanted[i].row) << "'" << input << "' hit " << i << " " << table.Name(hits[i].row)
                                                  << " instead of " << table.Name(wanted[i].row);
            ASSERT_EQ(hits[i].quality, wanted[i].quality) << "'" << input << "' " << table.Name(hits[i].row);
        }
    }
}

TEST(PlaceIndex, FindsByEveryGrade) {
    const std::vector<std::string> names = {"Münster",   "Munster",        "St. John's",   "Saint John’s",
                                            "São Paulo", "Rio de Janeiro", "L'Île-Rousse", "Villeneuve-Saint-Georges",
                                            "Hà Nội",    "Афины",          "Œuvre",        "Bab 'Arab"};
    const PlaceTable table = TableOf(names);
    PlaceIndex index;
    ASSERT_TRUE(index.Build(table, kGoOn));
    static constexpr struct {
        const char* input;
        const char* first;
        std::uint32_t quality;
        std::size_t count;
    } kCases[] = {
        {"münst", "Münster", 6, 2},
        {"munster", "Munster", 6, 2},
        {"mu\u0308nster", "Münster", 0, 2},
        {"stjohns", "St. John's", 5, 1},
        {"johns", "St. John's", 1, 2},
        {"sao paul", "São Paulo", 0, 1},
        {"SÃO PAULO", "São Paulo", 6, 1},
        {"paulo", "São Paulo", 4, 1},
        {"aulo", "São Paulo", 2, 1},
        {"'ar", "Bab 'Arab", 4, 1},
        {"ile", "L'Île-Rousse", 0, 1},
        {"île", "L'Île-Rousse", 2, 1},
        {"ha noi", "Hà Nội", 0, 1},
        {"афин", "Афины", 6, 1},
        {"oeuv", "Œuvre", 0, 1},
        {"deja", "Rio de Janeiro", 1, 1},
        {"e-saint", "Villeneuve-Saint-Georges", 2, 1},
        {"", "Münster", 6, 12},
        {"x", nullptr, 0, 0},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.input);
        std::vector<PlaceHit> hits;
        index.Search(c.input, 100, ResultOrder::MatchQuality, kNeverCanceled, hits);
        ASSERT_EQ(hits.size(), c.count);
        if (c.count == 0) continue;
        EXPECT_EQ(table.Name(hits[0].row), c.first);
        EXPECT_EQ(hits[0].quality, c.quality);
    }
}

// Short names of few letters, blanks, punctuation and accents make every grade, and ties of grades, frequent.
TEST(PlaceIndex, RandomNamesLikePlainScan) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    static constexpr const char* kPieces[] = {"a", "b", "n", "á", "ã", "N",      " ", "-",
                                              ".", "'", "’", "ß", "s", "\u0301", "ё"};
    const auto text = [&](std::size_t most) {
        std::string made;
        for (std::size_t left = random() % most + 1; left > 0; --left) made += kPieces[random() % std::size(kPieces)];
        return made;
    };
    for (const std::size_t rows : {1u, 63u, 64u, 700u}) {
        std::vector<std::string> names;
        for (std::size_t i = 0; i < rows; ++i) names.push_back(text(8));
        const PlaceTable table = TableOf(names);
        PlaceIndex index;
        ASSERT_TRUE(index.Build(table, kGoOn));
        for (int round = 0; round < 150; ++round) {
            ExpectLikePlainScan(index, table, text(4), 1 + random() % 30);
            if (HasFatalFailure()) return;
        }
    }
}

TEST(PlaceIndex, DeliveredPlacesLikePlainScan) {
    PlaceTable table = ReadPlaceFile(DORVUTIL_DATA_DIR "/places.tsv", kGoOn);
    table.SortForDisplay();
    PlaceIndex index;
    ASSERT_TRUE(index.Build(table, kGoOn));
    std::vector<std::string> inputs = {"",       " ",     "-",     "'",     "’",   "a",       "n", "an",
                                       "nl",     "st ",   "san j", "sao",   "são", "stjohns", "é", "ß",
                                       "saint-", " paul", "'a",    "xyzzy", "ang", "\n"};
    std::mt19937 random(7);
    for (int i = 0; i < 12; ++i) {
        const std::string name(table.Name(static_cast<std::uint32_t>(random() % table.Count())));
        for (std::size_t end = 0; end < name.size();) {
            end += CharacterLength(name, end);
            if (random() % 3 == 0) inputs.push_back(name.substr(0, end));
        }
    }
    for (const std::string& input : inputs) {
        ExpectLikePlainScan(index, table, input, 100);
        if (HasFatalFailure()) return;
    }
}

// The library grades only the first 254 bytes of a sanitized text.
TEST(PlaceIndex, TextsBeyondTheGradedLengthLikePlainScan) {
    const std::string longName = std::string(300, 'a') + "é b" + std::string(50, 'c');
    const PlaceTable table = TableOf(
        {"aé", longName, "ebc", "eb c", std::string(260, 'x') + "y z", std::string(254, 'a'), std::string(255, 'a')});
    PlaceIndex index;
    ASSERT_TRUE(index.Build(table, kGoOn));
    for (const std::string& input :
         {std::string("eb"), std::string("yz"), std::string("a"), std::string("cc"), std::string(255, 'a'),
          std::string(254, 'a'), longName.substr(0, 303), longName.substr(20)}) {
        ExpectLikePlainScan(index, table, input, 10);
        if (HasFatalFailure()) return;
    }
}

TEST(PlaceIndex, StopsWhenToldTo) {
    const PlaceTable table = TableOf(std::vector<std::string>(5000, "aa"));
    PlaceIndex index;
    EXPECT_FALSE(index.Build(table, [](unsigned) { return false; }));
    EXPECT_EQ(index.Count(), 0u);
    ASSERT_TRUE(index.Build(table, kGoOn));
    std::vector<PlaceHit> hits;
    int polls = 0;
    index.Search(
        "a", 5000, ResultOrder::MatchQuality, [&] { return ++polls > 0; }, hits);
    EXPECT_LT(hits.size(), 5000u);
    index.Search("a", 5000, ResultOrder::MatchQuality, kNeverCanceled, hits);
    EXPECT_EQ(hits.size(), 5000u);
}

}  // namespace
}  // namespace roadlyn
