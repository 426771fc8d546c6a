#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <numeric>
#include <random>
#include <vector>

#include "dorvutil/memory/vector.h"

namespace dorvutil {
namespace {

using Longs = TVector<std::int32_t>;
using Model = std::vector<std::int32_t>;

Longs Made(const Model& values) {
    Longs v;
    v.Add(values.data(), static_cast<std::uint32_t>(values.size()));
    return v;
}

Model Held(const Longs& v) { return Model(v.begin(), v.end()); }

TEST(VectorBinSearch, FindsTheElementBisectionMeetsOrTheFirst) {
    static const struct {
        const char* name;
        Model values;
        std::int32_t key;
        std::uint32_t met, first;
    } kCases[] = {
        {"empty", {}, 1, kVectorNotFound, kVectorNotFound},
        {"run of equals", {1, 2, 2, 2, 3}, 2, 2, 1},
        {"all equal", {5, 5, 5, 5, 5, 5, 5, 5}, 5, 3, 0},
        {"below all", {1, 3, 5}, 0, kVectorNotFound, kVectorNotFound},
        {"above all", {1, 3, 5}, 9, kVectorNotFound, kVectorNotFound},
        {"between", {1, 3, 5}, 4, kVectorNotFound, kVectorNotFound},
        {"lowest", {1, 3, 5}, 1, 0, 0},
        {"highest", {1, 3, 5}, 5, 2, 2},
        {"the extremes of the type", {INT32_MIN, 0, INT32_MAX}, INT32_MIN, 0, 0},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Longs v = Made(c.values);
        EXPECT_EQ(v.BinSearch(c.key, false, CompareByLong), c.met);
        EXPECT_EQ(v.BinSearch(c.key, true, CompareByLong), c.first);
        std::int32_t* found = nullptr;
        EXPECT_EQ(v.FindFirst(c.key, CompareByLong, found), c.first != kVectorNotFound);
        EXPECT_EQ(found, c.first == kVectorNotFound ? nullptr : v.Data() + c.first);
    }
}

TEST(VectorFindInsertionIndex, KeepsTheOrder) {
    static const struct {
        Model values;
        std::int32_t key;
        std::uint32_t met, first;
    } kCases[] = {{{}, 4, 0, 0},        {{1, 3, 5}, 4, 2, 2}, {{1, 3, 5}, 0, 0, 0},
                  {{1, 3, 5}, 9, 3, 3}, {{1, 3, 5}, 3, 1, 1}, {{2, 2, 2, 2}, 2, 1, 0}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.key << " among " << c.values.size());
        const Longs v = Made(c.values);
        EXPECT_EQ(v.FindInsertionIndex(c.key, false, CompareByLong), c.met);
        EXPECT_EQ(v.FindInsertionIndex(c.key, true, CompareByLong), c.first);
    }
}

TEST(VectorBinSearch, FirstOfLongRunsMatchesLowerBound) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        Model model(random() % 200);
        for (auto& value : model) value = static_cast<std::int32_t>(random() % 12);
        std::sort(model.begin(), model.end());
        const Longs v = Made(model);
        for (std::int32_t key = -1; key <= 12; ++key) {
            const auto low = std::lower_bound(model.begin(), model.end(), key);
            const bool present = low != model.end() && *low == key;
            const auto index = static_cast<std::uint32_t>(low - model.begin());
            ASSERT_EQ(v.BinSearch(key, true, CompareByLong), present ? index : kVectorNotFound);
            ASSERT_EQ(v.FindInsertionIndex(key, true, CompareByLong), index);
        }
    }
}

TEST(VectorFindR, FindsTheLastByItsBytes) {
    const Longs v = Made({4, 5, 4, 6});
    EXPECT_EQ(v.FindR(4), 2u);
    EXPECT_EQ(v.FindR(7), kVectorNotFound);
    EXPECT_EQ(Longs().FindR(0), kVectorNotFound);
}

TEST(VectorSets, KeepWhatTheyShould) {
    Longs v = Made({3, 1, 3, 2, 1});
    v.RemoveDuplicates(CompareByLong, nullptr);
    EXPECT_EQ(Held(v), (Model{1, 2, 3}));
    EXPECT_EQ(v.Capacity(), 3u);
    v.SetSize(10);
    v.RemoveDuplicates(CompareByLong, nullptr);
    EXPECT_EQ(v.Capacity(), 10u) << "nothing went, nothing is cut";
    v.RemoveDuplicates(CompareByLong, [](const std::int32_t* a, const std::int32_t* b) { return *a / 2 - *b / 2; });
    EXPECT_EQ(Held(v), (Model{1, 2})) << "2 and 3 are equal, the first stays";

    Longs once = Made({3, 1, 3, 2, 1});
    once.RemoveOverlap(CompareByLong);
    EXPECT_EQ(Held(once), Model{2});
    Longs single = Made({1});
    single.RemoveOverlap(CompareByLong);
    EXPECT_EQ(Held(single), Model{1});
    Longs all = Made({2, 2, 2});
    all.RemoveOverlap(CompareByLong);
    EXPECT_EQ(all.Count(), 0u);
}

