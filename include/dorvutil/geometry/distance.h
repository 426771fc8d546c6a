#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/geometry/point.h"

/// Distances over the sphere between positions in coordinate units (millionths of a degree). All functions are free of
/// state, may run on any thread and report no errors: equal points, and arguments outside the domain of a formula, give
/// 0.
namespace dorvutil {

/// The unit of a distance.
enum TDistType {
    DT_MILES = 0,  ///< statute miles
    DT_KILOMETERS = 1,
    DT_FEET = 2,
    DT_METERS = 3,
    DT_YARDS = 4,
    DT_NAUTICAL_MILES = 5,
    DT_RADIANS = 6,  ///< arc on the unit sphere
    DT_DEGREES = 7,  ///< arc
    DT_COORDS = 8    ///< coordinate units
};

/// By the spherical law of cosines: for long distances; below some metres its arc cosine loses all precision.
/// @param unit miles, kilometres, feet or metres; every other unit gives miles.
DORVUTIL_API double GC_DistFar(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2, TDistType unit);

/// By the haversine formula (R. W. Sinnott, "Virtues of the Haversine", 1984): for every distance.
/// @param unit any; a value outside TDistType gives miles.
DORVUTIL_API double GC_DistNear(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2, TDistType unit);

/// GC_DistNear for callers in other languages.
extern "C" DORVUTIL_API double GC_DistNearWrapper(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2,
                                                  TDistType unit);

/// For inner loops: in the plane, from tables, while both differences are below 262144 units (a quarter of a degree),
/// else GC_DistNear. @param unit any; in the plane a value outside TDistType gives 0.
DORVUTIL_API double GC_DistFast(const TOrvPoint<std::int32_t>& from, const TOrvPoint<std::int32_t>& to, TDistType unit);

/// By the haversine formula, in thousandths of a statute mile.
DORVUTIL_API double GetLineDistance(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2);

}  // namespace dorvutil
