#include "dorvutil/geometry/polyline.h"

#include <algorithm>
#include <cmath>

#include "dorvutil/geometry/bounds.h"
#include "dorvutil/geometry/polyline_kernels.h"

namespace dorvutil {
namespace {

using geometry_detail::Box;
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
    static bool IsBeyond(const Box& box, const Point& p, double best) {
        const auto dx = static_cast<double>(ReachOf(box.minX, box.maxX, p.x).m_gap);
        const auto dy = static_cast<double>(ReachOf(box.minY, box.maxY, p.y).m_gap);
        return dx * dx + dy * dy >= best;
    }
    static constexpr auto kProject = geometry_detail::ProjectAllExact;
    static Point Projected(const Point* segment, const Point& p) {
        Point projected;
        geometry_detail::Project(segment[0], segment[1], p, projected);
        return projected;
    }
};

struct FastForm {
    // FastMag falls short of the length by less than 1 and 0.12 %: its table is off by at most half a unit and one
    // entry in 1024, and the result is cut. Where differences wrap the box says nothing.
    static bool IsBeyond(const Box& box, const Point& p, double best) {
        const Reach x = ReachOf(box.minX, box.maxX, p.x);
        const Reach y = ReachOf(box.minY, box.maxY, p.y);
        const auto dx = static_cast<double>(x.m_gap);
        const auto dy = static_cast<double>(y.m_gap);
        const double length = (best + 1) * 1.0012;
        return dx * dx + dy * dy >= length * length && std::max(x.m_span, y.m_span) <= INT32_MAX;
    }
    static constexpr auto kProject = geometry_detail::ProjectAllFast;
    static Point Projected(const Point* segment, const Point& p) {
        Point step;
        geometry_detail::ProjectFast(segment[1] - segment[0], p - segment[0], step);
        return segment[0] + step;
    }
};

constexpr std::int32_t kStretch = 32;  // segments that are looked at, or passed over, together

// Just above what a segment is away that starts near p: no segment from there on is the nearest.
template <class Form>
double FirstBound(const Point* pts, std::int32_t n, const Point& p) {
    const Point* start = pts;
    double least = kNoSegmentDistance;
    for (std::int32_t i = 0; i < n - 1; i += std::min(kStretch, n - 1 - i)) {
        const double distance = geometry_detail::SquaredDistance(pts[i], p);
        if (distance < least) {
            least = distance;
            start = pts + i;
        }
    }
    double t = 0;
    double bound = 0;
    Form::kProject(start, 1, p, {&t, &bound});
    return std::nextafter(bound, kNoSegmentDistance);
}

// Tells `walk` of every stretch as it is entered and of every segment that is nearer than all before; of the nearest
// one only, once the walk says that the others no longer matter.
template <class Form, class Walk>
double FindNearest(const Point* pts, std::int32_t n, const Point& p, Walk& walk) {
    double best = kNoSegmentDistance;
    if (!pts || n < 2) return best;
    const double bound = FirstBound<Form>(pts, n, p);
    double t[kStretch];
    double distances[kStretch];
    for (std::int32_t from = 0; from < n - 1; from += std::min(kStretch, n - 1 - from)) {
        const std::int32_t segments = std::min(kStretch, n - 1 - from);
        Box box;
        GetBoundingRect(box, pts + from, segments + 1);
        walk.Enter(pts + from, segments, box);
        if (Form::IsBeyond(box, p, walk.WantsNearestOnly() ? std::min(best, bound) : best)) continue;
        Form::kProject(pts + from, segments, p, {t, distances});
        for (std::int32_t i = 0; i < segments; ++i) {
            if (distances[i] >= best) continue;
            best = distances[i];
            walk.Improve(i, t[i]);
        }
    }
    return best;
}

// Segments are told by their numbers in the stretch entered last.
struct NearestSegment {
    const Point* m_stretch = nullptr;
    const Point* m_segment = nullptr;

    void Enter(const Point* stretch, std::int32_t, const Box&) { m_stretch = stretch; }
    static bool WantsNearestOnly() { return true; }
    void Improve(std::int32_t segment, double) { m_segment = m_stretch + segment; }
};

// Keeps the place of the nearest point along the line, in metres.
class Chainage {
public:
    void Enter(const Point* stretch, std::int32_t segments, const Box& box) {
        m_stretch = stretch;
        geometry_detail::SegmentLengths(stretch, segments, box, m_lengths);
        for (std::int32_t i = 0; i < segments; ++i) {
            m_starts[i] = m_walked;
            m_walked += m_lengths[i];
        }
    }
    // The overshoot gets no less than 0.
    bool WantsNearestOnly() const { return m_overshoot == 0; }
    void Improve(std::int32_t segment, double t) {
        const double start = m_starts[segment];
        const double length = m_lengths[segment];
        m_segment = m_stretch + segment;
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
    const Point* Nearest() const { return m_segment; }
    void Result(double& ratio, int& overshoot) const {
        overshoot = m_walked == 0 ? 0 : m_overshoot;
        if (m_walked == 0 || m_along == 0) {
            ratio = 0;
        } else {
            ratio = m_walked <= m_along ? 1.0 : m_along / m_walked;
        }
    }

private:
    const Point* m_stretch = nullptr;
    const Point* m_segment = nullptr;
    double m_starts[kStretch];  // of the segments of the stretch
    double m_lengths[kStretch];
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
    out = walk.Nearest() ? Form::Projected(walk.Nearest(), p) : Point{};
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
    out = walk.m_segment ? ExactForm::Projected(walk.m_segment, p) : Point{};
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
