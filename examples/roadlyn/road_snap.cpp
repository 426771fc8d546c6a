#include "road_snap.h"

#include <algorithm>
#include <limits>

#include "dorvutil/geometry/distance.h"
#include "dorvutil/geometry/polyline.h"

namespace roadlyn {
namespace {

double Metres(const Point& a, const Point& b) { return dorvutil::GC_DistNear(a.x, a.y, b.x, b.y, dorvutil::DT_METERS); }

// No point of the rectangle is nearer than this. A little less than the distance to the nearest corner or edge in the
// plane, whose parallels are longer or shorter than that one.
double LeastMetres(const Rect& rect, const Point& position) {
    const Point nearest{std::clamp(position.x, rect.minX, rect.maxX), std::clamp(position.y, rect.minY, rect.maxY)};
    return 0.9 * Metres(position, nearest);
}

std::int32_t Count(const Shape& road) { return static_cast<std::int32_t>(road.points.size()); }

int SideOf(const Shape& road, const Point& position) {
    Point from, to;
    dorvutil::FindBracketPoints(road.points.data(), Count(road), position, from, to);
    const double cross = (double{1} * to.x - from.x) * (double{1} * position.y - from.y) -
                         (double{1} * to.y - from.y) * (double{1} * position.x - from.x);
    return cross < 0 ? 1 : cross > 0 ? -1 : 0;
}

}  // namespace

Snapped SnapToRoads(const std::vector<Shape>& roads, const Point& position) {
    Snapped best{0, {}, std::numeric_limits<double>::infinity(), 0, 0, 0};
    for (std::size_t i = 0; i < roads.size(); ++i) {
        const Shape& road = roads[i];
        if (LeastMetres(road.bounds, position) >= best.metres) continue;
        Snapped found{i, {}, 0, 0, 0, 0};
        dorvutil::ProjectToPolyline2(road.points.data(), Count(road), position, found.at, found.fraction,
                                     found.overshoot);
        found.metres = Metres(position, found.at);
        if (found.metres < best.metres) best = found;
    }
    best.side = SideOf(roads[best.road], position);
    return best;
}

}  // namespace roadlyn
