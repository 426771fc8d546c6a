#include "dorvutil/geometry/segment.h"

#include "dorvutil/geometry/fixed_trig.h"
#include "dorvutil/geometry/segment_inl.h"

namespace dorvutil {

using geometry_detail::Point;

double DotProduct(const Point& u, const Point& v) {
    return static_cast<double>(u.x) * v.x + static_cast<double>(u.y) * v.y;
}

std::int32_t DotProductFast(const Point& u, const Point& v) {
    const auto product = [](std::int32_t a, std::int32_t b) {
        return static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b);
    };
    return static_cast<std::int32_t>(product(u.x, v.x) + product(u.y, v.y));
}

double GetTRatio(const Point& a, const Point& b, const Point& p) { return geometry_detail::TRatio(a, b, p); }

double GetTRatioFast(Point seg, Point rel) { return geometry_detail::TRatioFast(seg, rel); }

// Results are written last: `out` may be one of the arguments.
double ProjectPt(const Point& a, const Point& b, const Point& p, Point& out) {
    Point projected;
    const double t = geometry_detail::Project(a, b, p, projected);
    out = projected;
    return t;
}

double ProjectPtFast(const Point& a, const Point& b, const Point& p, Point& out) {
    Point projected;
    const double t = geometry_detail::ProjectFast(b - a, p - a, projected);
    out = projected + a;
    return t;
}

double ProjectPtFast(const Point& seg, const Point& rel, Point& out) {
    Point projected;
    const double t = geometry_detail::ProjectFast(seg, rel, projected);
    out = projected;
    return t;
}

double DistanceTo2(const Point& a, const Point& b, const Point& p, Point& out) {
    double t = 0;
    return DistanceTo2(a, b, p, out, t);
}

double DistanceTo2(const Point& a, const Point& b, const Point& p, Point& out, double& t) {
    const Point from = p;
    t = ProjectPt(a, b, p, out);
    return geometry_detail::SquaredDistance(out, from);
}

double DistanceToFast(const Point& a, const Point& b, const Point& p, Point& out, double& t) {
    const Point from = p;
    t = ProjectPtFast(a, b, p, out);
    return FastMag(out - from);
}

}  // namespace dorvutil
