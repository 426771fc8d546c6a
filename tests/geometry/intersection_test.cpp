#include "dorvutil/geometry/intersection.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "dorvutil/geometry/bounds.h"
#include "dorvutil/geometry/polygon.h"
#include "geometry/plain_geometry.h"

namespace dorvutil {
namespace {

using plain::Point;

TEST(Intersection, SegmentsThatMeetTouchAndMiss) {
    static constexpr struct {
        const char* name;
        Point a1, a2, b1, b2;
        bool meet;
        Point at;
    } kCases[] = {
        {"crossing", {0, 0}, {10, 10}, {0, 10}, {10, 0}, true, {5, 5}},
        {"at an end point", {0, 0}, {10, 0}, {10, 0}, {20, 7}, true, {10, 0}},
        {"a tee", {0, 0}, {10, 0}, {4, 0}, {4, 9}, true, {4, 0}},
        {"just short of a tee", {0, 0}, {10, 0}, {4, 1}, {4, 9}, false, {}},
        {"cut toward zero", {0, 0}, {-3, -3}, {-3, 0}, {0, -3}, true, {-1, -1}},
        {"collinear and overlapping", {0, 0}, {10, 0}, {5, 0}, {15, 0}, false, {}},
        {"parallel", {0, 0}, {10, 0}, {0, 1}, {10, 1}, false, {}},
        {"no length", {5, 5}, {5, 5}, {0, 0}, {10, 10}, false, {}},
        {"the whole range",
         {INT32_MIN, INT32_MIN},
         {INT32_MAX, INT32_MAX},
         {INT32_MIN, INT32_MAX},
         {INT32_MAX, INT32_MIN},
         true,
         {0, 0}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Point at{77, 77};
        EXPECT_EQ(LineLineIntersection(c.a1, c.a2, c.b1, c.b2, at), c.meet);
        EXPECT_EQ(at, c.meet ? c.at : (Point{77, 77}));
    }
}

// In whole numbers, where doubles hold every product.
bool Meet(Point a1, Point a2, Point b1, Point b2) {
    const auto sides = [](plain::Wide s, plain::Wide t) { return (s <= 0 && t >= 0) || (s >= 0 && t <= 0); };
    const plain::Wide parallel = plain::Cross({0, 0}, a2 - a1, b2 - b1);
    return parallel != 0 && sides(plain::Cross(a1, a2, b1), plain::Cross(a1, a2, b2)) &&
           sides(plain::Cross(b1, b2, a1), plain::Cross(b1, b2, a2));
}

TEST(Intersection, SegmentsAndPolygonsAgreeWithWholeNumbers) {
    for (std::uint32_t seed = 1; seed <= 6000; ++seed) {
        SCOPED_TRACE(seed);
        plain::Points random(seed);
        const Point a = random.Next(), b = random.Next();
        const std::vector<Point> poly = random.Line(3 + random.Below(6));
        const auto n = static_cast<std::int32_t>(poly.size());
        Point at;
        bool meets = IsPointInPoly(a.x, a.y, poly.data(), n) || IsPointInPoly(b.x, b.y, poly.data(), n);
        for (std::size_t i = 0; i + 1 < poly.size(); ++i) {
            const bool one = LineLineIntersection(a, b, poly[i], poly[i + 1], at);
            ASSERT_TRUE(seed % 5 == 4 || one == Meet(a, b, poly[i], poly[i + 1]));
            meets |= one;
        }
        ASSERT_EQ(LinePolyIntersection(a.x, a.y, b.x, b.y, poly.data(), n), meets);
    }
    const Point open[] = {{0, 0}, {10, 0}, {0, 10}};
    EXPECT_FALSE(LinePolyIntersection(-5, 5, 0, 5, open, 3)) << "the closing edge";
    EXPECT_TRUE(LinePolyIntersection(5, -5, 5, 0, open, 3));
    EXPECT_FALSE(LinePolyIntersection(5, -5, 5, 5, open, 2));
    EXPECT_FALSE(LinePolyIntersection(5, -5, 5, 5, nullptr, 3));
}

TEST(Intersection, RectanglesTryOneEdgeOnly) {
    static constexpr TOrvRect<std::int32_t> kRect{0, 0, 10, 20};
    static constexpr struct {
        const char* name;
        Point a, b;
        bool meet;
    } kCases[] = {
        {"inside", {1, 1}, {2, 2}, true},
        {"one end on the edge", {10, 20}, {30, 30}, true},
        {"both west", {-1, 5}, {-9, 5}, false},
        {"both north", {5, 21}, {7, 90}, false},
        {"south to north", {5, -5}, {5, 25}, true},
        {"north to south", {5, 25}, {5, -5}, true},
        {"west to east", {-5, 5}, {15, 5}, true},
        {"east to west", {15, 5}, {-5, 5}, true},
        {"past the corner", {-5, 15}, {4, 25}, false},
        {"south west through the west edge misses the south one", {-5, -1}, {15, 19}, false},
        {"the same the other way", {15, 19}, {-5, -1}, true},
    };
    for (const auto& c : kCases) EXPECT_EQ(LineRectIntersection(c.a, c.b, kRect), c.meet) << c.name;
}

TEST(Intersection, Circles) {
    static constexpr struct {
        const char* name;
        double radius;
        Point a, b;
        bool meet;
    } kCases[] = {
        {"end on the circle", 5, {3, 4}, {9, 9}, true},
        {"other end", 5, {9, 9}, {-3, 4}, true},
        {"through", 5, {-9, 5}, {9, 5}, true},
        {"past", 5, {-9, 6}, {9, 6}, false},
        {"pointing away", 5, {6, 0}, {9, 0}, false},
        {"no length", 5, {6, 0}, {6, 0}, false},
        {"negative radius", -5, {3, 4}, {3, 4}, true},
        {"the whole range", 3e9, {INT32_MIN, 0}, {INT32_MIN, INT32_MIN}, true},
    };
    for (const auto& c : kCases) EXPECT_EQ(LineCircleIntersect({0, 0}, c.radius, c.a, c.b), c.meet) << c.name;
    EXPECT_TRUE(PointInCircle({INT32_MIN, 0}, 4294967295.0, {INT32_MAX, 0}));
    EXPECT_FALSE(PointInCircle({INT32_MIN, 0}, 4294967294.0, {INT32_MAX, 0}));
}

TEST(Bounds, HoldEveryPointAndNoMore) {
    TOrvRect<std::int32_t> rect{1, 2, 3, 4};
    const Point points[] = {{5, -3}, {INT32_MIN, 9}, {7, INT32_MAX}};
    EXPECT_FALSE(GetBoundingRect(rect, nullptr, 3));
    EXPECT_FALSE(GetBoundingRect(rect, points, 0));
    EXPECT_FALSE(GetBoundingRect(rect, points, -1));
    EXPECT_EQ(rect, (TOrvRect<std::int32_t>{1, 2, 3, 4}));
    EXPECT_TRUE(GetBoundingRect(rect, points, 3));
    EXPECT_EQ(rect, (TOrvRect<std::int32_t>{INT32_MIN, -3, 7, INT32_MAX}));
    TVector<Point> vector;
    vector.SetDefault({8, 9});
    CalculateBoundingBox(vector, rect);
    EXPECT_EQ(rect, (TOrvRect<std::int32_t>{8, 9, 8, 9}));
    vector.Add(points, 2);
    CalculateBoundingBox(vector, rect);
    EXPECT_EQ(rect, (TOrvRect<std::int32_t>{INT32_MIN, -3, 5, 9}));
}

}  // namespace
}  // namespace dorvutil
