#include "dorvutil/geometry/intersection.h"

#include "dorvutil/geometry/polygon.h"
#include "dorvutil/geometry/segment_inl.h"

namespace dorvutil {
namespace {

using geometry_detail::Gap;
using geometry_detail::Point;
using geometry_detail::TruncateToInt32;

// On which sides of a rectangle a point lies; west goes before east and south before north, should they overlap.
enum Side : unsigned { kInside = 0, kWest = 1, kEast = 2, kSouth = 4, kNorth = 8 };

unsigned SidesOf(const Point& p, const TOrvRect<std::int32_t>& rect) {
    unsigned sides = kInside;
    if (p.x < rect.minX) {
        sides = kWest;
    } else if (p.x > rect.maxX) {
        sides = kEast;
    }
    if (p.y < rect.minY) {
        sides |= kSouth;
    } else if (p.y > rect.maxY) {
        sides |= kNorth;
    }
    return sides;
}

bool AreOnOneSide(const Point& a, const Point& b, const TOrvRect<std::int32_t>& rect) {
    return (a.x < rect.minX && b.x < rect.minX) || (a.x > rect.maxX && b.x > rect.maxX) ||
           (a.y > rect.maxY && b.y > rect.maxY) || (a.y < rect.minY && b.y < rect.minY);
}

}  // namespace

bool LineLineIntersection(const Point& a1, const Point& a2, const Point& b1, const Point& b2, Point& out) {
    const double ax = Gap(a2.x, a1.x);
    const double ay = Gap(a2.y, a1.y);
    const double bx = Gap(b2.x, b1.x);
    const double by = Gap(b2.y, b1.y);
    const double denominator = by * ax - bx * ay;
    if (denominator == 0) return false;
    const double dx = Gap(a1.x, b1.x);
    const double dy = Gap(a1.y, b1.y);
    const double ua = (dy * bx - dx * by) / denominator;
    const double ub = (dy * ax - dx * ay) / denominator;
    if (!(ua >= 0 && ua <= 1 && ub >= 0 && ub <= 1)) return false;
    out = {TruncateToInt32(a1.x + ax * ua), TruncateToInt32(a1.y + ua * ay)};
    return true;
}

bool LineRectIntersection(const Point& a, const Point& b, const TOrvRect<std::int32_t>& rect) {
    if (AreOnOneSide(a, b, rect)) return false;
    const unsigned sides = SidesOf(a, rect);
    if (sides == kInside || SidesOf(b, rect) == kInside) return true;
    const Point southWest{rect.minX, rect.minY};
    const Point southEast{rect.maxX, rect.minY};
    const Point northWest{rect.minX, rect.maxY};
    const Point northEast{rect.maxX, rect.maxY};
    Point at;
    if (sides & kSouth) return LineLineIntersection(a, b, southWest, southEast, at);
    if (sides & kNorth) return LineLineIntersection(a, b, northWest, northEast, at);
    if (sides & kWest) return LineLineIntersection(a, b, southWest, northWest, at);
    return LineLineIntersection(a, b, southEast, northEast, at);
}

bool LineCircleIntersect(const Point& centre, double radius, const Point& a, const Point& b) {
    if (PointInCircle(centre, radius, a) || PointInCircle(centre, radius, b)) return true;
    Point nearest;
    const double t = geometry_detail::Project(a, b, centre, nearest);
    return t >= 0 && t <= 1 && PointInCircle(centre, radius, nearest);
}

bool PointInCircle(const Point& centre, double radius, const Point& p) {
    return geometry_detail::SquaredDistance(p, centre) <= radius * radius;
}

bool LinePolyIntersection(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2, const Point* poly,
                          std::int32_t n) {
    if (n < 3 || !poly) return false;
    if (IsPointInPoly(x1, y1, poly, n) || IsPointInPoly(x2, y2, poly, n)) return true;
    Point at;
    for (std::int32_t i = 0; i < n - 1; ++i) {
        if (LineLineIntersection({x1, y1}, {x2, y2}, poly[i], poly[i + 1], at)) return true;
    }
    return false;
}

}  // namespace dorvutil
