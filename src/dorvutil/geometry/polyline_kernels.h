#pragma once

#include <cstdint>

#include "dorvutil/geometry/segment_inl.h"

/// The loops over the segments of a polyline: one plain form of each, which is the reference, and an AVX2 form that
/// gives the same bit for bit. Each looks at the `n` segments of the n + 1 points at `pts`. Any thread.
namespace dorvutil::geometry_detail {

using Box = TOrvRect<std::int32_t>;

/// Where a point projects onto each of some segments, 0 at the start and 1 at the end, and its distance to them.
struct Projections {
    double* m_t;
    double* m_distances;
};

/// What GC_DistFast gives for DT_METERS.
void SegmentLengthsPlain(const Point* pts, std::int32_t n, double* meters);

/// What DistanceTo2 gives: squared distances.
void ProjectAllExactPlain(const Point* pts, std::int32_t n, const Point& p, const Projections& out);

/// What DistanceToFast gives.
void ProjectAllFastPlain(const Point* pts, std::int32_t n, const Point& p, const Projections& out);

/// The same by the fastest means of this processor. `box` holds the points of the segments.
void SegmentLengths(const Point* pts, std::int32_t n, const Box& box, double* meters);
void ProjectAllExact(const Point* pts, std::int32_t n, const Point& p, const Projections& out);
void ProjectAllFast(const Point* pts, std::int32_t n, const Point& p, const Projections& out);

#if defined(__x86_64__)
inline bool HasAvx2() { return __builtin_cpu_supports("avx2"); }

/// The blocks of them; returns how many segments those were. The rest is for the plain form.
std::int32_t SegmentLengthsAvx2(const Point* pts, std::int32_t n, const Box& box, double* meters);
std::int32_t ProjectAllExactAvx2(const Point* pts, std::int32_t n, const Point& p, const Projections& out);
std::int32_t ProjectAllFastAvx2(const Point* pts, std::int32_t n, const Point& p, const Projections& out);

/// Widens `box` to hold the first of `n` points; returns how many those were.
std::uint32_t WidenAvx2(const Point* pts, std::uint32_t n, Box& box);
#else
inline bool HasAvx2() { return false; }
inline std::int32_t SegmentLengthsAvx2(const Point*, std::int32_t, const Box&, double*) { return 0; }
inline std::int32_t ProjectAllExactAvx2(const Point*, std::int32_t, const Point&, const Projections&) { return 0; }
inline std::int32_t ProjectAllFastAvx2(const Point*, std::int32_t, const Point&, const Projections&) { return 0; }
inline std::uint32_t WidenAvx2(const Point*, std::uint32_t, Box&) { return 0; }
#endif

}  // namespace dorvutil::geometry_detail
