#include "dorvutil/geometry/distance.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "dorvutil/geometry/fixed_trig.h"

namespace dorvutil {
namespace {

using Point = TOrvPoint<std::int32_t>;

constexpr TDistType Unit(int code) { return static_cast<TDistType>(code); }

// The arc by the vectors to both points: exact for near, far and opposite ones.
long double PlainArc(const Point& a, const Point& b) {
    const long double k = std::acos(-1.0L) / 180e6L;
    const long double lat1 = a.y * k, lat2 = b.y * k, span = (static_cast<long double>(b.x) - a.x) * k;
    const long double east = std::cos(lat2) * std::sin(span);
    const long double north = std::cos(lat1) * std::sin(lat2) - std::sin(lat1) * std::cos(lat2) * std::cos(span);
    const long double along = std::sin(lat1) * std::sin(lat2) + std::cos(lat1) * std::cos(lat2) * std::cos(span);
    return std::atan2(std::hypot(east, north), along);
}

constexpr double kMilesPerRadian = 3437.7467707849396 * 1.1507794488636365;

TEST(Distance, OneDegreeInEveryUnit) {
    static constexpr double kFar[] = {69.046767, 111.1200,  364566.93, 111120.00, 69.046767,
                                      69.046767, 69.046767, 69.046767, 69.046767, 69.046767};
    static constexpr double kNear[] = {
        69.046767, 111.1200, 364566.93, 111120.00, 121522.31, 60.0, 0.017453292519943295, 1.0, 1000000.0, 69.046767};
    for (int unit = 0; unit <= 9; ++unit) {
        SCOPED_TRACE(unit);
        EXPECT_NEAR(GC_DistFar(0, 0, 1'000'000, 0, Unit(unit)) / kFar[unit], 1, 1e-7);
        EXPECT_NEAR(GC_DistNear(0, 0, 1'000'000, 0, Unit(unit)) / kNear[unit], 1, 1e-7);
        EXPECT_EQ(GC_DistNearWrapper(1, 2, 3, 4, Unit(unit)), GC_DistNear(1, 2, 3, 4, Unit(unit)));
        if (unit < 9) {
            EXPECT_NEAR(GC_DistFast({0, 0}, {0, 100'000}, Unit(unit)) * 10 / kNear[unit], 1, 1e-6);
        }
    }
    EXPECT_NEAR(GC_DistNear(0, 0, 1'000'000, 0, DT_NAUTICAL_MILES), 60, 1e-9);
    EXPECT_NEAR(GC_DistNear(0, 0, 1'000'000, 0, DT_COORDS), 1e6, 0.01);
    EXPECT_NEAR(GetLineDistance(0, 0, 1'000'000, 0), 69046.767, 0.001);
}

TEST(Distance, PolesAntimeridianAndOppositePoints) {
    static constexpr struct {
        const char* name;
        Point a, b;
        double degrees;
    } kCases[] = {
        {"same", {13, 52}, {13, 52}, 0},
        {"pole to pole", {0, -90'000'000}, {0, 90'000'000}, 180},
        {"across the antimeridian", {179'500'000, 0}, {-179'500'000, 0}, 1},
        {"the antimeridian itself", {180'000'000, 10'000'000}, {-180'000'000, 10'000'000}, 0},
        {"round the pole", {0, 89'000'000}, {180'000'000, 89'000'000}, 2},
        {"opposite on the equator", {0, 0}, {180'000'000, 0}, 180},
        {"one unit", {0, 0}, {0, 1}, 1e-6},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_NEAR(GC_DistNear(c.a.x, c.a.y, c.b.x, c.b.y, DT_DEGREES), c.degrees, 1e-5 * c.degrees + 1e-12);
        EXPECT_NEAR(GC_DistFar(c.a.x, c.a.y, c.b.x, c.b.y, DT_MILES), c.degrees * 69.046767, 2e-4);
    }
}

TEST(Distance, AgreesWithTheVectorsOfBothPoints) {
    const auto seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_int_distribution<std::int32_t> lon(-180'000'000, 180'000'000), lat(-90'000'000, 90'000'000);
    for (int i = 0; i < 20'000; ++i) {
        const Point a{lon(random), lat(random)};
        const Point far{lon(random), lat(random)};
        const Point near{a.x + lon(random) / 500, a.y + lat(random) / 500};
        const auto arc = static_cast<double>(PlainArc(a, near));
        ASSERT_NEAR(GC_DistNear(a.x, a.y, near.x, near.y, DT_RADIANS), arc, 1e-9 * arc + 1e-15);
        ASSERT_NEAR(GetLineDistance(a.x, a.y, near.x, near.y), arc * kMilesPerRadian * 1000, 1e-7 * arc * 4e6);
        const auto farMiles = static_cast<double>(PlainArc(a, far)) * kMilesPerRadian;
        ASSERT_NEAR(GC_DistFar(a.x, a.y, far.x, far.y, DT_MILES), farMiles, 1e-7 * farMiles + 1e-4);
        const auto any = [&] { return i % 8 == 0 ? INT32_MIN : static_cast<std::int32_t>(random()); };
        const Point c{any(), any()}, d{any(), any()};
        ASSERT_GE(GC_DistFast(c, d, DT_FEET) + GC_DistFar(c.x, c.y, d.x, d.y, DT_FEET), 0);
    }
}

TEST(DistFast, IsPlanarBelowTheLimitOnly) {
    static constexpr std::int32_t kLimit = 262144;
    EXPECT_EQ(GC_DistFast({0, 0}, {kLimit - 1, kLimit - 1}, DT_COORDS), 370686);
    EXPECT_EQ(GC_DistFast({0, 0}, {0, 1 - kLimit}, DT_YARDS), 262143 * 0.12152230992);
    for (const Point& far : {Point{kLimit, 0}, {-kLimit, 1}, {0, kLimit}, {1, -kLimit}}) {
        for (int unit = 0; unit <= 9; ++unit)
            EXPECT_EQ(GC_DistFast({0, 0}, far, Unit(unit)), GC_DistNear(0, 0, far.x, far.y, Unit(unit)));
    }
    for (const int unit : {9, 1000, -1}) EXPECT_EQ(GC_DistFast({0, 0}, {5, 5}, Unit(unit)), 0) << unit;
    EXPECT_EQ(GC_DistFast({7, 7}, {7, 7}, DT_FEET), 0);
    // A difference of two extremes wraps.
    EXPECT_EQ(GC_DistFast({INT32_MAX, 0}, {INT32_MIN, 0}, DT_COORDS), 1);
}

TEST(DistFast, FollowsTheTables) {
    const auto seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int i = 0; i < 100'000; ++i) {
        const Point a{static_cast<std::int32_t>(random()) % 180'000'000,
                      static_cast<std::int32_t>(random()) % 91'000'000};
        const Point b{a.x + static_cast<std::int32_t>(random() >> 13) - 262143,
                      a.y + static_cast<std::int32_t>(random() >> 13) - 262143};
        const std::int32_t dx = a.x - b.x, dy = a.y - b.y;
        if (std::abs(dx) >= 262144 || std::abs(dy) >= 262144) continue;
        const auto scaled = static_cast<std::int32_t>(
            std::floor(static_cast<double>(GetCosLat(std::abs((a.y + b.y) / 2))) * dx / 1024));
        ASSERT_EQ(GC_DistFast(a, b, DT_COORDS), FastMag({scaled, dy})) << a.x << ' ' << a.y;
    }
}

}  // namespace
}  // namespace dorvutil
