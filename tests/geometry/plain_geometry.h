#pragma once

#include <cstdint>
#include <iterator>
#include <random>
#include <vector>

#include "dorvutil/geometry/point.h"

/// What the tests compare with: the rules written out plainly, in wide arithmetic.
namespace dorvutil::plain {

using Point = TOrvPoint<std::int32_t>;
__extension__ using Wide = __int128;

/// Random points of one kind for each seed: on a tiny grid, where ties, duplicates and straight lines abound, across a
/// country, or anywhere in 32 bits.
class Points {
public:
    explicit Points(std::uint32_t seed) : m_random(seed), m_span(kSpans[seed % std::size(kSpans)]) {}

    Point Next() { return {Coordinate(), Coordinate()}; }
    std::uint32_t Below(std::uint32_t n) { return static_cast<std::uint32_t>(m_random()) % n; }
    std::vector<Point> Line(std::uint32_t n) {
        std::vector<Point> line(n);
        for (Point& p : line) p = Next();
        return line;
    }

private:
    static constexpr std::uint32_t kSpans[] = {5, 12, 70000, 600000, 0};

    std::int32_t Coordinate() {
        const auto any = static_cast<std::uint32_t>(m_random());
        if (m_span == 0) return any % 16 == 0 ? (any & 16 ? INT32_MIN : INT32_MAX) : static_cast<std::int32_t>(any);
        return static_cast<std::int32_t>(any % m_span) - static_cast<std::int32_t>(m_span / 2);
    }

    std::mt19937 m_random;
    std::uint32_t m_span;
};

/// Twice the area of the triangle, positive when c lies to the left of a to b.
inline Wide Cross(Point a, Point b, Point c) {
    return static_cast<Wide>(std::int64_t{b.x} - a.x) * (std::int64_t{c.y} - a.y) -
           static_cast<Wide>(std::int64_t{b.y} - a.y) * (std::int64_t{c.x} - a.x);
}

/// Halving one step at a time.
inline double TRatioFast(Point seg, Point rel) {
    const auto fits = [](std::int32_t v) { return v > -32768 && v < 32768; };
    while (!fits(seg.x) || !fits(seg.y) || !fits(rel.x) || !fits(rel.y)) {
        for (std::int32_t* v : {&seg.x, &seg.y, &rel.x, &rel.y}) *v >>= 1;
    }
    if (seg == Point{}) return 0;
    return static_cast<double>(rel.x * seg.x + rel.y * seg.y) / (seg.x * seg.x + seg.y * seg.y);
}

}  // namespace dorvutil::plain
