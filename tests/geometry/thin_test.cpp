#include <gtest/gtest.h>

#include <cmath>

#include "dorvutil/geometry/thin_polyline.h"
#include "geometry/plain_thinning.h"
#include "memory/failing_heap.h"

namespace dorvutil {
namespace {

using plain::Point;

struct Settings {
    bool m_check;
    bool m_limit;
    double m_maxWeight;
    double m_errorRatio;
};

TVector<Point> VectorOf(const std::vector<Point>& points) {
    TVector<Point> vector;
    for (const Point& p : points) vector.Add(p);
    return vector;
}

std::vector<Point> Thinned(const std::vector<Point>& in, const Settings& s, const std::vector<bool>& locked = {}) {
    TVector<bool> locks;
    for (const bool lock : locked) locks.Add(lock);
    TVector<Point> line = VectorOf(in);
    EXPECT_TRUE(ThinPolyLine(s.m_check, s.m_limit).Thin(line, s.m_maxWeight, locks, s.m_errorRatio, line));
    return {line.begin(), line.end()};
}

// A line like a coast: long and short steps, every now and then back over itself.
std::vector<Point> Coast(plain::Points& random, std::uint32_t n) {
    std::vector<Point> line;
    Point at;
    for (std::uint32_t i = 0; i < n; ++i) {
        const std::uint32_t step = 1u << random.Below(16);
        at += {static_cast<std::int32_t>(random.Below(3 * step)) - static_cast<std::int32_t>(step),
               static_cast<std::int32_t>(random.Below(2 * step)) - static_cast<std::int32_t>(step)};
        line.push_back(at);
    }
    return line;
}

TEST(Thin, EqualsThePlainWay) {
    static constexpr double kWeights[] = {0, 1, 100, 1e6, 1e9, 1e12, HUGE_VAL, NAN, -1};
    static constexpr double kRatios[] = {0, 1e-6, 1e-3, 0.1, 1, 100, 1e6, HUGE_VAL, -1, NAN};
    for (std::uint32_t seed = 1; seed <= 1500; ++seed) {
        SCOPED_TRACE(seed);
        plain::Points random(seed);
        const std::uint32_t n = random.Below(seed % 50 == 0 ? 300 : 40);
        const std::vector<Point> in = seed % 3 == 0 ? Coast(random, n) : random.Line(n);
        const Settings s{random.Below(2) == 0, random.Below(2) == 0, kWeights[random.Below(9)],
                         kRatios[random.Below(10)]};
        std::vector<bool> locked(random.Below(2) == 0 ? n : 0);
        for (std::size_t i = 0; i < locked.size(); ++i) locked[i] = random.Below(4) == 0;
        ASSERT_EQ(Thinned(in, s, locked),
                  plain::Thinning(in, s.m_check, s.m_limit).Run(s.m_maxWeight, locked, s.m_errorRatio))
            << s.m_check << s.m_limit << ' ' << s.m_maxWeight << ' ' << s.m_errorRatio;
    }
}

TEST(Thin, EqualsThePlainWayWhileTheErrorLimitIsReached) {
    for (std::uint32_t seed = 1; seed <= 120; seed += 5) {
        SCOPED_TRACE(seed);
        plain::Points random(seed);
        const std::vector<Point> in = Coast(random, 400);
        std::vector<bool> locked(in.size());
        for (std::size_t i = 0; i < locked.size(); ++i) locked[i] = random.Below(3) == 0;
        const Settings s{seed % 2 == 0, seed % 4 < 2, HUGE_VAL, std::exp2(static_cast<double>(seed) / 8 - 12)};
        ASSERT_EQ(Thinned(in, s, locked),
                  plain::Thinning(in, s.m_check, s.m_limit).Run(s.m_maxWeight, locked, s.m_errorRatio));
    }
}

TEST(Thin, WhatStays) {
    using Line = std::vector<Point>;
    const Line hairpin{{0, 0}, {50, 40}, {100, 0}, {50, 10}};
    const Line notThere{{0, 0}, {100, 0}, {50, 10}};
    const std::vector<bool> third{false, false, true};
    static const struct {
        const char* name;
        Line in;
        Settings settings;
        std::vector<bool> locked;
        Line out;
    } kCases[] = {
        {"nothing", {}, {false, false, 9, 9}, {}, {}},
        {"two points", {{0, 0}, {0, 0}}, {false, false, 9, 9}, {}, {{0, 0}, {0, 0}}},
        {"collinear middle", {{0, 0}, {5, 5}, {9, 9}}, {false, false, 1, 0}, {}, {{0, 0}, {9, 9}}},
        {"no weight is below 0", {{0, 0}, {5, 5}, {9, 9}}, {false, false, 0, 9}, {}, {{0, 0}, {5, 5}, {9, 9}}},
        {"locked", {{0, 0}, {5, 5}, {9, 9}}, {false, false, 1, 0}, {false, true}, {{0, 0}, {5, 5}, {9, 9}}},
        {"32766 apart", {{0, 0}, {5, 9}, {32766, 0}}, {false, true, 1e9, 1e9}, {}, {{0, 0}, {32766, 0}}},
        {"32767 apart", {{0, 0}, {5, 9}, {0, 32767}}, {false, true, 1e9, 1e9}, {}, {{0, 0}, {5, 9}, {0, 32767}}},
        {"hairpin", hairpin, {true, false, 1e9, 1e9}, third, hairpin},
        {"hairpin unchecked", hairpin, {false, false, 1e9, 1e9}, third, notThere},
        {"weightless goes unchecked",
         {{0, 0}, {4, 0}, {8, 0}, {6, 9}, {2, 0}},
         {true, false, 1, 9},
         {},
         {{0, 0}, {8, 0}, {6, 9}, {2, 0}}},
        {"on the triangle's line",
         {{0, 0}, {4, 0}, {8, 0}, {6, 9}, {2, 0}},
         {true, true, 1, 9},
         {},
         {{0, 0}, {4, 0}, {8, 0}, {6, 9}, {2, 0}}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Thinned(c.in, c.settings, c.locked), c.out);
    }
}

TEST(Thin, LongStraightLinesCostNoSquare) {
    std::vector<Point> line;
    for (std::int32_t i = 0; i < 60000; ++i) line.push_back({3 * i, -5 * i});
    EXPECT_EQ(Thinned(line, {true, false, 1, 0}).size(), 2u);
}

TEST(Thin, WithoutMemoryTheLineStays) {
    std::vector<Point> points;
    for (std::int32_t i = 0; i < 50; ++i) points.push_back({i, i % 2});
    const TVector<Point> in = VectorOf(points);
    TVector<Point> whole;
    ThinPolyLine(true, false).Thin(in, 9, 9, whole);
    ASSERT_LT(whole.Count(), 50u);
    for (int n = 1; n < 30; ++n) {
        SCOPED_TRACE(n);
        TVector<Point> out;
        ThinPolyLine thinner(true, false);
        {
            const FailingHeap heap(n);
            EXPECT_TRUE(thinner.Thin(in, 9, 9, out));
        }
        EXPECT_TRUE(out == in || out == whole || out.Count() == 0) << out.Count();
        const ThinPolyLine copy(thinner);
        EXPECT_TRUE(ThinPolyLine(copy).Thin(in, 9, 9, out) && out == whole);
    }
    Point foreign[] = {{0, 0}, {5, 5}, {9, 9}};
    TVector<Point> wrapped(foreign, 3, false);
    ThinPolyLine(false, false).Thin(wrapped, 1, 1, wrapped);
    EXPECT_EQ(wrapped.Count(), 2u);
    EXPECT_EQ(foreign[1], (Point{5, 5}));
}

}  // namespace
}  // namespace dorvutil
