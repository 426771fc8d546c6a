#include "dorvutil/geometry/national_grid.h"

#include <cmath>
#include <cstring>

#include "dorvutil/geometry/point.h"

namespace dorvutil {
namespace {

constexpr double kOriginLat = 0.8552113334772207;     // 49 degrees north
constexpr double kOriginLon = -0.034906585039886556;  // 2 degrees west
constexpr double kDegreesPerRadian = 57.29577951308238;

constexpr double kSquareSide = 100'000;
constexpr std::size_t kNumberLength = 6;

// The 500 km squares, by their letter.
struct LargeSquare {
    char m_letter;
    double m_easting;
    double m_northing;
};
constexpr LargeSquare kLargeSquares[] = {{'S', 0, 0},         {'T', 500'000, 0},
                                         {'N', 0, 500'000},   {'O', 500'000, 500'000},
                                         {'H', 0, 1'000'000}, {'J', 500'000, 1'000'000}};
// The 100 km squares within one, from the south-west by rows.
constexpr char kSmallSquares[] = "VWXYZQRSTULMNOPFGHJKABCDE";

char UpperCase(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c; }

// A direction by its sine and cosine.
struct Direction {
    double m_sine;
    double m_cosine;

    static Direction Of(double angle) { return {std::sin(angle), std::cos(angle)}; }
    constexpr Direction operator+(const Direction& other) const {
        return {m_sine * other.m_cosine + m_cosine * other.m_sine, m_cosine * other.m_cosine - m_sine * other.m_sine};
    }
};

constexpr double kSmallAngle = 0.0001;  // radians: below it the short series here are exact to the last digit
constexpr Direction SmallDirection(double angle) {
    const double square = angle * angle;
    return {angle * (1 - square / 6), 1 - square / 2};
}

constexpr Direction kTwiceOrigin = {0.9902680687415706, -0.13917310096006383};
constexpr Direction kFourfoldOrigin = kTwiceOrigin + kTwiceOrigin;
constexpr Direction kSixfoldOrigin = kFourfoldOrigin + kTwiceOrigin;

// The length of the meridian from the true origin to a latitude, on an ellipsoid scaled already. The published series
// has products such as sin(lat - origin) * cos(lat + origin); they are half the differences of the sines taken here.
class MeridianArc {
public:
    MeridianArc(double a, double b) : m_b(b) {
        const double n = (a - b) / (a + b);
        const double n2 = n * n;
        const double n3 = n2 * n;
        m_linear = 1 + n + 1.25 * n2 + 1.25 * n3;
        m_twice = 1.5 * n + 1.5 * n2 + 21.0 / 16 * n3;
        m_fourfold = 15.0 / 16 * (n2 + n3);
        m_sixfold = 35.0 / 48 * n3;
    }

    // Expands the length about a latitude: Taylor's series.
    void Expand(double lat, const Direction& once) {
        const Direction twice = once + once;
        const Direction fourfold = twice + twice;
        const Direction sixfold = fourfold + twice;
        m_terms[0] = m_b * (m_linear * (lat - kOriginLat) - m_twice * (twice.m_sine - kTwiceOrigin.m_sine) +
                            m_fourfold * (fourfold.m_sine - kFourfoldOrigin.m_sine) -
                            m_sixfold * (sixfold.m_sine - kSixfoldOrigin.m_sine));
        const auto even = [&](double x2, double x4, double x6) {
            return m_b *
                   (m_twice * x2 * twice.m_sine - m_fourfold * x4 * fourfold.m_sine + m_sixfold * x6 * sixfold.m_sine);
        };
        const auto odd = [&](double x2, double x4, double x6) {
            return m_b * (m_twice * x2 * twice.m_cosine - m_fourfold * x4 * fourfold.m_cosine +
                          m_sixfold * x6 * sixfold.m_cosine);
        };
        m_terms[1] = m_b * m_linear - odd(2, 4, 6);
        m_terms[2] = even(2, 8, 18);
        m_terms[3] = odd(8.0 / 6, 64.0 / 6, 216.0 / 6);
    }

    // The length at the latitude expanded about, plus a small angle; in pairs of terms, which need not wait for each
    // other.
    double Beyond(double angle) const {
        const double square = angle * angle;
        return m_terms[0] + angle * m_terms[1] + square * (m_terms[2] + angle * m_terms[3]);
    }

private:
    double m_b;
    double m_linear;
    double m_twice;
    double m_fourfold;
    double m_sixfold;
    double m_terms[4] = {};
};

struct Foot {
    double m_lat;
    Direction m_direction;
};

// The latitude on the central meridian at `northing` metres from the true origin. The steps are the published ones and
// end where those end, which leaves a rest of their own: it decides the last digits. Expanding the arc once makes them
// cheap: in Great Britain they stay within kSmallAngle.
Foot FindFoot(double northing, double a, double b) {
    constexpr double kClose = 0.00001;  // metres
    constexpr int kMostSteps = 100;     // four or five do on every real ellipsoid
    MeridianArc arc(a, b);
    Foot foot{northing / a + kOriginLat, {}};
    const double perMeter = 1 / a;
    double beyond = 0;
    const auto expand = [&] {
        foot.m_lat += beyond;
        foot.m_direction = Direction::Of(foot.m_lat);
        beyond = 0;
        arc.Expand(foot.m_lat, foot.m_direction);
    };
    expand();
    for (int step = 0; step < kMostSteps; ++step) {
        const double rest = northing - arc.Beyond(beyond);
        if (std::fabs(rest) < kClose) break;
        beyond += rest * perMeter;
        if (!(std::fabs(beyond) < kSmallAngle)) expand();
    }
    return {foot.m_lat + beyond, foot.m_direction + SmallDirection(beyond)};
}

// What atoi reads; six characters exceed no integer, and a general reader would take as long as the projection.
std::int32_t Metres(const char* text) {
    while (*text == ' ' || (*text >= '\t' && *text <= '\r')) ++text;
    const bool negative = *text == '-';
    if (*text == '+' || *text == '-') ++text;
    std::int32_t value = 0;
    for (; *text >= '0' && *text <= '9'; ++text) value = value * 10 + (*text - '0');
    return negative ? -value : value;
}

}  // namespace

std::int32_t OSGBSquareToFullEN(const char* square, double* easting, double* northing) {
    if (!square || *square == 0) return 1;
    const char* const small = square[1] != 0 ? std::strchr(kSmallSquares, UpperCase(square[1])) : nullptr;
    if (!easting || !northing || !small) return 0;
    const LargeSquare* large = nullptr;
    for (const LargeSquare& candidate : kLargeSquares)
        if (candidate.m_letter == UpperCase(square[0])) large = &candidate;
    const auto index = static_cast<std::int32_t>(small - kSmallSquares);
    const std::int32_t column = index % 5;
    const std::int32_t row = index / 5;
    *easting = (large ? large->m_easting : 0) + column * kSquareSide;
    *northing = (large ? large->m_northing : 0) + row * kSquareSide;
    return large ? 1 : 0;
}

void FullEN_to_LatLon(double E, double N, double a, double b, double E0, double N0, double F0, double* latitude,
                      double* longitude) {
    if (!latitude || !longitude) return;
    const double aF0 = a * F0;
    const double bF0 = b * F0;
    const Foot foot = FindFoot(N - N0, aF0, bF0);
    const double sine = foot.m_direction.m_sine;
    const double secant = 1 / foot.m_direction.m_cosine;
    const double t2 = sine * secant * sine * secant;
    const double t4 = t2 * t2;
    const double axes = bF0 * bF0 / (aF0 * aF0);
    const double curve = 1 - (1 - axes) * sine * sine;
    // The published terms VII to XIIA, with both radii of curvature taken out: nu goes into the easting, and of rho
    // only nu / rho is left.
    const double ratio = curve / axes;
    const double eta2 = ratio - 1;
    const double d = (E - E0) * std::sqrt(curve) / aF0;
    const double d2 = d * d;
    const double lat = 1 - d2 / 12 * (5 + 3 * t2 + eta2 - 9 * t2 * eta2) + d2 * d2 / 360 * (61 + 90 * t2 + 45 * t4);
    const double lon = 1 - d2 / 6 * (ratio + 2 * t2) + d2 * d2 / 120 * (5 + 28 * t2 + 24 * t4) -
                       d2 * d2 * d2 / 5040 * (61 + 662 * t2 + 1320 * t4 + 720 * t4 * t2);
    *latitude = (foot.m_lat - sine * secant * ratio * d2 / 2 * lat) * kDegreesPerRadian;
    *longitude = (kOriginLon + secant * d * lon) * kDegreesPerRadian;
}

bool StrEN_to_LatLon(const char* easting, const char* northing, std::int32_t* x, std::int32_t* y) {
    if (!easting || !northing || !x || !y) return false;
    if (std::strlen(easting) != kNumberLength || std::strlen(northing) != kNumberLength) return false;
    double latitude = 0;
    double longitude = 0;
    FullEN_to_LatLon(Metres(easting), Metres(northing), national_grid::kA, national_grid::kB, national_grid::kE0,
                     national_grid::kN0, national_grid::kF0, &latitude, &longitude);
    *x = geometry_detail::TruncateToInt32(longitude * 1000000);
    *y = geometry_detail::TruncateToInt32(latitude * 1000000);
    return true;
}

}  // namespace dorvutil
