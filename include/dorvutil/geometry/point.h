#pragma once

#include <cstdint>

namespace dorvutil {

namespace geometry_detail {

/// Sum and difference modulo 2^32, so that no pair of coordinates overflows.
constexpr std::int32_t WrappingAdd(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
constexpr std::int32_t WrappingSubtract(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

/// |value|, which for the least integer has no signed form.
constexpr std::uint32_t Magnitude(std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    return value < 0 ? 0 - bits : bits;
}

/// Half away from zero. A value outside the 32-bit range, or none at all, gives the nearest bound, or 0.
constexpr std::int32_t RoundToInt32(double value) {
    const double moved = value >= 0 ? value + 0.5 : value - 0.5;
    if (moved >= 2147483648.0) return INT32_MAX;
    if (moved <= -2147483649.0) return INT32_MIN;
    return moved == moved ? static_cast<std::int32_t>(moved) : 0;
}

/// Toward zero, with the bounds of RoundToInt32.
constexpr std::int32_t TruncateToInt32(double value) {
    if (value >= 2147483648.0) return INT32_MAX;
    if (value <= -2147483649.0) return INT32_MIN;
    return value == value ? static_cast<std::int32_t>(value) : 0;
}

}  // namespace geometry_detail

/// A position or a vector on the latitude/longitude grid, in coordinate units: millionths of a degree, so that 90
/// degrees are 90000000. East and north are positive.
template <typename T>
struct TOrvPoint;

template <>
struct TOrvPoint<std::int32_t> {
    std::int32_t x = 0;  ///< longitude
    std::int32_t y = 0;  ///< latitude

    constexpr bool operator==(const TOrvPoint&) const = default;

    /// Component-wise, modulo 2^32.
    constexpr TOrvPoint operator+(const TOrvPoint& other) const {
        return {geometry_detail::WrappingAdd(x, other.x), geometry_detail::WrappingAdd(y, other.y)};
    }
    constexpr TOrvPoint operator-(const TOrvPoint& other) const {
        return {geometry_detail::WrappingSubtract(x, other.x), geometry_detail::WrappingSubtract(y, other.y)};
    }
    constexpr TOrvPoint& operator+=(const TOrvPoint& other) { return *this = *this + other; }
    constexpr TOrvPoint& operator-=(const TOrvPoint& other) { return *this = *this - other; }

    /// Each component multiplied and rounded half away from zero; a product beyond 32 bits stays at the bound.
    constexpr TOrvPoint operator*(double factor) const {
        return {geometry_detail::RoundToInt32(x * factor), geometry_detail::RoundToInt32(y * factor)};
    }
};

/// A rectangle of the grid; its four edges belong to it.
template <typename T>
struct TOrvRect;

template <>
struct TOrvRect<std::int32_t> {
    std::int32_t minX = 0;  ///< west
    std::int32_t minY = 0;  ///< south
    std::int32_t maxX = 0;  ///< east
    std::int32_t maxY = 0;  ///< north

    constexpr bool operator==(const TOrvRect&) const = default;
};

}  // namespace dorvutil
