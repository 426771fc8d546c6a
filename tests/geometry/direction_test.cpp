#include "dorvutil/geometry/direction.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "dorvutil/geometry/delta_time.h"
#include "dorvutil/geometry/units.h"

namespace dorvutil {
namespace {

using Point = TOrvPoint<std::int32_t>;

constexpr std::int32_t kExtremes[] = {INT32_MIN, INT32_MIN + 1, -1, 0, 1, INT32_MAX - 1, INT32_MAX};

TEST(Point, ScalesWithRoundingAndWraps) {
    EXPECT_EQ((Point{3, -3} * 0.5), (Point{2, -2}));
    EXPECT_EQ((Point{5, -7} * 0.1), (Point{1, -1}));
    EXPECT_EQ((Point{INT32_MAX, INT32_MIN} * 2), (Point{INT32_MAX, INT32_MIN}));
    EXPECT_EQ((Point{1, 1} * std::numeric_limits<double>::quiet_NaN()), Point());
    EXPECT_EQ((Point{INT32_MAX, INT32_MIN} + Point{1, -1}), (Point{INT32_MIN, INT32_MAX}));
    EXPECT_EQ((Point{INT32_MIN, 0} - Point{1, INT32_MIN}), (Point{INT32_MAX, INT32_MIN}));
}

TEST(Units, CutAndSaturate) {
    EXPECT_EQ(MilesToCoords(1), 14483);
    EXPECT_EQ(MilesToCoords(-1), -14482);
    EXPECT_EQ(MilesToCoords(1e9), INT32_MAX);
    EXPECT_EQ(MilesToCoords(-1e300), INT32_MIN);
    EXPECT_EQ(MilesToCoords(std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(MetersToCoords(1000), 8999);
    EXPECT_EQ(MetersToCoords(INT32_MAX), INT32_MAX);
    EXPECT_EQ(MetersToCoords(INT32_MIN), INT32_MIN);
    EXPECT_DOUBLE_EQ(CoordsToMiles(14482.937354437941), 1);
    EXPECT_DOUBLE_EQ(Util_MetersToFeet(1000), 3280.8);
    EXPECT_DOUBLE_EQ(DegreesToRadians(180), std::numbers::pi);
}

TEST(Units, ParallelsCountInWholeDegrees) {
    static constexpr struct {
        std::int32_t latitude, units;
    } kCases[] = {{0, 8999},
                  {999'999, 8999},
                  {60'000'000, 17997},
                  {60'999'999, 17997},
                  {-60'999'999, 17997},
                  {89'999'999, 515630},
                  {90'000'000, 8999},
                  {90'999'999, 8999},
                  {-89'999'999, 515630},
                  {-90'000'000, INT32_MAX},
                  {180'000'000, 8999}};
    for (const auto& c : kCases) {
        EXPECT_EQ(MetersToCoords(1000, c.latitude), c.units) << c.latitude;
        EXPECT_NEAR(MilesToCoords(1000 / 1609.344, c.latitude), c.units, c.units * 1e-3) << c.latitude;
    }
    EXPECT_EQ(MetersToCoords(0, -90'000'000), 0);
    EXPECT_NEAR(CoordsToMiles(1e6, 60'500'000), 1e6 / 14482.937354437941 / 2, 1e-9);
    EXPECT_NEAR(CoordsToMiles(1e6, 90'000'000), 0, 1e-9);
    for (const std::int32_t extreme : kExtremes) {
        MetersToCoords(extreme, extreme);
        EXPECT_TRUE(std::isfinite(CoordsToMiles(1, extreme)));
    }
}

TEST(Direction, BearingsOfTheCompass) {
    // x, y, degrees, bearing, bearing in whole degrees, way
    static constexpr double kCases[][6] = {{0, 9, 90, 0, 0, 1},
                                           {9, 9, 45, 45, 45, 1},
                                           {9, 0, 0, 90, 90, 2},
                                           {9, -9, 315, 135, 134, 3},
                                           {0, -9, 270, 180, 180, 3},
                                           {-9, -9, 225, 225, 225, 3},
                                           {-9, 0, 180, 270, 269, 4},
                                           {-9, 9, 135, 315, 314, 1},
                                           {10, 9, 41.987, 48.013, 48, 2},
                                           {-10, -9, 221.987, 228.013, 228, 4}};
    for (const auto& [x, y, degrees, bearing, whole, way] : kCases) {
        const Point to{static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)};
        EXPECT_NEAR(GetRadians({}, to), degrees * std::numbers::pi / 180, 1e-5) << bearing;
        EXPECT_NEAR(GetDegrees({}, to), degrees, 1e-3) << bearing;
        EXPECT_NEAR(GetMapRotateDegrees({}, to, -1), bearing, 1e-3);
        EXPECT_EQ(FindPointDegreeFromCenterPoint(5, 5, to.x + 5, to.y + 5), whole) << bearing;
        EXPECT_EQ(CalcDirection({}, to), way) << bearing;
    }
}

TEST(Direction, PointsWithoutDirectionAndExtremes) {
    EXPECT_EQ(GetRadians({7, 7}, {7, 7}), std::numbers::pi / 2);
    EXPECT_EQ(GetMapRotateDegrees({7, 7}, {7, 7}, 123.5), 123.5);
    EXPECT_EQ(GetMapRotateDegrees({0, -89'999'999}, {-1, 90'000'000}, 7), 0);  // not 360
    EXPECT_EQ(FindPointDegreeFromCenterPoint(7, 7, 7, 7), 0);
    EXPECT_EQ(CalcDirection({7, 7}, {7, 7}), 3);
    EXPECT_EQ(FindPointDegreeFromCenterPoint(0, 0, -1, INT32_MAX), 360);
    for (const std::int32_t a : kExtremes)
        for (const std::int32_t b : kExtremes) {
            const double bearing = GetMapRotateDegrees({a, b}, {b, a}, 0);
            EXPECT_TRUE(bearing >= 0 && bearing < 360) << bearing;
            EXPECT_LE(FindPointDegreeFromCenterPoint(a, b, b, a), 360);
            EXPECT_TRUE(CalcDirection({a, b}, {b, a}) - 1u < 4u);
            PerpendicularOffset({a, b}, {b, a}, a);
        }
}

TEST(Direction, ScaledAtTheRightLatitude) {
    // At 60 degrees an east-west unit counts half: the whole latitude, of the start.
    EXPECT_NEAR(GetDegrees({0, 60'000'000}, {2'000'000, 61'000'000}), 45, 1e-9);
    EXPECT_NEAR(GetDegrees({0, 60'500'000}, {1'000'000, 61'500'000}),
                std::atan2(1, std::cos(60.5 * std::numbers::pi / 180)) * 180 / std::numbers::pi, 1e-9);
    EXPECT_NEAR(GetMapRotateDegrees({0, 60'000'000}, {-2'000'000, 61'000'000}, 0), 315, 1e-9);
    // CalcDirection takes it half the way beyond the end: here 70 degrees.
    EXPECT_EQ(CalcDirection({0, 40'000'000}, {77'000'000, 60'000'000}), 2);
    EXPECT_EQ(CalcDirection({0, 40'000'000}, {58'000'000, 60'000'000}), 1);
}

TEST(Direction, HeadingsOffsetsAndMecca) {
    static constexpr std::int32_t kHeadings[][3] = {
        {350, 10, 20}, {10, 350, 20}, {-90, 90, 180},      {0, 181, 179},       {725, -1, 6},
        {0, 0, 0},     {180, 0, 180}, {INT32_MIN, 0, 128}, {INT32_MAX, 0, 127}, {INT32_MAX, INT32_MIN, 105}};
    for (const auto& h : kHeadings) EXPECT_EQ(AbsHeadingDiff(h[0], h[1]), h[2]) << h[0] << ' ' << h[1];
    EXPECT_EQ(PerpendicularOffset({5, 5}, {5, 5}, 100), Point());
    EXPECT_EQ(PerpendicularOffset({0, 0}, {100, 100}, 1000), (Point{-707, 707}));
    EXPECT_EQ(PerpendicularOffset({0, 0}, {0, -5}, 1000).x, 1000);
    EXPECT_EQ(PerpendicularOffset({0, 0}, {100, 100}, -1000), (Point{707, -707}));
    EXPECT_NEAR(Util_GetQibla(0, 0), 58.5, 0.05);
    EXPECT_NEAR(Util_GetQibla(21.4233, 60), 360 - Util_GetQibla(21.4233, 39.8233 * 2 - 60), 1e-9);
    EXPECT_NEAR(Util_GetQibla(51.5, -0.12), 118.9914, 1e-4);
}

TEST(DeltaTime, HoursInStepsOfTwoSeconds) {
    constexpr double kStep = 2 / 3600.0;
    constexpr double kTo1980 = 138426 * 24;
    static constexpr double kCases[][5] = {{910617, 80000, 910617, 93000, 1.5},
                                           {910617, 93000, 910617, 80000, -1.5},
                                           {910617, 80000, 910617, 80003, kStep},
                                           {910617, 80001, 910617, 80003, kStep},
                                           {910228, 0, 910301, 0, 24},
                                           {920228, 0, 920301, 0, 48},
                                           {600101, 0, 610101, 0, 366 * 24},
                                           {910617, 235959, 910618, 0, kStep},
                                           {590101, 0, 600101, 0, -1113264},
                                           {910000, 0, 911301, 0, 0},
                                           {910230, 0, -910230, 240000, 0},
                                           {910617, 240000, 910617, 6100, 0},
                                           {910617, 60, INT32_MIN, INT32_MAX, 0},
                                           {0, 0, 600101, 0, kTo1980},
                                           {910617, 655360000, 600101, 0, kTo1980}};
    for (const auto& c : kCases) {
        const auto whole = [&c](int i) { return static_cast<std::int32_t>(c[i]); };
        EXPECT_DOUBLE_EQ(GetDeltaTime(whole(0), whole(1), whole(2), whole(3)), c[4]) << c[0] << ' ' << c[3];
    }
}

}  // namespace
}  // namespace dorvutil
