#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "dorvutil/geometry/point.h"

/// The bodies of the projections that the walks along polylines need in line.
namespace dorvutil::geometry_detail {

using Point = TOrvPoint<std::int32_t>;

/// Exact for every pair of coordinates.
inline double Gap(std::int32_t to, std::int32_t from) { return static_cast<double>(to) - from; }

inline double TRatio(const Point& a, const Point& b, const Point& p) {
    if (a == b) return 0;
    const double dx = Gap(b.x, a.x);
    const double dy = Gap(b.y, a.y);
    return (Gap(p.x, a.x) * dx + Gap(p.y, a.y) * dy) / (dx * dx + dy * dy);
}

/// `from` moved towards `to`, 0 <= t <= 1. Rounds the step, which may need 33 bits, not the sum.
inline std::int32_t Between(std::int32_t from, std::int32_t to, double t) {
    const double step = Gap(to, from) * t;
    return static_cast<std::int32_t>(from + static_cast<std::int64_t>(step >= 0 ? step + 0.5 : step - 0.5));
}

inline double Project(const Point& a, const Point& b, const Point& p, Point& out) {
    const double t = TRatio(a, b, p);
    if (t < 0) {
        out = a;
    } else if (t > 1) {
        out = b;
    } else {
        out = {Between(a.x, b.x, t), Between(a.y, b.y, t)};
    }
    return t;
}

inline double SquaredDistance(const Point& a, const Point& b) {
    const double dx = Gap(a.x, b.x);
    const double dy = Gap(a.y, b.y);
    return dx * dx + dy * dy;
}

/// How often the components must be halved to lie between -32767 and 32767. Halving rounds down, so that 16 bits are
/// reached first, -32768 among them.
inline int HalvingsTo16Bits(const Point& u, const Point& v) {
    const auto bits = [](std::int32_t c) { return static_cast<std::uint32_t>(c ^ (c >> 31)); };
    const int width = static_cast<int>(std::bit_width(bits(u.x) | bits(u.y) | bits(v.x) | bits(v.y)));
    const int halvings = std::max(width - 15, 0);
    const auto isLowest = [halvings](std::int32_t c) { return c >> halvings == -32768; };
    return halvings + (isLowest(u.x) || isLowest(u.y) || isLowest(v.x) || isLowest(v.y));
}

inline double TRatioFast(const Point& seg, const Point& rel) {
    const int halvings = HalvingsTo16Bits(seg, rel);
    const std::int32_t sx = seg.x >> halvings;
    const std::int32_t sy = seg.y >> halvings;
    const std::int32_t square = sx * sx + sy * sy;
    if (square == 0) return 0;
    return static_cast<double>((rel.x >> halvings) * sx + (rel.y >> halvings) * sy) / square;
}

inline double ProjectFast(const Point& seg, const Point& rel, Point& out) {
    const double t = TRatioFast(seg, rel);
    if (t <= 0) {
        out = {0, 0};
    } else if (t >= 1) {
        out = seg;
    } else {
        out = seg * t;
    }
    return t;
}

}  // namespace dorvutil::geometry_detail
