#include "dorvutil/geometry/segment.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "geometry/plain_geometry.h"

namespace dorvutil {
namespace {

using plain::Point;

TEST(Segment, DotProductsAtTheEndsOfTheRange) {
    EXPECT_EQ(DotProduct({3, -4}, {5, 6}), -9.0);
    EXPECT_EQ(DotProduct({INT32_MIN, 0}, {INT32_MIN, 0}), 4611686018427387904.0);
    EXPECT_EQ(DotProductFast({3, -4}, {5, 6}), -9);
    EXPECT_EQ(DotProductFast({65536, 1}, {65536, 7}), 7);
    EXPECT_EQ(DotProductFast({INT32_MAX, INT32_MAX}, {2, 2}), -4);
    EXPECT_EQ(DotProductFast({INT32_MIN, INT32_MIN}, {1, 1}), 0);
}

TEST(Segment, ProjectionsBeforeOnAndBeyond) {
    static constexpr struct {
        const char* name;
        Point a, b, p;
        double t;
        Point out;
    } kCases[] = {
        {"no length", {5, 6}, {5, 6}, {100, 100}, 0, {5, 6}},
        {"before", {0, 0}, {10, 0}, {-5, 3}, -0.5, {0, 0}},
        {"at the start", {0, 0}, {10, 0}, {0, 3}, 0, {0, 0}},
        {"half rounds away from zero", {0, 0}, {5, 0}, {-100, 0}, -20, {0, 0}},
        {"half up", {0, 0}, {5, -5}, {5, 0}, 0.5, {3, -3}},
        {"the step is rounded, not the sum", {10, 10}, {5, 15}, {5, 10}, 0.5, {7, 13}},
        {"at the end", {0, 0}, {10, 0}, {10, 3}, 1, {10, 0}},
        {"beyond", {0, 0}, {10, 0}, {25, 3}, 2.5, {10, 0}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Point out, fastOut;
        double t = 99;
        EXPECT_EQ(ProjectPt(c.a, c.b, c.p, out), c.t);
        EXPECT_EQ(out, c.out);
        EXPECT_EQ(ProjectPtFast(c.a, c.b, c.p, fastOut), c.t);
        EXPECT_EQ(fastOut, c.out);
        EXPECT_EQ(GetTRatio(c.a, c.b, c.p), c.t);
        const Point away = c.out - c.p;
        EXPECT_EQ(DistanceTo2(c.a, c.b, c.p, out, t), away.x * away.x + away.y * away.y);
        EXPECT_EQ(t, c.t);
    }
}

TEST(Segment, FastRatioHalvesUntilSixteenBitsHoldEverything) {
    static constexpr struct {
        Point seg, rel;
        double t;
    } kCases[] = {
        {{32767, 0}, {16384, 0}, 16384.0 / 32767},
        {{32768, 0}, {16385, 0}, 8192.0 / 16384},
        {{-32767, 0}, {-1, 0}, 1.0 / 32767},
        {{-32768, 0}, {-1, 0}, 1.0 / 16384},
        {{1, 0}, {-32768, 0}, 0},
        {{-1, 0}, {0, 65535}, 0},
        {{-1, 0}, {-65535, 0}, 32768.0 / 2},
        {{0, 0}, {5, 5}, 0},
        {{INT32_MIN, 0}, {INT32_MIN, 0}, 1},
        {{32767, 32767}, {32767, 32767}, 1},
        {{INT32_MAX, INT32_MIN}, {0, INT32_MAX}, -0.5},
    };
    for (const auto& c : kCases) {
        const double t = GetTRatioFast(c.seg, c.rel);
        EXPECT_NEAR(t, c.t, std::fabs(c.t) * 1e-4) << c.seg.x << ' ' << c.rel.x;
        EXPECT_EQ(t, plain::TRatioFast(c.seg, c.rel)) << c.seg.x << ' ' << c.rel.x;
    }
    EXPECT_EQ(GetTRatioFast({32768, 0}, {16385, 0}), 0.5);
    EXPECT_EQ(GetTRatioFast({-32768, 0}, {-1, 0}), 1.0 / 16384);
}

TEST(Segment, EveryFormAgreesWithWideArithmetic) {
    for (std::uint32_t seed = 1; seed <= 6000; ++seed) {
        SCOPED_TRACE(seed);
        plain::Points random(seed);
        const Point a = random.Next(), b = random.Next(), p = random.Next();
        const long double dx = static_cast<long double>(b.x) - a.x, dy = static_cast<long double>(b.y) - a.y;
        const long double square = dx * dx + dy * dy;
        const long double wide =
            square == 0
                ? 0
                : ((static_cast<long double>(p.x) - a.x) * dx + (static_cast<long double>(p.y) - a.y) * dy) / square;
        Point out, fastOut;
        double t = 0;
        const double distance = DistanceTo2(a, b, p, out, t);
        ASSERT_NEAR(t, static_cast<double>(wide), 1e-9 * std::max(1.0, std::fabs(t)));
        const long double cut = std::fmin(std::fmax(wide, 0.0L), 1.0L);
        ASSERT_LE(std::fabs(out.x - (a.x + dx * cut)), 0.501L);
        ASSERT_LE(std::fabs(out.y - (a.y + dy * cut)), 0.501L);
        ASSERT_EQ(distance, DistanceTo2(a, b, p, out));
        ASSERT_EQ(GetTRatioFast(b - a, p - a), plain::TRatioFast(b - a, p - a));
        const double fast = ProjectPtFast(b - a, p - a, fastOut);
        ASSERT_EQ(fastOut, fast <= 0 ? Point{} : fast >= 1 ? b - a : (b - a) * fast);
        Point aliased = p;
        ASSERT_EQ(DistanceTo2(a, b, aliased, aliased), distance);
        ASSERT_EQ(aliased, out);
        Point fastAliased = p, fastPoint;
        double fastT = 0;
        ASSERT_EQ(DistanceToFast(a, b, fastAliased, fastAliased, fastT), DistanceToFast(a, b, p, fastPoint, t));
        ASSERT_EQ(fastPoint, fastOut + a);
    }
}

}  // namespace
}  // namespace dorvutil
