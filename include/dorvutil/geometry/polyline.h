#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/geometry/point.h"
#include "dorvutil/memory/vector.h"

/// A point and a polyline: which segment it belongs to, and how far along the line that is. Nearness is planar on raw
/// coordinates; lengths along the line are metres of GC_DistFast. Fewer than two points, or none (null), make no
/// segment. Free of state, any thread; the array is only read, unless stated.
namespace dorvutil {

/// The distance that the searches below return when there is no segment: the largest single-precision number.
inline constexpr double kNoSegmentDistance = 3.4028234663852886e38;

/// Index of the segment nearest to `p` (the first of equals) and its end points; -1 and (0, 0) twice when there is
/// none.
DORVUTIL_API std::int32_t FindBracketPoints(const TOrvPoint<std::int32_t>* pts, std::int32_t n,
                                            const TOrvPoint<std::int32_t>& p, TOrvPoint<std::int32_t>& start,
                                            TOrvPoint<std::int32_t>& end);

/// Writes the point of the polyline nearest to `p` to `out`, (0, 0) when there is no segment, and returns the squared
/// distance in coordinate units squared.
DORVUTIL_API double ProjectToPolyline2(const TOrvPoint<std::int32_t>* pts, std::int32_t n,
                                       const TOrvPoint<std::int32_t>& p, TOrvPoint<std::int32_t>& out);
/// The same, and
/// @param ratio where `out` lies along the line: 0 at its start, 1 at its end; 0 for a line without length.
/// @param overshoot whole metres by which `p` projects beyond the ends of the nearest segment: the least among all
/// segments that were the nearest so far as the line was walked, not only the last of them. 0 without a length.
DORVUTIL_API double ProjectToPolyline2(const TOrvPoint<std::int32_t>* pts, std::int32_t n,
                                       const TOrvPoint<std::int32_t>& p, TOrvPoint<std::int32_t>& out, double& ratio,
                                       int& overshoot);
/// The same by ProjectPtFast and FastMag; returns the distance, not squared.
DORVUTIL_API double ProjectToPolylineFast(const TOrvPoint<std::int32_t>* pts, std::int32_t n,
                                          const TOrvPoint<std::int32_t>& p, TOrvPoint<std::int32_t>& out, double& ratio,
                                          int& overshoot);

/// Splits long steps so that each step between neighbours fits two signed 16-bit numbers, by equal steps on the way and
/// a shorter or longer one at the end. This holds for spans up to 2^30 units, more than the globe has. Returns the
/// number of points inserted; 0 with the vector unchanged when it cannot grow. Coordinates wrap modulo 2^32.
DORVUTIL_API std::uint32_t InflateForMaxShapePointValue(TVector<TOrvPoint<std::int32_t>>& points);

}  // namespace dorvutil
