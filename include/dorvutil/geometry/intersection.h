#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/geometry/point.h"

/// Segments that meet segments, rectangles, circles and polygons, in the plane of raw coordinates and in doubles, where
/// no difference of coordinates overflows. Free of state, any thread.
namespace dorvutil {

/// Whether the two segments meet, ends included; where is written to `out`, components cut toward zero, on success
/// only. Parallel segments never do, even where they overlap.
DORVUTIL_API bool LineLineIntersection(const TOrvPoint<std::int32_t>& a1, const TOrvPoint<std::int32_t>& a2,
                                       const TOrvPoint<std::int32_t>& b1, const TOrvPoint<std::int32_t>& b2,
                                       TOrvPoint<std::int32_t>& out);

/// Whether the segment meets the rectangle or lies in it. With both ends outside, the one edge that `a` lies behind is
/// tried (south, else north, else west, else east), so that a segment that only passes through another edge and the
/// opposite corner region is missed.
DORVUTIL_API bool LineRectIntersection(const TOrvPoint<std::int32_t>& a, const TOrvPoint<std::int32_t>& b,
                                       const TOrvRect<std::int32_t>& rect);

/// Whether an end, or the point of the segment nearest to the centre (rounded), lies in the circle.
DORVUTIL_API bool LineCircleIntersect(const TOrvPoint<std::int32_t>& centre, double radius,
                                      const TOrvPoint<std::int32_t>& a, const TOrvPoint<std::int32_t>& b);

/// Inside or on the circle. The sign of the radius does not matter.
DORVUTIL_API bool PointInCircle(const TOrvPoint<std::int32_t>& centre, double radius, const TOrvPoint<std::int32_t>& p);

/// Whether an end of the segment lies in the polygon (IsPointInPoly) or the segment meets one of its edges. The edge
/// that closes the polygon is not tried: repeat the first vertex at the end to have it tried. False for null and for
/// fewer than three vertices.
extern "C" DORVUTIL_API bool LinePolyIntersection(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2,
                                                  const TOrvPoint<std::int32_t>* poly, std::int32_t n);

}  // namespace dorvutil
