#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/geometry/point.h"
#include "dorvutil/memory/list.h"
#include "dorvutil/memory/vector.h"

/// Points in polygons, by counting how often a ray from the point crosses the boundary. The tests differ in what they
/// make of the boundary itself, in whether the polygon closes by itself, and in cost; callers rely on these
/// differences. Free of state, any thread, no allocation; null arrays hold no point. A null in a list stands for the
/// point (0, 0).
extern "C" {
namespace dorvutil {

/// The fast and exact one. Closes by itself. A point exactly on an edge is outside by that edge: a southern boundary
/// point is outside. False for fewer than three vertices.
DORVUTIL_API bool IsPointInPoly(std::int32_t x, std::int32_t y, const TOrvPoint<std::int32_t>* poly, std::int32_t n);

/// Counts points on slanted and northern edges as inside. Takes the vertices as an open chain: repeat the first vertex
/// at the end. Where the chain turns on the point's meridian, the two edges that meet there are replaced by one from
/// the western end of the first to the far end of the second, so that points close to such a vertex are judged by a
/// slightly different polygon. False for fewer than three vertices.
DORVUTIL_API bool IsPointInPolyBound(std::int32_t x, std::int32_t y, const TOrvPoint<std::int32_t>* poly,
                                     std::int32_t n);
/// Another name of IsPointInPolyBound.
DORVUTIL_API bool IsPointInPolyBoundTG(std::int32_t x, std::int32_t y, const TOrvPoint<std::int32_t>* poly,
                                       std::int32_t n);

/// Counts points on slanted and northern edges as inside. Takes the list as an open chain, from its first point on.
/// False for fewer than three points.
DORVUTIL_API bool IsPointInPolygonBound(std::int32_t x, std::int32_t y, const ListMgr<TOrvPoint<std::int32_t>>& list);

/// Counts along the ray to the west; crossings with slanted edges are found in single precision. Closes by itself; an
/// empty polygon holds nothing, one of one or two vertices is scanned like any other. A horizontal edge on the point's
/// latitude that lies west of the point or reaches it makes the result true. Vertices on the ray: up to five meetings
/// of an edge with such a vertex are compared pairwise, and each pair of equal |x| whose edges lie on opposite sides of
/// the ray counts as one crossing; with more meetings each edge that rises north of the ray counts as one, which is the
/// same wherever both edges of every such vertex are met. A vertex east of the point is not on the ray.
DORVUTIL_API bool IsPointInPolygon(std::int32_t x, std::int32_t y, const ListMgr<TOrvPoint<std::int32_t>>& list);
DORVUTIL_API bool IsPointInPolygonVec(std::int32_t x, std::int32_t y, const TVector<TOrvPoint<std::int32_t>>& vector);

}  // namespace dorvutil
}  // extern "C"