TEST(VectorSets, OverlapWithAnother) {
    static const struct {
        Model values, other, left;
    } kCases[] = {{{3, 1, 1, 2}, {5, 1}, {2, 3}}, {{1, 2}, {}, {1, 2}},       {{}, {1}, {}},
                  {{9, 8}, {1, 2}, {8, 9}},       {{1, 2, 3}, {3, 2, 1}, {}}, {{1, 5, 9}, {5, 5}, {1, 9}}};
    for (const auto& c : kCases) {
        Longs v = Made(c.values);
        Longs other = Made(c.other);
        v.RemoveOverlap(CompareByLong, other);
        EXPECT_EQ(Held(v), c.left);
        EXPECT_TRUE(std::is_sorted(other.begin(), other.end()));
        EXPECT_EQ(other.Count(), c.other.size());
    }
    Longs self = Made({1, 2});
    self.RemoveOverlap(CompareByLong, self);
    EXPECT_EQ(self.Count(), 0u);
}

Model Shaped(const std::string& shape, std::int32_t n) {
    Model model(static_cast<std::size_t>(n));
    std::iota(model.begin(), model.end(), 0);
    std::mt19937 random(11);
    if (shape == "random") std::shuffle(model.begin(), model.end(), random);
    if (shape == "falling") std::reverse(model.begin(), model.end());
    if (shape == "equal") std::fill(model.begin(), model.end(), 5);
    if (shape == "organ pipe") std::reverse(model.begin() + n / 2, model.end());
    if (shape == "last out of place" && n > 0) model.back() = -1;
    for (auto& value : model) {
        if (shape == "few values") value = static_cast<std::int32_t>(random() % 4);
        if (shape == "saw") value %= 17;
    }
    return model;
}

int g_comparisons;

int CountingCompare(const std::int32_t* a, const std::int32_t* b) {
    ++g_comparisons;
    return CompareByLong(a, b);
}

TEST(VectorQSort, SortsEveryShapeInNLogN) {
    for (const char* shape :
         {"rising", "random", "falling", "equal", "few values", "organ pipe", "last out of place", "saw"}) {
        for (const std::int32_t n : {0, 1, 2, 3, 20, 21, 127, 128, 129, 1000, 30000}) {
            SCOPED_TRACE(testing::Message() << shape << ' ' << n);
            Model model = Shaped(shape, n);
            Longs v = Made(model);
            std::sort(model.begin(), model.end());
            g_comparisons = 0;
            v.QSort(CountingCompare);
            ASSERT_EQ(Held(v), model);
            EXPECT_LE(g_comparisons, 64 + 5 * n * static_cast<int>(std::bit_width(static_cast<unsigned>(n))));
        }
    }
}

// Answers as if the array had been made to ruin every pivot choice (McIlroy, "A killer adversary for quicksort").
struct Adversary {
    static constexpr std::int32_t kGas = 1 << 30;
    static inline std::vector<std::int32_t> s_values;
    static inline std::int32_t s_solid, s_candidate;

    static int Compare(const std::int32_t* a, const std::int32_t* b) {
        ++g_comparisons;
        auto& x = s_values[static_cast<std::size_t>(*a)];
        auto& y = s_values[static_cast<std::size_t>(*b)];
        if (x == kGas && y == kGas) (*a == s_candidate ? x : y) = s_solid++;
        if (x == kGas) s_candidate = *a;
        if (y == kGas) s_candidate = *b;
        return (x > y) - (x < y);
    }
};

TEST(VectorQSort, AnAdversaryDoesNotMakeItQuadratic) {
    const std::int32_t n = 20000;
    Adversary::s_values.assign(n, Adversary::kGas);
    Adversary::s_solid = Adversary::s_candidate = 0;
    Longs v = Made(Shaped("rising", n));
    g_comparisons = 0;
    v.QSort(Adversary::Compare);
    EXPECT_LE(g_comparisons, 6 * n * 15);
    EXPECT_TRUE(std::is_sorted(v.begin(), v.end(), [](std::int32_t a, std::int32_t b) {
        return Adversary::s_values[static_cast<std::size_t>(a)] < Adversary::s_values[static_cast<std::size_t>(b)];
    }));
}

template <int kAnswer>
int Always(const std::int32_t*, const std::int32_t*) {
    return kAnswer;
}

int Coin(const std::int32_t*, const std::int32_t*) {
    static std::mt19937 random(3);
    return static_cast<int>(random() % 3) - 1;
}

TEST(VectorQSort, InconsistentComparisonsLoseNothing) {
    for (const auto compare : {Always<-1>, Always<0>, Always<1>, Coin}) {
        for (const std::int32_t n : {2, 5, 21, 200, 5000}) {
            Model model = Shaped("rising", n);
            Longs v = Made(model);
            v.QSort(compare);
            std::sort(v.begin(), v.end());
            ASSERT_EQ(Held(v), model);
        }
    }
}

struct Wide {
    std::int32_t m_key;
    std::int32_t m_payload[15];
};

TEST(VectorQSort, MovesWideElementsWhole) {
    TVector<Wide> v;
    std::mt19937 random(5);
    for (int i = 0; i < 3000; ++i) {
        Wide wide;
        wide.m_key = static_cast<std::int32_t>(random() % 1000);
        for (auto& word : wide.m_payload) word = wide.m_key ^ 0x55;
        v.Add(wide);
    }
    v.QSort([](const Wide* a, const Wide* b) { return a->m_key - b->m_key; });
    for (std::uint32_t i = 0; i < v.Count(); ++i) {
        ASSERT_LE(v[i == 0 ? 0 : i - 1].m_key, v[i].m_key);
        for (const auto word : v[i].m_payload) ASSERT_EQ(word, v[i].m_key ^ 0x55);
    }
}

}  // namespace
}  // namespace dorvutil
