#include "dorvutil/geometry/albers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <thread>
#include <vector>

namespace dorvutil {
namespace {

struct Set {
    const char* name;
    void (PrjAlber::*choose)();
    double mileRatio, phi1, phi2, origin, lambda0, scale, falseE, falseN;
};
constexpr Set kSets[] = {
    {"SA", &PrjAlber::SetSA, 2100, 5, -4, 48.5, 21, 320, 1500000, -1300000},
    {"Europe", &PrjAlber::SetEurope, 2100, 44, 53, 48.5, 21, 320, 1500000, -1300000},
    {"Asia", &PrjAlber::SetAsia, 2100, 30, -15, 48.5, 21, 320, 1500000, -1300000},
    {"Africa", &PrjAlber::SetAfrica, 2100, 30, -15, 48.5, 21, 320, 1500000, -1300000},
    {"Oceania", &PrjAlber::SetOceania, 2100, 30, -15, 48.5, 21, 320, 1500000, -1300000},
    {"NA", &PrjAlber::SetNA, 2522, 29.5, 45.5, 45, -96, 399.5, 4532500, 2802000},
};

struct Plane {
    double x, y;
};

Plane Polar(const Set& set, double lon, double lat) {
    constexpr double k = 0.017453292, h = 0.008726646, q = 0.7853981633974483;
    const double m = (std::sin(set.phi1 * k) + std::sin(set.phi2 * k)) / 2;
    const double c = std::sin(q - set.phi1 * h) * std::sin(q - set.phi2 * h) / m;
    const double rho = 50165.23038 * std::sqrt(std::pow(std::sin(q - lat * 0.5 * k), 2) / m + c * c);
    const double theta = (lon - set.lambda0) * m * k;
    return {rho * std::sin(theta), -rho * std::cos(theta)};
}

Plane PlainProjection(const Set& set, double lon, double lat) {
    const Plane at = Polar(set, lon, lat), origin = Polar(set, set.lambda0, set.origin);
    return {set.scale * (at.x - origin.x) + set.falseE, set.scale * (at.y - origin.y) + set.falseN};
}

TEST(Albers, EverySetBothWays) {
    PrjAlber projection;
    for (const Set& set : kSets) {
        SCOPED_TRACE(set.name);
        (projection.*set.choose)();
        EXPECT_EQ(projection.GetMileRatio(), set.mileRatio);
        for (double lat = -88; lat <= 88; lat += 11)
            for (double lon = -180; lon <= 180; lon += 7.5) {
                const Plane expected = PlainProjection(set, lon, lat);
                double x = 0, y = 0, backLon = 0, backLat = 0;
                projection.LongLat2Albers(lon, lat, x, y);
                ASSERT_NEAR(x, expected.x, 1e-6);
                ASSERT_NEAR(y, expected.y, 1e-6);
                std::int32_t wholeX = 0, wholeY = 0;
                projection.LongLat2Albers(lon, lat, wholeX, wholeY);
                ASSERT_EQ(wholeX, std::lround(x));
                ASSERT_EQ(wholeY, std::lround(y));
                projection.Albers2LongLat(x, y, backLon, backLat);
                ASSERT_NEAR(backLat, lat, 6e-6) << lon;
                ASSERT_NEAR(std::remainder(backLon - lon, 360), 0, 6e-6) << lat;
            }
    }
    const PrjAlber built;
    EXPECT_EQ(built.GetMileRatio(), 2522);
}

TEST(Albers, InverseTakesAnyPointAndStaysOnEarth) {
    const PrjAlber projection;
    const double kOdd[] = {0, 1e9, -1e9, 1e300, std::numeric_limits<double>::infinity()};
    for (const double x : kOdd)
        for (const double y : kOdd) {
            double lon = 0, lat = 0;
            projection.Albers2LongLat(x, y, lon, lat);
            EXPECT_FALSE(std::fabs(lat) > 90.0001) << x << ' ' << y;
            std::int32_t wholeX = 0, wholeY = 0;
            projection.LongLat2Albers(x, y, wholeX, wholeY);
        }
    // West of the cone's seam: the longitude comes back from the other side.
    double x = 0, y = 0, lon = 0, lat = 0;
    projection.LongLat2Albers(-190, 40, x, y);
    projection.Albers2LongLat(x, y, lon, lat);
    EXPECT_NEAR(lon, 170, 6e-6);
}

TEST(Albers, BearingsBecomeAngles) {
    const PrjAlber projection;
    const double pi = std::numbers::pi;
    const double kCases[][2] = {{0, pi / 2}, {90, 0}, {180, -pi / 2}, {270, pi}, {269, -179 * pi / 180}, {360, pi / 2}};
    for (const auto& c : kCases) EXPECT_NEAR(projection.True2RadianAngle(c[0]), c[1], 1e-12) << c[0];
}

TEST(Albers, CorrectionKeepsTheAnchorsOfTheFirstCall) {
    const Set& set = kSets[5];
    const auto whole = [&](double lon, double lat) {
        const Plane at = PlainProjection(set, lon, lat);
        return Plane{std::round(at.x), std::round(at.y)};
    };
    const Plane pole = whole(set.lambda0, 90), a = whole(set.lambda0, set.phi1), c = whole(set.lambda0 + 26, set.phi1),
                d = whole(set.lambda0 + 26, set.phi2);
    const Plane apex{a.x, std::trunc((d.x * c.y - c.x * d.y + (d.y - c.y) * a.x) / (c.x - d.x))};
    const TOrvPoint<std::int32_t> point{4'000'000, 2'000'000};
    const double expected =
        std::atan2(apex.y - point.y, apex.x - point.x) - std::atan2(pole.y - point.y, pole.x - point.x);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] { EXPECT_NEAR(PrjAlber().CorrectAlbersAngle(point), expected, 1e-12); });
    for (std::thread& thread : threads) thread.join();
    PrjAlber other;
    other.SetEurope();
    EXPECT_NEAR(other.CorrectAlbersAngle(point), expected, 1e-12);
    EXPECT_EQ(other.CorrectAlbersAngle({static_cast<std::int32_t>(pole.x), 5}), 0);
    EXPECT_EQ(other.CorrectAlbersAngle({5, static_cast<std::int32_t>(pole.y)}), 0);
    EXPECT_EQ(other.CorrectAlbersAngle({5, static_cast<std::int32_t>(apex.y)}), 0);
    EXPECT_TRUE(std::isfinite(other.CorrectAlbersAngle({INT32_MIN, INT32_MAX})));
}

}  // namespace
}  // namespace dorvutil
