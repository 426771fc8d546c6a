#include "dorvutil/geometry/distance.h"

#include <cmath>
#include <iterator>
#include <numbers>

#include "dorvutil/geometry/fixed_trig_inl.h"

namespace dorvutil {
namespace {

using geometry_detail::Magnitude;

constexpr double kRadiansPerCoord = 1.7453292519943295e-08;
constexpr double kNauticalMilesPerRadian = 3437.7467707849396;
constexpr double kMilesPerNauticalMile = 1.1507794488636365;
constexpr double kKilometersPerMile = 1.609344;
constexpr double kFeetPerMile = 5280.0;
constexpr double kMetersPerMile = 1609.344;
constexpr double kYardsPerMile = 1760.0;
constexpr double kCoordsPerMile = 14482.937340136432;

// One coordinate unit in every unit of TDistType. The plane knows no digits beyond these.
constexpr double kUnitFactors[] = {6.9046767e-05,
                                   0.000111120000190848,
                                   0.36456692976,
                                   geometry_detail::kMetersPerCoord,
                                   0.12152230992,
                                   6e-05,
                                   1.7453292519943295e-08,
                                   1e-06,
                                   1.0};

// Half the arc between two points, in radians; 0 where rounding takes the formula out of its domain. Halves are exact
// in binary, and so taken where they cost nothing.
double HalfHaversineArc(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2) {
    constexpr double kHalfRadians = kRadiansPerCoord / 2;
    if (x1 == x2 && y1 == y2) return 0;
    const double cosines = std::cos(y1 * kRadiansPerCoord) * std::cos(y2 * kRadiansPerCoord);
    const double sinLon = std::sin(x2 * kHalfRadians - x1 * kHalfRadians);
    const double sinLat = std::sin(y1 * kHalfRadians - y2 * kHalfRadians);  // last: the least is left to do with it
    const double s = std::sqrt(cosines * (sinLon * sinLon) + sinLat * sinLat);
    return s <= 1 ? std::asin(s) : 0;
}

// Whether |span| is below the limit of the tables: one comparison.
constexpr bool IsShort(std::int32_t span) {
    constexpr std::uint32_t kLongest = geometry_detail::kTableSpan - 1;
    return static_cast<std::uint32_t>(span) + kLongest <= 2 * kLongest;
}

// Out of line, so that the plane need not save registers for it.
[[gnu::noinline]] double Curved(const TOrvPoint<std::int32_t>& from, const TOrvPoint<std::int32_t>& to,
                                TDistType unit) {
    return GC_DistNear(from.x, from.y, to.x, to.y, unit);
}

double MilesOfHalfArc(double half) { return half * (2 * kNauticalMilesPerRadian) * kMilesPerNauticalMile; }

}  // namespace

double GC_DistFar(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2, TDistType unit) {
    if (x1 == x2 && y1 == y2) return 0;
    const double lat1 = y1 * kRadiansPerCoord;
    const double lat2 = y2 * kRadiansPerCoord;
    const double lonSpan = x2 * kRadiansPerCoord - x1 * kRadiansPerCoord;
    const double c = std::cos(lat1) * std::cos(lat2) * std::cos(lonSpan) + std::sin(lat1) * std::sin(lat2);
    if (!(std::fabs(c) <= 1)) return 0;
    const double miles = std::acos(c) * kNauticalMilesPerRadian * kMilesPerNauticalMile;
    switch (unit) {
        case DT_KILOMETERS:
            return miles * kKilometersPerMile;
        case DT_FEET:
            return miles * kFeetPerMile;
        case DT_METERS:
            return miles * kMetersPerMile;
        default:
            return miles;
    }
}

double GC_DistNear(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2, TDistType unit) {
    const double half = HalfHaversineArc(x1, y1, x2, y2);
    switch (unit) {
        case DT_KILOMETERS:
            return MilesOfHalfArc(half) * kKilometersPerMile;
        case DT_FEET:
            return MilesOfHalfArc(half) * kFeetPerMile;
        case DT_METERS:
            return MilesOfHalfArc(half) * kMetersPerMile;
        case DT_YARDS:
            return MilesOfHalfArc(half) * kYardsPerMile;
        case DT_NAUTICAL_MILES:
            return half * (2 * kNauticalMilesPerRadian);
        case DT_RADIANS:
            return 2 * half;
        case DT_DEGREES:
            return 2 * half * 180 / std::numbers::pi;
        case DT_COORDS:
            return MilesOfHalfArc(half) * kCoordsPerMile;
        default:
            return MilesOfHalfArc(half);
    }
}

double GC_DistNearWrapper(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2, TDistType unit) {
    return GC_DistNear(x1, y1, x2, y2, unit);
}

double GC_DistFast(const TOrvPoint<std::int32_t>& from, const TOrvPoint<std::int32_t>& to, TDistType unit) {
    const TOrvPoint<std::int32_t> span = from - to;
    if (!IsShort(span.x) || !IsShort(span.y)) return Curved(from, to, unit);
    const auto index = static_cast<std::uint32_t>(unit);
    if (index >= std::size(kUnitFactors)) return 0;
    const std::uint32_t middle = Magnitude(geometry_detail::WrappingAdd(from.y, to.y)) / 2;
    const std::int32_t width = (geometry_detail::CosLat(middle) * span.x) >> 10;
    const std::uint32_t length = geometry_detail::TableLength(Magnitude(width), Magnitude(span.y));
    return static_cast<std::int32_t>(length) * kUnitFactors[index];
}

double GetLineDistance(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2) {
    return MilesOfHalfArc(HalfHaversineArc(x1, y1, x2, y2)) * 1000;
}

}  // namespace dorvutil
