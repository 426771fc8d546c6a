#include "line_thinning.h"

#include <algorithm>

#include "dorvutil/geometry/distance.h"
#include "dorvutil/geometry/segment.h"
#include "dorvutil/geometry/thin_polyline.h"
#include "dorvutil/memory/vector.h"

namespace roadlyn {

std::vector<Point> ThinLine(const std::vector<Point>& line, const ThinningRules& rules) {
    dorvutil::TVector<Point> in, out;
    dorvutil::TVector<bool> locked;
    for (const Point& point : line) {
        in.Add(point);
        locked.Add(false);
    }
    for (const std::uint32_t vertex : rules.locked) locked[vertex] = true;
    dorvutil::ThinPolyLine(rules.checkTriangles, rules.limitDeltas)
        .Thin(in, rules.maxArea, locked, rules.errorRatio, out);
    return {out.begin(), out.end()};
}

double LargestDeviation(const std::vector<Point>& line, const std::vector<Point>& thinned) {
    double largest = 0;
    std::size_t kept = 0;  // the vertex of `thinned` before the one looked at
    for (const Point& point : line) {
        if (kept + 1 < thinned.size() && point == thinned[kept + 1]) {
            ++kept;
            continue;
        }
        if (kept + 1 >= thinned.size()) break;
        Point nearest;
        dorvutil::ProjectPt(thinned[kept], thinned[kept + 1], point, nearest);
        largest = std::max(largest, dorvutil::GC_DistNear(point.x, point.y, nearest.x, nearest.y, dorvutil::DT_METERS));
    }
    return largest;
}

}  // namespace roadlyn
