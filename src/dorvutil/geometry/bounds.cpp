#include "dorvutil/geometry/bounds.h"

#include <algorithm>

#include "dorvutil/geometry/polyline_kernels.h"

namespace dorvutil {
namespace {

using Point = TOrvPoint<std::int32_t>;

TOrvRect<std::int32_t> BoundsOf(const Point& first, const Point* pts, std::uint32_t n) {
    TOrvRect<std::int32_t> bounds{first.x, first.y, first.x, first.y};
    const std::uint32_t done = geometry_detail::HasAvx2() ? geometry_detail::WidenAvx2(pts, n, bounds) : 0;
    for (std::uint32_t i = done; i < n; ++i) {
        bounds.minX = std::min(bounds.minX, pts[i].x);
        bounds.minY = std::min(bounds.minY, pts[i].y);
        bounds.maxX = std::max(bounds.maxX, pts[i].x);
        bounds.maxY = std::max(bounds.maxY, pts[i].y);
    }
    return bounds;
}

}  // namespace

bool GetBoundingRect(TOrvRect<std::int32_t>& out, const Point* pts, std::int32_t n) {
    if (!pts || n <= 0) return false;
    out = BoundsOf(pts[0], pts, static_cast<std::uint32_t>(n));
    return true;
}

void CalculateBoundingBox(const TVector<Point>& points, TOrvRect<std::int32_t>& out) {
    out = BoundsOf(points[0], points.Data(), points.Count());
}

}  // namespace dorvutil
