#include "dorvutil/geometry/polyline.h"

#include <algorithm>
#include <cmath>

#include "dorvutil/geometry/bounds.h"
#include "dorvutil/geometry/distance.h"
#include "dorvutil/geometry/fixed_trig.h"
#include "dorvutil/geometry/segment_inl.h"

namespace dorvutil {
namespace {

using geometry_detail::Point;

// How far a coordinate lies outside the stretch from a to b, and the length of the stretch that holds all three.
struct Reach {
    std::int64_t m_gap;
    std::int64_t m_span;
};

Reach ReachOf(std::int32_t a, std::int32_t b, std::int32_t p) {
    const std::int64_t low = std::min(a, b);
    const std::int64_t high = std::max(a, b);
    const std::int64_t gap = std::max<std::int64_t>({low - p, p - high, 0});
    return {gap, high - low + gap};
}

// Both forms pass over what lies in a box no nearer than the best so far. That drops no improvement: a projection lies
// in the box of its segment, and the distance to it is no less than the one to the box, rounding being monotone.
struct ExactForm {
    static bool IsBeyond(const Point& a, const Point& b, const Point& p, double best) {
        const auto dx = static_cast<double>(ReachOf(a.x, b.x, p.x).m_gap);
        const auto dy = static_cast<double>(ReachOf(a.y, b.y, p.y).m_gap);
        return dx * dx + dy * dy >= best;
    }
    static double Project(const Point& a, const Point& b, const Point& p, Point& out) {
        return geometry_detail::Project(a, b, p, out);
    }
    static double Distance(const Point& a, const Point& b) { return geometry_detail::SquaredDistance(a, b); }
};

struct FastForm {
    // FastMag falls short of the length by less than 1 and 0.12 %: its table is off by at most half a unit and one
    // entry in 1024, and the result is cut. Where differences wrap the box says nothing.
    static bool IsBeyond(const Point& a, const Point& b, const Point& p, double best) {
        const Reach x = ReachOf(a.x, b.x, p.x);
        const Reach y = ReachOf(a.y, b.y, p.y);
        const auto dx = static_cast<double>(x.m_gap);
        const auto dy = static_cast<double>(y.m_gap);
        const double length = (best + 1) * 1.0012;
        return dx * dx + dy * dy >= length * length && std::max(x.m_span, y.m_span) <= INT32_MAX;
    }
    static double Project(const Point& a, const Point& b, const Point& p, Point& out) {
        const double t = geometry_detail::ProjectFast(b - a, p - a, out);
        out += a;
        return t;
    }
    static double Distance(const Point& a, const Point& b) { return FastMag(a - b); }
};

constexpr std::int32_t kStretch = 16;  // segments that are passed over together

template <class Form>
double DistanceToSegment(const Point* segment, const Point& p, Point& projected, double& t) {
    t = Form::Project(segment[0], segment[1], p, projected);
    return Form::Distance(projected, p);
}

// Just above what some segments are away: no segment from there on is the nearest.
template <class Form>
double FirstBound(const Point* pts, std::int32_t n, const Point& p) {
    double bound = kNoSegmentDistance;
    for (std::int32_t i = 0; i < n - 1; i += std::min(kStretch, n - 1 - i)) {
        Point projected;
        double t = 0;
        bound = std::min(bound, DistanceToSegment<Form>(pts + i, p, projected, t));
    }
    return std::nextafter(bound, kNoSegmentDistance);
}

// Tells `walk` of every stretch as it is entered and of every projection that is nearer than all before; of the nearest
// one only, once the walk says that the others no longer matter.
template <class Form, class Walk>
double FindNearest(const Point* pts, std::int32_t n, const Point& p, Walk& walk) {
    double best = kNoSegmentDistance;
    if (!pts || n < 2) return best;
    const double bound = FirstBound<Form>(pts, n, p);
    for (std::int32_t from = 0; from < n - 1; from += std::min(kStretch, n - 1 - from)) {
        const std::int32_t segments = std::min(kStretch, n - 1 - from);
        walk.Enter(pts + from, segments);
        const auto isBeyond = [&](const Point& a, const Point& b) {
            return Form::IsBeyond(a, b, p, walk.WantsNearestOnly() ? std::min(best, bound) : best);
        };
        TOrvRect<std::int32_t> box;
        GetBoundingRect(box, pts + from, segments + 1);
        if (isBeyond({box.minX, box.minY}, {box.maxX, box.maxY})) continue;
        for (const Point* at = pts + from; at < pts + from + segments; ++at) {
            if (isBeyond(at[0], at[1])) continue;
            Point projected;
            double t = 0;
            const double distance = DistanceToSegment<Form>(at, p, projected, t);
            if (distance >= best) continue;
            best = distance;
            walk.Improve(at, projected, t);
        }
    }
    return best;
}

struct NearestSegment {
    const Point* m_segment = nullptr;
    Point m_point;

