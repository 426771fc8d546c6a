#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/geometry/point.h"

/// Directions between positions, and headings. All functions are free of state, may run on any thread and report no
/// errors: positions without a direction between them give the values stated. "Scaled" functions shrink the east-west
/// component by the cosine of a latitude; the others take the grid as a plane.
namespace dorvutil {

/// Counter-clockwise from east, in radians, [0, 2 pi). Scaled at `from`. Points on one meridian give pi / 2 or, when
/// `to` lies further south, 3 pi / 2; equal points give pi / 2.
DORVUTIL_API double GetRadians(const TOrvPoint<std::int32_t>& from, const TOrvPoint<std::int32_t>& to);
/// GetRadians in degrees.
DORVUTIL_API double GetDegrees(const TOrvPoint<std::int32_t>& from, const TOrvPoint<std::int32_t>& to);

/// The compass bearing, clockwise from north in degrees, [0, 360). Scaled at `from`. Equal points give `fallback`.
DORVUTIL_API double GetMapRotateDegrees(const TOrvPoint<std::int32_t>& from, const TOrvPoint<std::int32_t>& to,
                                        double fallback);

/// The compass bearing from the centre to a point in whole degrees, cut toward zero. Not scaled. A point just west of
/// north, nearer than the arc cosine can tell, gives 360; the centre itself gives 0.
extern "C" DORVUTIL_API std::int32_t FindPointDegreeFromCenterPoint(std::int32_t cx, std::int32_t cy, std::int32_t px,
                                                                    std::int32_t py);

/// 1 north, 2 east, 3 south, 4 west: the longer component, scaled at the latitude of `to` plus half the way. A tie goes
/// to north or south; equal points give 3. Differences wrap modulo 2^32.
DORVUTIL_API unsigned char CalcDirection(const TOrvPoint<std::int32_t>& from, const TOrvPoint<std::int32_t>& to);

/// The angle between two headings, which may be any whole degrees: 0 to 180.
DORVUTIL_API std::int32_t AbsHeadingDiff(std::int32_t h1, std::int32_t h2);

/// What to add to a point to move it by `distance` to the left of the way from `a` to `b`, each component cut toward
/// zero; (0, 0) when the points are equal. Not scaled. Differences wrap modulo 2^32.
DORVUTIL_API TOrvPoint<std::int32_t> PerpendicularOffset(const TOrvPoint<std::int32_t>& a,
                                                         const TOrvPoint<std::int32_t>& b, std::int32_t distance);

/// The bearing towards Mecca along the great circle, [0, 360). @param latitude @param longitude in degrees.
DORVUTIL_API double Util_GetQibla(double latitude, double longitude);

}  // namespace dorvutil
