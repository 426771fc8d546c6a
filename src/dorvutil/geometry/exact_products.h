#pragma once

#include <cstdint>

#include "dorvutil/geometry/point.h"

/// Comparisons of products of coordinate differences without rounding: such products need 65 bits.
namespace dorvutil::geometry_detail {

using Point = TOrvPoint<std::int32_t>;

constexpr std::int64_t Difference(std::int32_t a, std::int32_t b) { return std::int64_t{a} - b; }

constexpr std::uint64_t MagnitudeOf(std::int64_t v) {
    return v < 0 ? 0 - static_cast<std::uint64_t>(v) : static_cast<std::uint64_t>(v);
}

/// The sign of a * b - c * d; every factor below 2^32 in magnitude.
constexpr int CompareProducts(std::int64_t a, std::int64_t b, std::int64_t c, std::int64_t d) {
    if (((MagnitudeOf(a) | MagnitudeOf(b) | MagnitudeOf(c) | MagnitudeOf(d)) >> 31) == 0) {
        const std::int64_t left = a * b;
        const std::int64_t right = c * d;
        return (left > right) - (left < right);
    }
    const std::uint64_t left = MagnitudeOf(a) * MagnitudeOf(b);
    const std::uint64_t right = MagnitudeOf(c) * MagnitudeOf(d);
    const bool leftBelow = left != 0 && (a < 0) != (b < 0);
    const bool rightBelow = right != 0 && (c < 0) != (d < 0);
    if (leftBelow != rightBelow) return leftBelow ? -1 : 1;
    const int bySize = (left > right) - (left < right);
    return leftBelow ? -bySize : bySize;
}

/// 1 when c lies to the left of the line from a to b, -1 to the right, 0 on it.
constexpr int Side(const Point& a, const Point& b, const Point& c) {
    return CompareProducts(Difference(b.x, a.x), Difference(c.y, a.y), Difference(b.y, a.y), Difference(c.x, a.x));
}

}  // namespace dorvutil::geometry_detail
