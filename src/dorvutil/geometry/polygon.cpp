#include "dorvutil/geometry/polygon.h"

#include <algorithm>
#include <utility>

#include "dorvutil/geometry/exact_products.h"

namespace dorvutil {
namespace {

using geometry_detail::Difference;
using geometry_detail::Point;
using PointList = ListMgr<Point>;

constexpr std::int32_t kBlock = 16;

// Whether all vertices of a block lie west of x, or none of them. Summed, for the sake of vector instructions.
bool IsBlockOnSide(const Point* block, std::int32_t x, bool west) {
    std::int32_t count = 0;
    for (std::int32_t i = 0; i < kBlock; ++i) count += block[i].x < x;
    return count == (west ? kBlock : 0);
}

// Whether an edge that spans x passes strictly above the point.
bool PassesAbove(std::int32_t x, std::int32_t y, const Point& a, const Point& b) {
    const Point& low = b.x > a.x ? a : b;
    const Point& high = b.x > a.x ? b : a;
    return geometry_detail::CompareProducts(Difference(y, low.y), Difference(high.x, low.x), Difference(x, low.x),
                                            Difference(high.y, low.y)) < 0;
}

// Where the line through a and b, not vertical, passes x, cut toward zero.
std::int32_t HeightAt(std::int32_t x, const Point& a, const Point& b) {
    const double slope = static_cast<double>(Difference(b.y, a.y)) / static_cast<double>(Difference(b.x, a.x));
    return geometry_detail::TruncateToInt32(slope * x + (a.y - a.x * slope));
}

// Whether the edge from a in the west to b crosses the ray to the north; a point on it counts as below it.
bool IsBelowEdge(std::int32_t x, std::int32_t y, const Point& a, const Point& b) {
    if ((y > a.y && y > b.y) || (x > a.x && x > b.x) || (x < a.x && x < b.x)) return false;
    if (y < a.y && y < b.y) return true;
    return a.x != b.x && y <= HeightAt(x, a, b);
}

// The scan along the ray to the west.
class WestRay {
public:
    WestRay(std::int32_t x, std::int32_t y) : m_x(x), m_y(y) {}

    // Takes one edge. True when the point is on the boundary: there is nothing more to look at then.
    bool Meets(const Point& a, const Point& b) {
        if ((a.x >= m_x && b.x >= m_x) || (a.y > m_y && b.y > m_y) || (a.y < m_y && b.y < m_y)) return false;
        const bool isOnA = a.y == m_y;
        const bool isOnB = b.y == m_y;
        if (isOnA && isOnB) return true;
        if (a.x == m_x || b.x == m_x) return false;
        if (isOnA) {
            Record(a, b);
        } else if (isOnB) {
            Record(b, a);
        } else if ((a.x < m_x && b.x < m_x) || m_x > CrossingX(a, b)) {
            m_inside = !m_inside;
        }
        return false;
    }

    bool IsInside() const { return m_inside != IsOdd(m_recordCount <= kMostRecords ? Pairs() : m_northCount); }

private:
    struct Meeting {
        std::uint32_t m_distance;  // |x| of the vertex
        bool m_north;              // where the edge's other end lies
    };
    static constexpr std::uint32_t kMostRecords = 5;

    static bool IsOdd(std::uint32_t n) { return n % 2 != 0; }

    // An edge that meets the point's latitude at a vertex.
    void Record(const Point& on, const Point& other) {
        if (on.x > m_x) return;
        const bool north = other.y > m_y;
        if (m_recordCount < kMostRecords)
            m_records[m_recordCount] = {static_cast<std::uint32_t>(geometry_detail::MagnitudeOf(on.x)), north};
        ++m_recordCount;
        m_northCount += north;
    }

    std::uint32_t Pairs() const {
        std::uint32_t pairs = 0;
        for (std::uint32_t j = 1; j < m_recordCount; ++j) {
            for (std::uint32_t i = 0; i < j; ++i) {
                pairs +=
                    m_records[i].m_distance == m_records[j].m_distance && m_records[i].m_north != m_records[j].m_north;
            }
        }
        return pairs;
    }