    void Enter(const Point*, std::int32_t) {}
    static bool WantsNearestOnly() { return true; }
    void Improve(const Point* segment, const Point& projected, double) {
        m_segment = segment;
        m_point = projected;
    }
};

// Keeps the place of the nearest point along the line, in metres.
class Chainage {
public:
    void Enter(const Point* stretch, std::int32_t segments) {
        m_stretch = stretch;
        for (std::int32_t i = 0; i < segments; ++i) m_lengths[i] = GC_DistFast(stretch[i], stretch[i + 1], DT_METERS);
        for (std::int32_t i = 0; i < segments; ++i) {
            m_starts[i] = m_walked;
            m_walked += m_lengths[i];
        }
    }
    // The overshoot gets no less than 0.
    bool WantsNearestOnly() const { return m_overshoot == 0; }
    void Improve(const Point* segment, const Point& projected, double t) {
        const double start = m_starts[segment - m_stretch];
        const double length = m_lengths[segment - m_stretch];
        m_point = projected;
        double excess = 0;
        if (t < 0) {
            m_along = start;
            excess = -t * length;
        } else if (t > 1) {
            m_along = start + length;
            excess = (t - 1) * length;
        } else {
            m_along = start + t * length;
        }
        m_overshoot = std::min(m_overshoot, geometry_detail::RoundToInt32(excess));
    }
    const Point& Nearest() const { return m_point; }
    void Result(double& ratio, int& overshoot) const {
        overshoot = m_walked == 0 ? 0 : m_overshoot;
        if (m_walked == 0 || m_along == 0) {
            ratio = 0;
        } else {
            ratio = m_walked <= m_along ? 1.0 : m_along / m_walked;
        }
    }

private:
    Point m_point;
    const Point* m_stretch = nullptr;
    double m_starts[kStretch] = {};  // of the segments of the stretch
    double m_lengths[kStretch] = {};
    double m_walked = 0;
    double m_along = 0;
    std::int32_t m_overshoot = INT32_MAX;
};

template <class Form>
double ProjectWithChainage(const Point* pts, std::int32_t n, const Point& p, Point& out, double& ratio,
                           int& overshoot) {
    Chainage walk;
    const double best = FindNearest<Form>(pts, n, p, walk);
    walk.Result(ratio, overshoot);
    out = walk.Nearest();
    return best;
}

}  // namespace

std::int32_t FindBracketPoints(const Point* pts, std::int32_t n, const Point& p, Point& start, Point& end) {
    NearestSegment walk;
    FindNearest<ExactForm>(pts, n, p, walk);
    start = walk.m_segment ? walk.m_segment[0] : Point{};
    end = walk.m_segment ? walk.m_segment[1] : Point{};
    return walk.m_segment ? static_cast<std::int32_t>(walk.m_segment - pts) : -1;
}

double ProjectToPolyline2(const Point* pts, std::int32_t n, const Point& p, Point& out) {
    NearestSegment walk;
    const double best = FindNearest<ExactForm>(pts, n, p, walk);
    out = walk.m_point;
    return best;
}

double ProjectToPolyline2(const Point* pts, std::int32_t n, const Point& p, Point& out, double& ratio, int& overshoot) {
    return ProjectWithChainage<ExactForm>(pts, n, p, out, ratio, overshoot);
}

double ProjectToPolylineFast(const Point* pts, std::int32_t n, const Point& p, Point& out, double& ratio,
                             int& overshoot) {
    return ProjectWithChainage<FastForm>(pts, n, p, out, ratio, overshoot);
}

}  // namespace dorvutil
