#include "dorvutil/geometry/national_grid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace dorvutil {
namespace {

struct LatLon {
    double lat = 0, lon = 0;
};

LatLon British(double easting, double northing) {
    LatLon at;
    FullEN_to_LatLon(easting, northing, 6377563.396, 6356256.91, 400000, -100000, 0.9996012717, &at.lat, &at.lon);
    return at;
}

// The published formulas term by term.
LatLon Published(double easting, double northing) {
    const double a = 6377563.396 * 0.9996012717, b = 6356256.91 * 0.9996012717;
    const double phi0 = 0.8552113334772207, e2 = (a * a - b * b) / (a * a), n = (a - b) / (a + b);
    const auto arc = [&](double phi) {
        return b * ((1 + n + 5 * n * n / 4 + 5 * n * n * n / 4) * (phi - phi0) -
                    (3 * n + 3 * n * n + 21 * n * n * n / 8) * std::sin(phi - phi0) * std::cos(phi + phi0) +
                    (15 * n * n / 8 + 15 * n * n * n / 8) * std::sin(2 * (phi - phi0)) * std::cos(2 * (phi + phi0)) -
                    35 * n * n * n / 24 * std::sin(3 * (phi - phi0)) * std::cos(3 * (phi + phi0)));
    };
    double phi = (northing + 100000) / a + phi0;
    while (std::fabs(northing + 100000 - arc(phi)) >= 0.00001) phi += (northing + 100000 - arc(phi)) / a;
    const double nu = a / std::sqrt(1 - e2 * std::pow(std::sin(phi), 2));
    const double rho = a * (1 - e2) * std::pow(1 - e2 * std::pow(std::sin(phi), 2), -1.5);
    const double eta2 = nu / rho - 1, t = std::tan(phi), sec = 1 / std::cos(phi), d = easting - 400000;
    const double VII = t / (2 * rho * nu);
    const double VIII = t / (24 * rho * std::pow(nu, 3)) * (5 + 3 * t * t + eta2 - 9 * t * t * eta2);
    const double IX = t / (720 * rho * std::pow(nu, 5)) * (61 + 90 * t * t + 45 * std::pow(t, 4));
    const double X = sec / nu, XI = sec / (6 * std::pow(nu, 3)) * (nu / rho + 2 * t * t);
    const double XII = sec / (120 * std::pow(nu, 5)) * (5 + 28 * t * t + 24 * std::pow(t, 4));
    const double XIIA =
        sec / (5040 * std::pow(nu, 7)) * (61 + 662 * t * t + 1320 * std::pow(t, 4) + 720 * std::pow(t, 6));
    return {(phi - VII * d * d + VIII * std::pow(d, 4) - IX * std::pow(d, 6)) * 57.29577951308238,
            (-0.034906585039886556 + X * d - XI * std::pow(d, 3) + XII * std::pow(d, 5) - XIIA * std::pow(d, 7)) *
                57.29577951308238};
}

TEST(NationalGrid, SquaresOfTwoLetters) {
    static constexpr struct {
        const char* square;
        std::int32_t valid;
        double easting, northing;
    } kCases[] = {
        {"TQ", 1, 500000, 100000}, {"tq", 1, 500000, 100000},  {"SV", 1, 0, 0},
        {"SE", 1, 400000, 400000}, {"HU", 1, 400000, 1100000}, {"NT", 1, 300000, 600000},
        {"OV", 1, 500000, 500000}, {"JM", 1, 600000, 1200000}, {"TQ300805", 1, 500000, 100000},
        {"ZZ", 0, 400000, 0},      {"AA", 0, 0, 400000},       {"TI", 0, -1, -1},
        {"T", 0, -1, -1},          {"T1", 0, -1, -1},          {"\xFF\xFF", 0, -1, -1},
        {"", 1, -1, -1},           {nullptr, 1, -1, -1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.square ? c.square : "null");
        double easting = -1, northing = -1;
        EXPECT_EQ(OSGBSquareToFullEN(c.square, &easting, &northing), c.valid);
        EXPECT_EQ(easting, c.easting);
        EXPECT_EQ(northing, c.northing);
    }
    double easting = 0;
    EXPECT_EQ(OSGBSquareToFullEN("TQ", &easting, nullptr), 0);
}

TEST(NationalGrid, AgreesWithThePublishedExampleAndFormulas) {
    // The worked example of the Ordnance Survey's guide.
    const LatLon example = British(651409.903, 313177.270);
    EXPECT_NEAR(example.lat, 52 + 39 / 60.0 + 27.2531 / 3600, 1e-8);
    EXPECT_NEAR(example.lon, 1 + 43 / 60.0 + 4.5177 / 3600, 1e-8);
    const LatLon origin = British(400000, -100000);
    EXPECT_NEAR(origin.lat, 49, 1e-12);
    EXPECT_NEAR(origin.lon, -2, 1e-12);
    const auto seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    // Where the last step only just ends the search, rounding may grant or spare one more, of up to 0.01 mm.
    int oneStepMore = 0;
    for (int i = 0; i < 20'000; ++i) {
        const double easting = static_cast<std::uint32_t>(random() % 700'000);
        const double northing = static_cast<std::uint32_t>(random() % 1'300'000);
        const LatLon ours = British(easting, northing), published = Published(easting, northing);
        const double off = std::max(std::fabs(ours.lat - published.lat), std::fabs(ours.lon - published.lon));
        ASSERT_LT(off, 1e-10) << easting << ' ' << northing;
        if (off > 2e-13) ++oneStepMore;
    }
    EXPECT_LT(oneStepMore, 20);
}

TEST(NationalGrid, NumbersThatFitNoEarthEndToo) {
    constexpr double kOdd[] = {0,
                               -1,
                               1e300,
                               -1e300,
                               1e-300,
                               std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN(),
                               6377563.396};
    LatLon at;
    for (const double a : kOdd)
        for (const double b : kOdd)
            for (const double n : kOdd) FullEN_to_LatLon(n, n, a, b, 0, 0, 1, &at.lat, &at.lon);
    FullEN_to_LatLon(1, 1, 1, 1, 1, 1, 1, nullptr, &at.lon);
    FullEN_to_LatLon(1, 1, 1, 1, 1, 1, 1, &at.lat, nullptr);
}

TEST(NationalGrid, TextsOfSixCharacters) {
    std::int32_t x = 77, y = 77;
    for (const char* const other : {"5300000", "53000", "", static_cast<const char*>(nullptr)}) {
        EXPECT_FALSE(StrEN_to_LatLon(other, "180500", &x, &y));
        EXPECT_FALSE(StrEN_to_LatLon("530000", other, &x, &y));
    }
    EXPECT_FALSE(StrEN_to_LatLon("530000", "180500", nullptr, &y));
    EXPECT_FALSE(StrEN_to_LatLon("530000", "180500", &x, nullptr));
    EXPECT_EQ(x + y, 154);
    static constexpr struct {
        const char *easting, *northing;
        double e, n;
    } kCases[] = {
        {"530000", "180500", 530000, 180500}, {" 40000", "-10000", 40000, -10000}, {"12x456", "abcdef", 12, 0}};
    for (const auto& c : kCases) {
        EXPECT_TRUE(StrEN_to_LatLon(c.easting, c.northing, &x, &y));
        EXPECT_EQ(x, static_cast<std::int32_t>(Published(c.e, c.n).lon * 1e6));
        EXPECT_EQ(y, static_cast<std::int32_t>(Published(c.e, c.n).lat * 1e6));
    }
}

}  // namespace
}  // namespace dorvutil
