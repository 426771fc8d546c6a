#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/geometry/point.h"

/// Trigonometry in integers, for the inner loops of map drawing and route guidance: tables of 1025 entries and no
/// floating point but for lengths beyond the tables. All functions are free of state and may run on any thread.
namespace dorvutil {

/// A fixed-point number with Bits fraction bits. An angle is radians times 1024 in TFlint<10>.
template <unsigned Bits>
struct TFlint {
    std::int32_t m_value = 0;  ///< the number times 2^Bits

    constexpr bool operator==(const TFlint&) const = default;
};

constexpr std::int32_t kFullCircle = 6434;     ///< 2 pi in TFlint<10>
constexpr std::int32_t kHalfCircle = 3217;     ///< pi in TFlint<10>
constexpr std::int32_t kQuarterCircle = 1608;  ///< half of kHalfCircle, cut

/// The length of a vector in its own units: exact to about a thousandth while both components are below 262144, the
/// rounded Euclidean length beyond.
DORVUTIL_API std::uint32_t FastMag(const TOrvPoint<std::int32_t>& vector);

/// cos(latitude) * 1024, 0 to 1024. @param latitude coordinate units; the sign does not matter; beyond 90 degrees
/// gives 0. The table search ends at its last probe, which need not be the nearest entry.
DORVUTIL_API std::int32_t GetCosLat(std::int32_t latitude);

/// The cosine of any angle.
DORVUTIL_API TFlint<10> GetCos(TFlint<10> angle);

/// The direction of (dx * cos(latitude), dy), counter-clockwise from east, 0 to kFullCircle. A latitude of 0 leaves dx
/// as it is. No direction, (0, 0), gives kQuarterCircle.
DORVUTIL_API TFlint<10> GetAtan2(std::int32_t dy, std::int32_t dx, std::int32_t latitude);

}  // namespace dorvutil
