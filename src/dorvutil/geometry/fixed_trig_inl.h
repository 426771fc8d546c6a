#pragma once

#include <cstddef>
#include <cstdint>

#include "dorvutil/geometry/fixed_trig.h"
#include "dorvutil/geometry/trig_tables.h"

/// The bodies of the integer trigonometry that the distances need in line.
namespace dorvutil::geometry_detail {

constexpr int kTableBits = 18;
constexpr std::uint32_t kTableSpan = 1u << kTableBits;  // from here on the products of the tables would leave 32 bits
constexpr double kMetersPerCoord = 0.111120000190848;   // in the plane

/// The cosine of a latitude given without its sign, times 1024: LastProbe without the search; 0 beyond the pole.
inline std::int32_t CosLat(std::uint32_t latitude) {
    if (latitude > kRightAngle) return 0;
    return static_cast<std::int32_t>(ProbeIn(kProbeStrips[latitude >> kStripBits], latitude & kStripMask));
}

/// The length of a vector both components of which are below kTableSpan.
inline std::uint32_t TableLength(std::uint32_t x, std::uint32_t y) {
    const std::uint32_t shorter = x < y ? x : y;
    const std::uint32_t longer = x < y ? y : x;
    if (shorter == 0) return longer;
    // A double takes half the time of an integer and is cut to the same: below a whole number the quotient stays away
    // from it by 2^-18 and more.
    const double dividend = static_cast<std::int32_t>(shorter * kTableLast);
    const auto ratio = static_cast<std::int64_t>(dividend / static_cast<std::int32_t>(longer));
    return (kMagnitudeTable[static_cast<std::size_t>(ratio)] * longer) >> 10;
}

}  // namespace dorvutil::geometry_detail
