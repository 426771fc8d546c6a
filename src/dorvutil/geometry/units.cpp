#include "dorvutil/geometry/units.h"

#include <cmath>
#include <numbers>

#include "dorvutil/geometry/point.h"

namespace dorvutil {
namespace {

using geometry_detail::TruncateToInt32;

constexpr double kCoordsPerMile = 14482.937354437941;
constexpr double kCoordsPerMeter = 8.999280051025725;
constexpr double kFeetPerMeter = 3.2808;

constexpr std::int32_t WholeDegrees(std::int32_t coords) { return coords / 1'000'000; }

double CosineOfWholeDegrees(std::int32_t latitude) {
    return std::fabs(std::cos(DegreesToRadians(WholeDegrees(latitude))));
}

// A length along the equator as one along the parallel.
std::int32_t AlongParallel(std::int32_t units, std::int32_t latitude) {
    if (WholeDegrees(latitude) == 90) return units;
    return TruncateToInt32(units / CosineOfWholeDegrees(latitude));
}

}  // namespace

std::int32_t MilesToCoords(double miles) { return TruncateToInt32(miles * kCoordsPerMile + 0.5); }

std::int32_t MilesToCoords(double miles, std::int32_t latitude) {
    return AlongParallel(MilesToCoords(miles), latitude);
}

std::int32_t MetersToCoords(std::int32_t meters) { return TruncateToInt32(meters * kCoordsPerMeter + 0.5); }

std::int32_t MetersToCoords(std::int32_t meters, std::int32_t latitude) {
    return AlongParallel(MetersToCoords(meters), latitude);
}

double CoordsToMiles(double units) { return units / kCoordsPerMile; }

double CoordsToMiles(double units, std::int32_t latitude) {
    return CosineOfWholeDegrees(latitude) * units / kCoordsPerMile;
}

double DegreesToRadians(double degrees) { return degrees * std::numbers::pi / 180; }

double Util_MetersToFeet(double meters) { return meters * kFeetPerMeter; }

}  // namespace dorvutil
