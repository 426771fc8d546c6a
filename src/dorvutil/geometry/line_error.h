#pragma once

#include <cmath>
#include <cstdint>

#include "dorvutil/geometry/point.h"

/// How far a stretch of a polyline deviates from its chord.
namespace dorvutil::geometry_detail {

using Point = TOrvPoint<std::int32_t>;

inline double Length(const Point& a, const Point& b) {
    const double dx = static_cast<double>(b.x) - a.x;
    const double dy = static_cast<double>(b.y) - a.y;
    return std::sqrt(dx * dx + dy * dy);
}

/// Points that lie this close together, in x and in y, keep their differences and offsets within 32 bits.
constexpr std::int64_t kNarrow = 1 << 30;

/// Turns the line into the frame of the chord from `a` to `b`, `length` apart and not 0: the offset of each point from
/// the chord is cut toward zero. Returns the sum of their squares, formed in doubles in the order of the points.
/// @param narrow all points lie within kNarrow of each other, which allows the fast way to the same sum.
double RotatePolyline(const Point* points, std::uint32_t n, const Point& a, const Point& b, double length, bool narrow);

/// The sum of the squared distances from `centre`, in doubles in the order of the points.
double SquaredDistances(const Point* points, std::uint32_t n, const Point& centre);

}  // namespace dorvutil::geometry_detail
