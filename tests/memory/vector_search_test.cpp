#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>
#include <random>
#include <string>

#include "memory/vector_support.h"

namespace dorvutil {
namespace {

using test::Held;
using test::Made;
using Longs = TVector<std::int32_t>;
using Model = std::vector<std::int32_t>;

TEST(VectorBinSearch, FindsTheElementBisectionMeets) {
    static const struct {
        const char* name;
        Model values;
        std::int32_t key;
        std::uint32_t met, insertion;
    } kCases[] = {
        {"empty", {}, 4, kVectorNotFound, 0},
        {"run of equals", {1, 2, 2, 2, 3}, 2, 2, 2},
        {"all equal", {5, 5, 5, 5, 5, 5, 5, 5}, 5, 3, 3},
        {"below all", {1, 3, 5}, 0, kVectorNotFound, 0},
        {"above all", {1, 3, 5}, 9, kVectorNotFound, 3},
        {"between", {1, 3, 5}, 4, kVectorNotFound, 2},
        {"the extremes of the type", {INT32_MIN, 0, INT32_MAX}, INT32_MIN, 0, 0},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Longs v = Made(c.values);
        EXPECT_EQ(v.BinSearch(c.key, false, CompareByLong), c.met);
        EXPECT_EQ(v.FindInsertionIndex(c.key, false, CompareByLong), c.insertion);
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
            std::int32_t* found = nullptr;
            ASSERT_EQ(v.BinSearch(key, true, CompareByLong), present ? index : kVectorNotFound);
            ASSERT_EQ(v.FindInsertionIndex(key, true, CompareByLong), index);
            ASSERT_EQ(v.FindFirst(key, CompareByLong, found), present);
            ASSERT_EQ(found, present ? v.Data() + index : nullptr);
        }
    }
}

Model Shaped(const std::string& shape, std::int32_t n) {
    Model model(static_cast<std::size_t>(n));
    std::iota(model.begin(), model.end(), 0);
    std::mt19937 random(11);
    if (shape == "random") std::shuffle(model.begin(), model.end(), random);
    if (shape == "falling") std::reverse(model.begin(), model.end());
    if (shape == "organ pipe") std::reverse(model.begin() + n / 2, model.end());
    if (shape == "last out of place" && n > 0) model.back() = -1;
    const std::int32_t values = shape == "equal" ? 1 : shape == "saw" ? 17 : INT32_MAX;
    for (auto& value : model) value %= values;
    return model;
}

int g_comparisons;

int CountingCompare(const std::int32_t* a, const std::int32_t* b) {
    ++g_comparisons;
    return CompareByLong(a, b);
}

TEST(VectorQSort, SortsEveryShapeInNLogN) {
    for (const char* shape : {"rising", "random", "falling", "equal", "organ pipe", "last out of place", "saw"}) {
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
    static inline Model s_values;
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
            Longs v = Made(Shaped("rising", n));
            v.QSort(compare);
            std::sort(v.begin(), v.end());
            ASSERT_EQ(Held(v), Shaped("rising", n));
        }
    }
}

TEST(VectorQSort, MovesWideElementsWhole) {
    using Wide = std::array<std::int32_t, 16>;
    TVector<Wide> v;
    std::mt19937 random(5);
    for (int i = 0; i < 3000; ++i) {
        Wide wide;
        wide.fill(static_cast<std::int32_t>(random() % 1000));
        v.Add(wide);
    }
    v.QSort([](const Wide* a, const Wide* b) { return (*a)[0] - (*b)[0]; });
    EXPECT_TRUE(std::is_sorted(v.begin(), v.end()));
    for (const Wide& wide : v) ASSERT_EQ(std::count(wide.begin(), wide.end(), wide[0]), 16);
}

}  // namespace
}  // namespace dorvutil
