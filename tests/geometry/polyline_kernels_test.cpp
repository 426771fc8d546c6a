#include "dorvutil/geometry/polyline_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

#include "dorvutil/geometry/bounds.h"
#include "dorvutil/geometry/trig_tables.h"
#include "geometry/plain_geometry.h"

namespace dorvutil::geometry_detail {
namespace {

constexpr Box kEverywhere{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};

std::vector<std::uint64_t> Bits(const std::vector<double>& values) {
    std::vector<std::uint64_t> bits;
    for (const double value : values) bits.push_back(std::bit_cast<std::uint64_t>(value));
    return bits;
}

// With the tightest box, which may allow one cosine for all, and with one that never does.
void ExpectSameLengths(const std::vector<Point>& line) {
    const auto n = static_cast<std::int32_t>(line.size()) - 1;
    std::vector<double> expected(line.size()), found(line.size());
    SegmentLengthsPlain(line.data(), n, expected.data());
    Box tight;
    ASSERT_TRUE(GetBoundingRect(tight, line.data(), n + 1));
    for (const Box& box : {tight, kEverywhere}) {
        SegmentLengths(line.data(), n, box, found.data());
        ASSERT_EQ(Bits(found), Bits(expected)) << line[0].x << ' ' << line[0].y << ' ' << line[1].x << ' ' << line[1].y;
    }
}

// There and back: as many segments as one block of any kernel takes.
std::vector<Point> Zigzag(Point a, Point b) { return {a, b, a, b, a, b, a, b, a}; }

TEST(PolylineKernels, LengthsOnBothSidesOfEveryStepOfTheCosine) {
    for (const std::uint32_t entry : kCosLatTable) {
        for (const std::int32_t move : {-1, 0, 1}) {
            const std::int32_t y = static_cast<std::int32_t>(entry) + move;
            ExpectSameLengths(Zigzag({0, y}, {262143, y}));
            ExpectSameLengths(Zigzag({0, -y - 1}, {-262143, -y}));
            ExpectSameLengths({{0, y}, {9, y + 2}, {0, y - 1}, {9, y - 3}, {0, y}, {9, y}, {0, y + 1}, {9, y}, {0, y}});
        }
    }
}

TEST(PolylineKernels, LengthsAcrossTheEquatorBetweenLatitudesOfOneCosine) {
    std::vector<Point> line;
    for (std::int32_t i = -16; i <= 16; ++i) line.push_back({i % 2 * 262143, i * 200'000});
    ExpectSameLengths(line);
}

TEST(PolylineKernels, LengthsOnBothSidesOfEveryRatio) {
    plain::Points random(1);
    for (std::int32_t ratio = 0; ratio <= 1024; ++ratio) {
        ExpectSameLengths(Zigzag({0, 0}, {255 * 1024, 255 * ratio}));
        for (int i = 0; i < 8; ++i) {
            const auto longer = static_cast<std::int32_t>(random.Below(i % 2 == 0 ? 4000 : 262142)) + 2;
            const auto shorter = static_cast<std::int32_t>(std::int64_t{longer} * ratio / 1024);
            for (const std::int32_t move : {-1, 0, 1}) {
                ExpectSameLengths(Zigzag({0, 0}, {longer, shorter + move}));
                ExpectSameLengths(Zigzag({0, 0}, {shorter + move, -longer}));
            }
        }
    }
}

TEST(PolylineKernels, LengthsAtTheLimits) {
    static constexpr std::int32_t kEdges[] = {INT32_MIN, INT32_MIN + 1, -262144, -262143,    -1,           0,
                                              1,         262143,        262144,  90'000'000, -180'000'000, INT32_MAX};
    for (const std::int32_t x : kEdges) {
        for (const std::int32_t y : kEdges) {
            for (const Point& from : {Point{0, 0}, {x, y}, {INT32_MAX, INT32_MIN}}) {
                ExpectSameLengths(Zigzag(from, {x, y}));
                ExpectSameLengths({from, from, {x, y}, from, from, from, from, from, from, from, from, from});
            }
        }
    }
}

using Kernel = decltype(&ProjectAllExact);

std::vector<double> Projected(Kernel project, const std::vector<Point>& line, const Point& p) {
    const std::size_t n = line.size() - 1;
    std::vector<double> found(2 * n);
    project(line.data(), static_cast<std::int32_t>(n), p, {found.data(), found.data() + n});
    return found;
}

TEST(PolylineKernels, RandomLines) {
    for (std::uint32_t seed = 1; seed <= 3000; ++seed) {
        SCOPED_TRACE(seed);
        plain::Points random(seed);
        std::vector<Point> line = random.Line(2 + random.Below(40));
        const Point moved = seed % 2 == 0 ? Point{} : Point{-32768 << random.Below(9), 32768 << random.Below(9)};
        for (Point& point : line) point += moved;
        const Point p = random.Next();
        ASSERT_EQ(Bits(Projected(ProjectAllExact, line, p)), Bits(Projected(ProjectAllExactPlain, line, p)));
        ASSERT_EQ(Bits(Projected(ProjectAllFast, line, p)), Bits(Projected(ProjectAllFastPlain, line, p)));
        ExpectSameLengths(line);
        Box box;
        ASSERT_TRUE(GetBoundingRect(box, line.data(), static_cast<std::int32_t>(line.size())));
        const auto [west, east] = std::ranges::minmax(line, {}, &Point::x);
        const auto [south, north] = std::ranges::minmax(line, {}, &Point::y);
        ASSERT_EQ(box, (Box{west.x, south.y, east.x, north.y}));
    }
}

TEST(PolylineKernels, ProjectionsOfTheLimits) {
    static constexpr std::int32_t kEdges[] = {INT32_MIN, -65536, -32769, -32768, -32767,    -1,      0,
                                              1,         32767,  32768,  65535,  INT32_MAX, -262144, 262144};
    for (const std::int32_t x : kEdges) {
        for (const std::int32_t y : kEdges) {
            for (const Point& p : {Point{0, 0}, {x, -1}, {-32768, y}, {INT32_MAX, INT32_MIN}}) {
                std::vector<Point> line = Zigzag({0, 0}, {x, y});
                line[3] = line[2];
                line[5] = {y, x};
                ASSERT_EQ(Bits(Projected(ProjectAllExact, line, p)), Bits(Projected(ProjectAllExactPlain, line, p)));
                ASSERT_EQ(Bits(Projected(ProjectAllFast, line, p)), Bits(Projected(ProjectAllFastPlain, line, p)));
            }
        }
    }
}

}  // namespace
}  // namespace dorvutil::geometry_detail
