#include "dorvutil/geometry/polygon.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "geometry/plain_geometry.h"

namespace dorvutil {
namespace {

using plain::Point;

using Polygon = std::vector<Point>;

// The three ways in which callers hold a polygon.
struct Held {
    explicit Held(Polygon polygon) : m_points(std::move(polygon)) {
        for (Point& p : m_points) {
            m_list.Add(&p);
            m_vector.Add(p);
        }
    }
    Polygon m_points;
    ListMgr<Point> m_list{false};
    TVector<Point> m_vector;
};

// Whether a line to the north crosses the boundary an odd number of times, in whole numbers.
bool IsInPoly(const Polygon& poly, Point p) {
    bool inside = false;
    for (std::size_t i = 0; i < poly.size(); ++i) {
        const Point a = poly[i], b = poly[(i + 1) % poly.size()];
        if ((a.x < p.x) == (b.x < p.x)) continue;
        inside ^= plain::Cross(a.x < b.x ? a : b, a.x < b.x ? b : a, p) < 0;
    }
    return inside;
}

std::int32_t Height(Point a, Point b, std::int32_t x) {
    const double m = (static_cast<double>(b.y) - a.y) / (static_cast<double>(b.x) - a.x);
    return geometry_detail::TruncateToInt32(m * x + (a.y - a.x * m));
}

bool IsInPolyBound(const Polygon& poly, std::int32_t x, std::int32_t y) {
    if (poly.size() < 3) return false;
    Point a = poly[0];
    bool inside = false;
    for (std::size_t i = 1;; ++i) {
        Point b;
        for (;; ++i) {
            if (i >= poly.size()) return inside;
            b = poly[i];
            if (b.x < a.x) std::swap(a, b);
            if (b.x != x && !(a.y == y && b.y == y && a.x <= x && x < b.x)) break;
        }
        const bool skip = (y > a.y && y > b.y) || (x > a.x && x > b.x) || (x < a.x && x < b.x);
        if (!skip && y < a.y && y < b.y) {
            inside = !inside;
        } else if (!skip && a.x != b.x) {
            if (y <= Height(a, b, x)) inside = !inside;
        }
        a = poly[i];
    }
}

// The ray to the west case by case, with every record kept; `records` tells how many there were.
bool IsOnWestRay(const Polygon& poly, std::int32_t x, std::int32_t y, std::size_t& records) {
    std::vector<std::pair<std::int64_t, bool>> kept;
    bool inside = false;
    for (std::size_t i = 0; i < poly.size(); ++i) {
        const Point a = poly[i], b = poly[(i + 1) % poly.size()];
        const auto record = [&](Point on, Point other) { kept.push_back({std::abs(std::int64_t{on.x}), other.y > y}); };
        if ((a.x >= x && b.x >= x) || (a.y > y && b.y > y) || (a.y < y && b.y < y)) continue;
        if (a.x < x && b.x < x) {
            if (a.y == y && b.y == y) return true;
            if (a.y != y && b.y != y) inside = !inside;
            if (a.y == y) record(a, b);
            if (b.y == y) record(b, a);
        } else if (a.x == x || b.x == x) {
            if (a.y == y && b.y == y) return true;
        } else if (a.y == y && b.y == y) {
            return true;
        } else if (a.y == y || b.y == y) {
            if (a.y == y && a.x < x) record(a, b);
            if (b.y == y && b.x < x) record(b, a);
        } else {
            const auto s = static_cast<float>((static_cast<double>(b.y) - a.y) / (static_cast<double>(b.x) - a.x));
            const float offset = static_cast<float>(std::int64_t{y} - a.y) / s;
            const float crossing = static_cast<float>(a.x) + offset;
            if (x > static_cast<double>(crossing)) inside = !inside;
        }
    }
    records = kept.size();
    for (std::size_t j = 0; j < kept.size(); ++j) {
        for (std::size_t i = 0; i < j; ++i)
            inside ^= kept[i].first == kept[j].first && kept[i].second != kept[j].second;
    }
    return inside;
}

TEST(Polygon, EveryTestFollowsItsRules) {
    std::size_t manyRecords = 0;
    for (std::uint32_t seed = 1; seed <= 2500; ++seed) {
        SCOPED_TRACE(seed);
        plain::Points random(seed);
        const Held held(random.Line(random.Below(seed % 7 == 0 ? 60 : 9)));
        const auto n = static_cast<std::int32_t>(held.m_points.size());
        for (int i = 0; i < 12; ++i) {
            const Point p = i == 0 && n > 0 ? held.m_points[0] : random.Next();
            const Point* const data = held.m_points.data();
            ASSERT_EQ(IsPointInPoly(p.x, p.y, data, n), n >= 3 && IsInPoly(held.m_points, p));
            ASSERT_EQ(IsPointInPolyBound(p.x, p.y, data, n), IsInPolyBound(held.m_points, p.x, p.y));
            ASSERT_EQ(IsPointInPolyBoundTG(p.x, p.y, data, n), IsInPolyBound(held.m_points, p.x, p.y));
            std::size_t records = 0;
            const bool expected = IsOnWestRay(held.m_points, p.x, p.y, records);
            const bool found = IsPointInPolygonVec(p.x, p.y, held.m_vector);
            ASSERT_EQ(IsPointInPolygon(p.x, p.y, held.m_list), found);
            manyRecords += records > 5;
            ASSERT_TRUE(records > 5 || found == expected);
        }
    }
    EXPECT_GT(manyRecords, 100u);
}

TEST(Polygon, AnyNumberOfVerticesOnTheRay) {
    for (std::int32_t teeth = 1; teeth <= 40; ++teeth) {
        // A saw: bottom at -10, teeth that reach up to the row 0 or through it, and a wall in the west from x = 0.
        for (const std::int32_t tip : {0, 10}) {
            Polygon saw{{0, -10}};
            for (std::int32_t i = 0; i < teeth; ++i)
                saw.insert(saw.end(), {{20 * i, 0}, {20 * i + 5, tip}, {20 * i + 10, 0}, {20 * i + 15, -5}});
            saw.push_back({20 * teeth, -10});
            const Held held(saw);
            for (std::int32_t i = 0; tip != 0 && i < teeth; ++i) {
                EXPECT_TRUE(IsPointInPolygonVec(20 * i + 6, 0, held.m_vector)) << teeth << ' ' << i;
                EXPECT_FALSE(IsPointInPolygonVec(20 * i + 16, 0, held.m_vector)) << teeth << ' ' << i;
            }
            EXPECT_TRUE(IsPointInPolygonVec(20 * teeth - 2, -9, held.m_vector));
        }
    }
}

TEST(Polygon, BoundariesOfTheTriangle) {
    const Held open({{0, 0}, {10, 0}, {0, 10}});
    const Held closed({{0, 0}, {10, 0}, {0, 10}, {0, 0}});
    static constexpr struct {
        Point p;
        bool poly, polyBound, listBound, polygon;
    } kCases[] = {
        {{1, 1}, true, true, true, true},     {{0, 0}, false, false, true, false},
        {{5, 5}, false, true, true, true},    {{5, 0}, true, false, false, true},
        {{0, 5}, false, true, true, false},   {{10, 0}, false, false, true, true},
        {{9, 9}, false, false, false, false}, {{INT32_MIN, 1}, false, false, false, false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.p.x << ' ' << c.p.y);
        EXPECT_EQ(IsPointInPoly(c.p.x, c.p.y, open.m_points.data(), 3), c.poly);
        EXPECT_EQ(IsPointInPolyBound(c.p.x, c.p.y, closed.m_points.data(), 4), c.polyBound);
        EXPECT_EQ(IsPointInPolygonBound(c.p.x, c.p.y, closed.m_list), c.listBound);
        EXPECT_EQ(IsPointInPolygon(c.p.x, c.p.y, open.m_list), c.polygon);
    }
}

TEST(Polygon, HardlyAnyPolygonAtAll) {
    const Point two[] = {{0, 0}, {9, 9}};
    EXPECT_FALSE(IsPointInPoly(3, 3, two, 2));
    EXPECT_FALSE(IsPointInPoly(3, 3, nullptr, 3));
    EXPECT_FALSE(IsPointInPolyBound(3, 3, nullptr, 3));
    EXPECT_FALSE(IsPointInPolyBound(3, 3, two, -1));
    ListMgr<Point> list;
    EXPECT_FALSE(IsPointInPolygon(0, 0, list));
    EXPECT_FALSE(IsPointInPolygonVec(0, 0, TVector<Point>()));
    list.Add(new Point{-5, 3});
    EXPECT_TRUE(IsPointInPolygon(0, 3, list)) << "an edge without length on the ray";
    list.Insert(new Point{-5, 3}, 4);  // nulls between
    EXPECT_FALSE(IsPointInPolygonBound(9, 3, list));
    EXPECT_FALSE(IsPointInPolygon(-6, 3, list));
}

TEST(Polygon, AVertexOnTheMeridianZeroTouchesOrCrosses) {
    const Held touching({{-5, -9}, {0, 0}, {5, -9}, {5, -20}, {-5, -20}});
    const Held crossing({{-5, -9}, {0, 0}, {-5, 9}, {50, 9}, {50, -9}});
    EXPECT_FALSE(IsPointInPolygonVec(20, 0, touching.m_vector));
    EXPECT_TRUE(IsPointInPolygonVec(20, 0, crossing.m_vector));
}

}  // namespace
}  // namespace dorvutil
