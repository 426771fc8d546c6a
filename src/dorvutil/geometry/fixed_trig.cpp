#include "dorvutil/geometry/fixed_trig.h"

#include <bit>
#include <cmath>
#include <utility>

#include "dorvutil/geometry/fixed_trig_inl.h"

namespace dorvutil {
namespace {

using geometry_detail::kArcTangentTable;
using geometry_detail::kTableSpan;
using geometry_detail::Magnitude;

constexpr std::uint32_t kCoordsPerAngle = 55952;  // coordinate units in one unit of TFlint<10>

// Brings the larger of two numbers, not both 0, into the range from 1024 to below kTableSpan and the other along.
void Scale(std::uint32_t& a, std::uint32_t& b) {
    constexpr int kMostBits = 18;
    constexpr int kLeastBits = 11;
    const int bits = static_cast<int>(std::bit_width(a | b));  // no int in every library
    const int down = bits > kMostBits ? bits - kMostBits : 0;
    const int up = bits < kLeastBits ? kLeastBits - bits : 0;
    a = a >> down << up;
    b = b >> down << up;
}

// The angle in the first quadrant.
std::int32_t QuadrantAngle(std::uint32_t dy, std::uint32_t dx, std::uint32_t latitude) {
    if (dx == 0 && dy == 0) return kQuarterCircle;
    Scale(dy, dx);
    if (latitude != 0) dx = static_cast<std::uint32_t>(geometry_detail::CosLat(latitude)) * dx >> 10;
    const bool steep = dy > dx;
    if (steep) std::swap(dy, dx);
    if (dx == 0) return kQuarterCircle;
    const std::int32_t angle = kArcTangentTable[dy * 1024 / dx];
    return steep ? kQuarterCircle - angle : angle;
}

}  // namespace

std::uint32_t FastMag(const TOrvPoint<std::int32_t>& vector) {
    const std::uint32_t x = Magnitude(vector.x);
    const std::uint32_t y = Magnitude(vector.y);
    if (x < kTableSpan && y < kTableSpan) return geometry_detail::TableLength(x, y);
    const double longX = vector.x;
    const double longY = vector.y;
    return static_cast<std::uint32_t>(std::llround(std::sqrt(longX * longX + longY * longY)));
}

std::int32_t GetCosLat(std::int32_t latitude) { return geometry_detail::CosLat(Magnitude(latitude)); }

TFlint<10> GetCos(TFlint<10> angle) {
    std::uint32_t value = Magnitude(angle.m_value) % kFullCircle;
    bool negative = false;
    if (value > kHalfCircle) {
        negative = true;
        value -= kHalfCircle;
    }
    if (value > kQuarterCircle) {
        negative = !negative;
        value = kHalfCircle - value;
    }
    const std::int32_t cosine = geometry_detail::CosLat(kCoordsPerAngle * value);
    return {negative ? -cosine : cosine};
}

TFlint<10> GetAtan2(std::int32_t dy, std::int32_t dx, std::int32_t latitude) {
    const std::int32_t angle = QuadrantAngle(Magnitude(dy), Magnitude(dx), Magnitude(latitude));
    if (dy >= 0) return {dx >= 0 ? angle : kHalfCircle - angle};
    return {dx >= 0 ? kFullCircle - angle : kHalfCircle + angle};
}

}  // namespace dorvutil