    // In single precision throughout: callers depend on which side of a slanted edge a point falls.
    double CrossingX(const Point& a, const Point& b) const {
        const auto slope =
            static_cast<float>(static_cast<double>(Difference(b.y, a.y)) / static_cast<double>(Difference(b.x, a.x)));
        return static_cast<float>(a.x) + static_cast<float>(Difference(m_y, a.y)) / slope;
    }

    std::int32_t m_x;
    std::int32_t m_y;
    bool m_inside = false;
    std::uint32_t m_recordCount = 0;
    std::uint32_t m_northCount = 0;
    Meeting m_records[kMostRecords] = {};
};

// `at` gives the vertex of an index. The order of the edges does not matter, so the closing one goes first.
template <class At>
bool IsInsideRing(std::int32_t x, std::int32_t y, std::uint32_t n, At at) {
    if (n == 0) return false;
    WestRay ray(x, y);
    Point previous = at(n - 1);
    for (std::uint32_t i = 0; i < n; ++i) {
        const Point current = at(i);
        if (ray.Meets(previous, current)) return true;
        previous = current;
    }
    return ray.IsInside();
}

Point ListPoint(const PointList& list, std::uint32_t i) {
    const Point* const point = list[i];
    return point ? *point : Point{};
}

}  // namespace

bool IsPointInPoly(std::int32_t x, std::int32_t y, const Point* poly, std::int32_t n) {
    if (n < 3 || !poly) return false;
    bool inside = false;
    Point previous = poly[n - 1];
    for (std::int32_t i = 0; i < n;) {
        if (n - i >= kBlock && IsBlockOnSide(poly + i, x, previous.x < x)) {
            i += kBlock;
            previous = poly[i - 1];
            continue;
        }
        const std::int32_t end = std::min(n - i, kBlock) + i;
        for (; i < end; ++i) {
            const Point& current = poly[i];
            if ((previous.x < x) != (current.x < x)) inside ^= PassesAbove(x, y, previous, current);
            previous = current;
        }
    }
    return inside;
}

bool IsPointInPolyBound(std::int32_t x, std::int32_t y, const Point* poly, std::int32_t n) {
    if (n < 3 || !poly) return false;
    bool inside = false;
    Point west = poly[0];
    for (std::int32_t i = 1; i < n; ++i) {
        Point east = poly[i];
        if (east.x < west.x) std::swap(west, east);
        const bool alongRow = west.y == y && east.y == y && west.x <= x && x < east.x;
        if (east.x == x || alongRow) continue;  // the next edge starts from this one's western end
        inside ^= IsBelowEdge(x, y, west, east);
        west = poly[i];
    }
    return inside;
}

bool IsPointInPolyBoundTG(std::int32_t x, std::int32_t y, const Point* poly, std::int32_t n) {
    return IsPointInPolyBound(x, y, poly, n);
}

bool IsPointInPolygonBound(std::int32_t x, std::int32_t y, const PointList& list) {
    const std::uint32_t n = list.Count();
    if (n < 3) return false;
    bool inside = false;
    Point a = ListPoint(list, 0);
    for (std::uint32_t i = 1; i < n; ++i) {
        const Point b = ListPoint(list, i);
        const bool spans = (a.x < x && x <= b.x) || (b.x <= x && x < a.x);
        if (spans && (y <= a.y || y <= b.y)) inside ^= (y <= a.y && y <= b.y) || y <= HeightAt(x, a, b);
        a = b;
    }
    return inside;
}

bool IsPointInPolygon(std::int32_t x, std::int32_t y, const PointList& list) {
    return IsInsideRing(x, y, list.Count(), [&list](std::uint32_t i) { return ListPoint(list, i); });
}

bool IsPointInPolygonVec(std::int32_t x, std::int32_t y, const TVector<Point>& vector) {
    const Point* const points = vector.Data();
    return IsInsideRing(x, y, vector.Count(), [points](std::uint32_t i) { return points[i]; });
}

}  // namespace dorvutil
