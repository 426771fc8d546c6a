#include "dorvutil/geometry/line_error.h"

#include "dorvutil/geometry/segment_inl.h"

namespace dorvutil::geometry_detail {
namespace {

constexpr std::uint32_t kLanes = 4;
constexpr double kExactLimit = 9007199254740992.0;  // 2^53: whole numbers below it are sums without rounding

// A chord's start and direction.
struct Frame {
    Point m_start;
    double m_cosine;
    double m_sine;
};

double InOrder(const Point* points, std::uint32_t n, const Frame& frame) {
    double sum = 0;
    for (std::uint32_t i = 0; i < n; ++i) {
        const double dx = Gap(points[i].x, frame.m_start.x);
        const double dy = Gap(points[i].y, frame.m_start.y);
        const double offset = TruncateToInt32(dy * frame.m_cosine - dx * frame.m_sine);
        sum += offset * offset;
    }
    return sum;
}

// Four sums side by side. The squares are whole numbers, so that the result is the one of the plain order as long as
// it is below kExactLimit.
double InLanes(const Point* points, std::uint32_t n, const Frame& frame) {
    double sums[kLanes] = {};
    std::uint32_t i = 0;
    for (; i + kLanes <= n; i += kLanes) {
        for (std::uint32_t lane = 0; lane < kLanes; ++lane) {
            const double dx = points[i + lane].x - frame.m_start.x;
            const double dy = points[i + lane].y - frame.m_start.y;
            const double offset = static_cast<std::int32_t>(dy * frame.m_cosine - dx * frame.m_sine);
            sums[lane] += offset * offset;
        }
    }
    return sums[0] + sums[1] + (sums[2] + sums[3]) + InOrder(points + i, n - i, frame);
}

}  // namespace

double RotatePolyline(const Point* points, std::uint32_t n, const Point& a, const Point& b, double length,
                      bool narrow) {
    const Frame frame{a, Gap(b.x, a.x) / length, Gap(b.y, a.y) / length};
    if (narrow) {
        const double sum = InLanes(points, n, frame);
        if (sum < kExactLimit) return sum;
    }
    return InOrder(points, n, frame);
}

double SquaredDistances(const Point* points, std::uint32_t n, const Point& centre) {
    double sum = 0;
    for (std::uint32_t i = 0; i < n; ++i) sum += SquaredDistance(points[i], centre);
    return sum;
}

}  // namespace dorvutil::geometry_detail
