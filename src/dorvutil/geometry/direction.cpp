#include "dorvutil/geometry/direction.h"

#include <cmath>
#include <numbers>

#include "dorvutil/geometry/units.h"

namespace dorvutil {
namespace {

using geometry_detail::TruncateToInt32;
using geometry_detail::WrappingAdd;

using Point = TOrvPoint<std::int32_t>;

constexpr double kPi = std::numbers::pi;
constexpr double kDegreesPerRadian = 57.29577951308232;
constexpr double kSingleRadiansPerDegree = 0.01745329238474369;  // rounded to single precision
constexpr double kMeccaLongitude = 39.8233;
constexpr double kTangentOfMeccaLatitude = 0.392364907189;

double CosineOf(std::int32_t latitude) { return std::cos(DegreesToRadians(latitude / 1e6)); }

// Into [0, 360).
constexpr std::int32_t NormalHeading(std::int32_t heading) {
    const std::int32_t rest = heading % 360;
    return rest < 0 ? rest + 360 : rest;
}

}  // namespace

double GetRadians(const Point& from, const Point& to) {
    const double dx = static_cast<double>(to.x) - from.x;
    const double dy = static_cast<double>(to.y) - from.y;
    if (dx == 0) return dy >= 0 ? kPi / 2 : 3 * kPi / 2;
    const double angle = std::atan2(dy, dx * CosineOf(from.y));
    return angle < 0 ? angle + 2 * kPi : angle;
}

double GetDegrees(const Point& from, const Point& to) { return GetRadians(from, to) * 180 / kPi; }

double GetMapRotateDegrees(const Point& from, const Point& to, double fallback) {
    if (from == to) return fallback;
    const double bearing = 90 - GetDegrees(from, to);
    if (bearing >= 0) return bearing;
    return bearing + 360 < 360 ? bearing + 360 : 0;  // a tiny one is rounded up to the full circle
}

std::int32_t FindPointDegreeFromCenterPoint(std::int32_t cx, std::int32_t cy, std::int32_t px, std::int32_t py) {
    if (cx == px && cy == py) return 0;
    const double height = std::fabs(static_cast<double>(py) - cy);
    const double width = static_cast<double>(px) - cx;
    const double fromAxis = std::acos(height / std::hypot(height, width)) / kSingleRadiansPerDegree;
    const bool isSouth = py < cy;
    if (px < cx) return TruncateToInt32(isSouth ? fromAxis + 180 : 360 - fromAxis);
    return TruncateToInt32(isSouth ? 180 - fromAxis : fromAxis);
}

unsigned char CalcDirection(const Point& from, const Point& to) {
    const Point way = to - from;
    const double width = way.x * std::fabs(CosineOf(WrappingAdd(to.y, way.y / 2)));
    if (std::fabs(width) > std::fabs(static_cast<double>(way.y))) return width > 0 ? 2 : 4;
    return way.y > 0 ? 1 : 3;
}

std::int32_t AbsHeadingDiff(std::int32_t h1, std::int32_t h2) {
    const std::int32_t difference = NormalHeading(NormalHeading(h1) - NormalHeading(h2));
    return difference > 180 ? 360 - difference : difference;
}

Point PerpendicularOffset(const Point& a, const Point& b, std::int32_t distance) {
    const Point way = b - a;
    if (way == Point()) return {};
    const double left = std::atan2(way.y, way.x) + kPi / 2;
    return {TruncateToInt32(std::cos(left) * distance), TruncateToInt32(std::sin(left) * distance)};
}

double Util_GetQibla(double latitude, double longitude) {
    const double span = (kMeccaLongitude - longitude) / kDegreesPerRadian;
    const double lat = latitude / kDegreesPerRadian;
    const double bearing =
        std::atan2(std::sin(span), std::cos(lat) * kTangentOfMeccaLatitude - std::sin(lat) * std::cos(span)) *
        kDegreesPerRadian;
    return bearing < 0 ? bearing + 360 : bearing;
}

}  // namespace dorvutil
