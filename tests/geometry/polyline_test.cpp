#include "dorvutil/geometry/polyline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "dorvutil/geometry/distance.h"
#include "dorvutil/geometry/segment.h"
#include "geometry/plain_geometry.h"

namespace dorvutil {
namespace {

using plain::Point;

struct Projection {
    double best = kNoSegmentDistance;
    Point out;
    double ratio = 0;
    int overshoot = 0;
    std::int32_t index = -1;

    bool operator==(const Projection&) const = default;
};

// Looks at every segment in full.
Projection Walk(const std::vector<Point>& line, Point p, bool fast) {
    Projection found;
    double along = 0, cumulative = 0;
    std::int32_t least = INT32_MAX;
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        Point q;
        double t = 0;
        const double d =
            fast ? DistanceToFast(line[i], line[i + 1], p, q, t) : DistanceTo2(line[i], line[i + 1], p, q, t);
        const double length = GC_DistFast(line[i], line[i + 1], DT_METERS);
        if (d < found.best) {
            const double excess = t < 0 ? -t * length : t > 1 ? (t - 1) * length : 0;
            along = t < 0 ? cumulative : t > 1 ? cumulative + length : cumulative + t * length;
            found = {d, q, 0, 0, static_cast<std::int32_t>(i)};
            least = std::min(least, geometry_detail::RoundToInt32(excess));
        }
        cumulative += length;
    }
    if (cumulative == 0) return found;
    found.overshoot = least;
    found.ratio = cumulative <= along ? 1.0 : along / cumulative;
    return found;
}

Projection Project(const std::vector<Point>& line, Point p, bool fast) {
    Projection found{0, {9, 9}, 9, 9, -1};
    const auto n = static_cast<std::int32_t>(line.size());
    const auto project =
        fast ? ProjectToPolylineFast : static_cast<decltype(&ProjectToPolylineFast)>(ProjectToPolyline2);
    found.best = project(line.data(), n, p, found.out, found.ratio, found.overshoot);
    return found;
}

TEST(Polyline, ProjectsLikeALookAtEverySegment) {
    for (std::uint32_t seed = 1; seed <= 4000; ++seed) {
        SCOPED_TRACE(seed);
        plain::Points random(seed);
        const std::vector<Point> line = random.Line(random.Below(seed % 4 == 0 ? 70 : 12));
        const Point p = random.Next();
        Projection expected = Walk(line, p, false);
        Point start{7, 7}, end{7, 7}, out;
        const auto n = static_cast<std::int32_t>(line.size());
        ASSERT_EQ(FindBracketPoints(line.data(), n, p, start, end), expected.index);
        const auto index = static_cast<std::size_t>(expected.index);
        ASSERT_EQ(start, expected.index < 0 ? Point{} : line[index]);
        ASSERT_EQ(end, expected.index < 0 ? Point{} : line[index + 1]);
        ASSERT_EQ(ProjectToPolyline2(line.data(), n, p, out), expected.best);
        ASSERT_EQ(out, expected.out);
        expected.index = -1;
        ASSERT_TRUE(Project(line, p, false) == expected);
        expected = Walk(line, p, true);
        expected.index = -1;
        ASSERT_TRUE(Project(line, p, true) == expected);
    }
}

TEST(Polyline, KnownPlaces) {
    static const struct {
        const char* name;
        std::vector<Point> line;
        Point p;
        Projection expected;
    } kCases[] = {
        {"one point", {{3, 4}}, {0, 0}, {}},
        {"no length", {{3, 4}, {3, 4}, {3, 4}}, {0, 0}, {25, {3, 4}, 0, 0, -1}},
        {"middle", {{0, 0}, {1000, 0}}, {500, 7}, {49, {500, 0}, 0.5, 0, -1}},
        {"before the start", {{0, 0}, {1000, 0}}, {-100, 0}, {10000, {0, 0}, 0, 11, -1}},
        {"beyond the end", {{0, 0}, {1000, 0}}, {1100, 0}, {10000, {1000, 0}, 1, 11, -1}},
        {"the overshoot of an earlier candidate stays",
         {{0, 0}, {1000, 0}, {1000, 1000}},
         {900, 1500},
         {260000, {1000, 1000}, 1, 0, -1}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Projection found = Project(c.line, c.p, false);
        EXPECT_EQ(found.best, c.expected.best);
        EXPECT_EQ(found.out, c.expected.out);
        EXPECT_EQ(found.ratio, c.expected.ratio);
        EXPECT_EQ(found.overshoot, c.expected.overshoot);
    }
    Point start, end;
    const Point tie[] = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    EXPECT_EQ(FindBracketPoints(tie, 4, {5, 5}, start, end), 0);
    EXPECT_EQ(FindBracketPoints(nullptr, 4, {5, 5}, start, end), -1);
    EXPECT_EQ(FindBracketPoints(tie, -4, {5, 5}, start, end), -1);
}

TVector<Point> VectorOf(const std::vector<Point>& points) {
    TVector<Point> vector;
    for (const Point& p : points) vector.Add(p);
    return vector;
}

TEST(Inflate, InsertsEqualStepsOneUnitLong) {
    TVector<Point> line = VectorOf({{0, 0}, {100000, 0}, {100000, -32767}, {100000, -1}});
    EXPECT_EQ(InflateForMaxShapePointValue(line), 4u);
    EXPECT_TRUE(line == VectorOf({{0, 0},
                                  {25001, 0},
                                  {50002, 0},
                                  {75003, 0},
                                  {100000, 0},
                                  {100000, -16384},
                                  {100000, -32767},
                                  {100000, -1}}));
    for (const std::vector<Point>& same : {std::vector<Point>{}, {{5, 5}}, {{0, 0}, {32766, -32766}}}) {
        TVector<Point> vector = VectorOf(same);
        EXPECT_EQ(InflateForMaxShapePointValue(vector), 0u);
        EXPECT_TRUE(vector == VectorOf(same));
    }
    Point foreign[] = {{0, 0}, {100000, 0}};
    TVector<Point> wrapped(foreign, 2, false);
    EXPECT_EQ(InflateForMaxShapePointValue(wrapped), 0u);
    EXPECT_EQ(wrapped.Count(), 2u);
}

TEST(Inflate, EveryStepFitsAndTheInputStaysInside) {
    for (std::uint32_t seed = 1; seed <= 120; ++seed) {
        SCOPED_TRACE(seed);
        plain::Points random(seed);
        std::vector<Point> points = random.Line(6);
        for (Point& p : points) p = {p.x / 12, p.y / 12};  // the globe
        TVector<Point> line = VectorOf(points);
        const std::uint32_t inserted = InflateForMaxShapePointValue(line);
        ASSERT_EQ(line.Count(), points.size() + inserted);
        std::size_t met = 1;
        for (std::uint32_t i = 1; i < line.Count(); ++i) {
            const Point step = line[i] - line[i - 1];
            ASSERT_LE(std::max(std::abs(step.x), std::abs(step.y)), 32767) << i;
            met += met < points.size() && line[i] == points[met];
        }
        ASSERT_EQ(met, points.size());
    }
}

}  // namespace
}  // namespace dorvutil
