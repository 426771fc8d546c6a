// Splitting of steps that are too long for 16-bit differences.
#include <algorithm>
#include <cstdlib>

#include "dorvutil/geometry/polyline.h"

namespace dorvutil {
namespace {

using Point = TOrvPoint<std::int32_t>;

constexpr std::int64_t kLongestStep = 32767;

std::int64_t PointsBetween(const Point& from, const Point& to) {
    const std::int64_t longer = std::max(std::abs(std::int64_t{to.x} - from.x), std::abs(std::int64_t{to.y} - from.y));
    return longer / kLongestStep;
}

// One unit longer than an equal share, so that the last step is the shortest.
std::int32_t StepOf(std::int32_t from, std::int32_t to, std::int64_t between) {
    const std::int64_t share = (std::int64_t{to} - from) / (between + 1);
    return static_cast<std::int32_t>(share + (share > 0) - (share < 0));
}

// Appends everything from `from` on up to `to`, without `to`.
void AddStretch(const Point& from, const Point& to, TVector<Point>& out) {
    out.Add(from);
    const std::int64_t between = PointsBetween(from, to);
    const Point step{StepOf(from.x, to.x, between), StepOf(from.y, to.y, between)};
    Point at = from;
    for (std::int64_t i = 0; i < between; ++i) out.Add(at += step);
}

}  // namespace

std::uint32_t InflateForMaxShapePointValue(TVector<Point>& points) {
    const Point* const in = points.Data();
    const std::uint32_t count = points.Count();
    std::uint64_t inserted = 0;
    for (std::uint32_t i = 0; i + 1 < count; ++i)
        inserted += static_cast<std::uint64_t>(PointsBetween(in[i], in[i + 1]));
    if (inserted == 0 || inserted + count > INT32_MAX || !points.OwnsMemory()) return 0;
    TVector<Point> out;
    if (!out.SetSize(static_cast<std::uint32_t>(inserted + count))) return 0;
    for (std::uint32_t i = 0; i + 1 < count; ++i) AddStretch(in[i], in[i + 1], out);
    out.Add(in[count - 1]);
    points.Transfer(out);
    return static_cast<std::uint32_t>(inserted);
}

}  // namespace dorvutil
