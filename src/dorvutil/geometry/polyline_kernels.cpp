#include "dorvutil/geometry/polyline_kernels.h"

#include "dorvutil/geometry/distance.h"
#include "dorvutil/geometry/fixed_trig.h"

namespace dorvutil::geometry_detail {
namespace {

Projections Behind(const Projections& out, std::int32_t n) { return {out.m_t + n, out.m_distances + n}; }

}  // namespace

void SegmentLengthsPlain(const Point* pts, std::int32_t n, double* meters) {
    for (std::int32_t i = 0; i < n; ++i) meters[i] = GC_DistFast(pts[i], pts[i + 1], DT_METERS);
}

void ProjectAllExactPlain(const Point* pts, std::int32_t n, const Point& p, const Projections& out) {
    for (std::int32_t i = 0; i < n; ++i) {
        Point projected;
        out.m_t[i] = Project(pts[i], pts[i + 1], p, projected);
        out.m_distances[i] = SquaredDistance(projected, p);
    }
}

void ProjectAllFastPlain(const Point* pts, std::int32_t n, const Point& p, const Projections& out) {
    for (std::int32_t i = 0; i < n; ++i) {
        Point step;
        out.m_t[i] = ProjectFast(pts[i + 1] - pts[i], p - pts[i], step);
        out.m_distances[i] = FastMag(pts[i] + step - p);
    }
}

void SegmentLengths(const Point* pts, std::int32_t n, const Box& box, double* meters) {
    const std::int32_t done = HasAvx2() ? SegmentLengthsAvx2(pts, n, box, meters) : 0;
    SegmentLengthsPlain(pts + done, n - done, meters + done);
}

void ProjectAllExact(const Point* pts, std::int32_t n, const Point& p, const Projections& out) {
    const std::int32_t done = HasAvx2() ? ProjectAllExactAvx2(pts, n, p, out) : 0;
    ProjectAllExactPlain(pts + done, n - done, p, Behind(out, done));
}

void ProjectAllFast(const Point* pts, std::int32_t n, const Point& p, const Projections& out) {
    const std::int32_t done = HasAvx2() ? ProjectAllFastAvx2(pts, n, p, out) : 0;
    ProjectAllFastPlain(pts + done, n - done, p, Behind(out, done));
}

}  // namespace dorvutil::geometry_detail
