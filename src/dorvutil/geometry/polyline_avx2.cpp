#include "dorvutil/geometry/polyline_kernels.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <algorithm>

#include "dorvutil/geometry/fixed_trig_inl.h"

#define DORVUTIL_AVX2 __attribute__((target("avx2")))

namespace dorvutil::geometry_detail {
namespace {

static_assert(sizeof(Point) == 8 && sizeof(Box) == 16 && sizeof(ProbeStrip) == 6);

DORVUTIL_AVX2 inline __m256i All(std::uint32_t value) { return _mm256_set1_epi32(static_cast<std::int32_t>(value)); }
DORVUTIL_AVX2 inline __m256d All(double value) { return _mm256_set1_pd(value); }
DORVUTIL_AVX2 inline __m128i LowHalf(__m256i v) { return _mm256_castsi256_si128(v); }
DORVUTIL_AVX2 inline __m128i HighHalf(__m256i v) { return _mm256_extracti128_si256(v, 1); }

DORVUTIL_AVX2 inline __m256i Join(__m128i low, __m128i high) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
}

// The even (0x88) or odd (0xDD) numbers of two vectors, by halves.
template <int kWhich>
DORVUTIL_AVX2 inline __m256i Pick(__m256i u, __m256i v) {
    return _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(u), _mm256_castsi256_ps(v), kWhich));
}

struct EightPoints {
    __m256i x;
    __m256i y;
};

DORVUTIL_AVX2 inline EightPoints Read(const Point* p) {
    const auto two = [p](int i) DORVUTIL_AVX2 { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i)); };
    const __m256i u = Join(two(0), two(4));
    const __m256i v = Join(two(2), two(6));
    return {Pick<0x88>(u, v), Pick<0xDD>(u, v)};
}

DORVUTIL_AVX2 inline EightPoints Subtract(const EightPoints& a, const EightPoints& b) {
    return {_mm256_sub_epi32(a.x, b.x), _mm256_sub_epi32(a.y, b.y)};
}

// All bits set where a vector is no matter for the tables.
DORVUTIL_AVX2 inline __m256i IsLong(const EightPoints& span) {
    const __m256i bits = _mm256_or_si256(_mm256_abs_epi32(span.x), _mm256_abs_epi32(span.y));
    return _mm256_xor_si256(_mm256_cmpeq_epi32(_mm256_srli_epi32(bits, kTableBits), All(0u)), All(~0u));
}

DORVUTIL_AVX2 inline std::uint32_t Mask(__m256i v) { return static_cast<std::uint32_t>(_mm256_movemask_epi8(v)); }

// TableLength; of long vectors, anything. The ratio of (0, 0) is anything too, and that times 0 is 0. A quotient is
// rounded to 24 bits and may come out one too large, but never too small: whole numbers up to 1024 are among what it is
// rounded to. The entries of kMagnitudeTable are rounded roots of whole numbers below 2^21, none of which lies within
// 2^-14, half the last place of a float, of a rounding boundary.
DORVUTIL_AVX2 inline __m256i TableLengths(const EightPoints& v) {
    const __m256i x = _mm256_abs_epi32(v.x);
    const __m256i y = _mm256_abs_epi32(v.y);
    const __m256i dividend = _mm256_slli_epi32(_mm256_min_epi32(x, y), 10);
    const __m256i longer = _mm256_max_epi32(x, y);
    __m256i ratio = _mm256_cvttps_epi32(_mm256_div_ps(_mm256_cvtepi32_ps(dividend), _mm256_cvtepi32_ps(longer)));
    ratio = _mm256_add_epi32(ratio, _mm256_cmpgt_epi32(_mm256_mullo_epi32(ratio, longer), dividend));
    const __m256i square = _mm256_add_epi32(_mm256_madd_epi16(ratio, ratio), All(kTableLast * kTableLast));
    const __m256i magnitude = _mm256_cvtps_epi32(_mm256_sqrt_ps(_mm256_cvtepi32_ps(square)));
    return _mm256_srli_epi32(_mm256_mullo_epi32(magnitude, longer), 10);
}

// Two strips, each in the low 6 of 8 bytes. Read one by one: a gather is slower, most of all on the many processors
// that hold it up for the sake of security.
DORVUTIL_AVX2 inline __m128i TwoStrips(std::uint32_t a, std::uint32_t b) {
    const __m128i first = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&kProbeStrips[a]));
    return _mm_castpd_si128(_mm_loadh_pd(_mm_castsi128_pd(first), reinterpret_cast<const double*>(&kProbeStrips[b])));
}

// CosLat. The cosine of the right angle is 0, as it is beyond.
DORVUTIL_AVX2 inline __m256i Cosines(__m256i latitude) {
    latitude = _mm256_min_epu32(latitude, All(kRightAngle));
    alignas(32) std::uint32_t at[8];
    _mm256_store_si256(reinterpret_cast<__m256i*>(at), _mm256_srli_epi32(latitude, kStripBits));
    const __m256i u = Join(TwoStrips(at[0], at[1]), TwoStrips(at[4], at[5]));
    const __m256i v = Join(TwoStrips(at[2], at[3]), TwoStrips(at[6], at[7]));
    const __m256i low16 = All(0xFFFFu);
    const __m256i place = _mm256_and_si256(latitude, All(kStripMask));
    const __m256i probeAndBelow = Pick<0x88>(u, v);
    const __m256i step0 = _mm256_cmpgt_epi32(_mm256_srli_epi32(probeAndBelow, 16), place);
    const __m256i step1 = _mm256_cmpgt_epi32(_mm256_and_si256(Pick<0xDD>(u, v), low16), place);
    return _mm256_sub_epi32(_mm256_sub_epi32(_mm256_and_si256(probeAndBelow, low16), step0), step1);
}

// The cosine of every latitude of a box, -1 if there is more than one. It falls from the equator to the poles.
std::int32_t CommonCosine(const Box& box) {
    const std::uint32_t south = Magnitude(box.minY);
    const std::uint32_t north = Magnitude(box.maxY);
    const std::int32_t least = CosLat(std::max(south, north));
    const std::int32_t greatest = CosLat(box.minY < 0 && box.maxY > 0 ? 0 : std::min(south, north));
    return least == greatest && std::max(south, north) <= kRightAngle ? least : -1;
}

// Half away from zero, as a double.
DORVUTIL_AVX2 inline __m256d Round(__m256d v) {
    const __m256d half = _mm256_or_pd(_mm256_and_pd(v, All(-0.0)), All(0.5));
    return _mm256_round_pd(_mm256_add_pd(v, half), _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC);
}

// 0 / 0 counts as 0.
DORVUTIL_AVX2 inline __m256d Divide(__m256d a, __m256d b) {
    return _mm256_and_pd(_mm256_div_pd(a, b), _mm256_cmp_pd(b, _mm256_setzero_pd(), _CMP_NEQ_OQ));
}

// With the ends of a segment for what lies beyond them every projection is one between them.
DORVUTIL_AVX2 inline __m256d Clamp(__m256d t) { return _mm256_min_pd(_mm256_max_pd(t, All(0.0)), All(1.0)); }

DORVUTIL_AVX2 inline __m256d SumOfSquares(__m256d x, __m256d y) {
    return _mm256_add_pd(_mm256_mul_pd(x, x), _mm256_mul_pd(y, y));
}

DORVUTIL_AVX2 inline __m256i Or(__m256i a, __m256i b, __m256i c, __m256i d) {
    return _mm256_or_si256(_mm256_or_si256(a, b), _mm256_or_si256(c, d));
}

DORVUTIL_AVX2 inline __m256i BitsBelowSign(__m256i v) { return _mm256_xor_si256(v, _mm256_srai_epi32(v, 31)); }

DORVUTIL_AVX2 inline __m256i IsLowest(__m256i v, __m256i halvings) {
    return _mm256_cmpeq_epi32(_mm256_srav_epi32(v, halvings), _mm256_set1_epi32(-32768));
}

// HalvingsTo16Bits. The width of a number is in the exponent of a float; a bit with no other right below it cannot
// round up into the next width.
DORVUTIL_AVX2 inline __m256i Halvings(const EightPoints& u, const EightPoints& v) {
    __m256i bits = Or(BitsBelowSign(u.x), BitsBelowSign(u.y), BitsBelowSign(v.x), BitsBelowSign(v.y));
    bits = _mm256_andnot_si256(_mm256_srli_epi32(bits, 1), bits);
    const __m256i exponent = _mm256_srli_epi32(_mm256_castps_si256(_mm256_cvtepi32_ps(bits)), 23);
    const __m256i halvings = _mm256_max_epi32(_mm256_sub_epi32(exponent, All(126u + 15)), All(0u));
    const __m256i more =
        Or(IsLowest(u.x, halvings), IsLowest(u.y, halvings), IsLowest(v.x, halvings), IsLowest(v.y, halvings));
    return _mm256_sub_epi32(halvings, more);
}

// Both coordinates in 16 bits each.
DORVUTIL_AVX2 inline __m256i Halve(const EightPoints& v, __m256i halvings) {
    const __m256i y = _mm256_slli_epi32(_mm256_srav_epi32(v.y, halvings), 16);
    return _mm256_blend_epi16(_mm256_srav_epi32(v.x, halvings), y, 0xAA);
}

// FastMag of four vectors beyond the tables.
DORVUTIL_AVX2 inline __m256d LongLength(__m128i x, __m128i y) {
    return Round(_mm256_sqrt_pd(SumOfSquares(_mm256_cvtepi32_pd(x), _mm256_cvtepi32_pd(y))));
}

DORVUTIL_AVX2 inline __m256d Blend(__m256d ifNot, __m256d then, __m128i mask) {
    return _mm256_blendv_pd(ifNot, then, _mm256_castsi256_pd(_mm256_cvtepi32_epi64(mask)));
}

DORVUTIL_AVX2 inline void StoreFastMag(const EightPoints& v, double* out) {
    const __m256i isLong = IsLong(v);
    __m256d low = LongLength(LowHalf(v.x), LowHalf(v.y));
    __m256d high = LongLength(HighHalf(v.x), HighHalf(v.y));
    if (Mask(isLong) != ~0u) {
        const __m256i length = TableLengths(v);
        low = Blend(_mm256_cvtepi32_pd(LowHalf(length)), low, LowHalf(isLong));
        high = Blend(_mm256_cvtepi32_pd(HighHalf(length)), high, HighHalf(isLong));
    }
    _mm256_storeu_pd(out, low);
    _mm256_storeu_pd(out + 4, high);
}

DORVUTIL_AVX2 inline __m128i Scale(__m128i v, __m256d t) {
    return _mm256_cvttpd_epi32(Round(_mm256_mul_pd(_mm256_cvtepi32_pd(v), t)));
}

DORVUTIL_AVX2 inline void ProjectFastBlock(const Point* pts, const EightPoints& p, const Projections& out) {
    const EightPoints from = Read(pts);
    const EightPoints seg = Subtract(Read(pts + 1), from);
    const EightPoints rel = Subtract(p, from);
    const __m256i halvings = Halvings(seg, rel);
    const __m256i halvedSeg = Halve(seg, halvings);
    const __m256i dot = _mm256_madd_epi16(Halve(rel, halvings), halvedSeg);
    const __m256i square = _mm256_madd_epi16(halvedSeg, halvedSeg);
    const __m256d lowT = Divide(_mm256_cvtepi32_pd(LowHalf(dot)), _mm256_cvtepi32_pd(LowHalf(square)));
    const __m256d highT = Divide(_mm256_cvtepi32_pd(HighHalf(dot)), _mm256_cvtepi32_pd(HighHalf(square)));
    _mm256_storeu_pd(out.m_t, lowT);
    _mm256_storeu_pd(out.m_t + 4, highT);
    const __m256d low = Clamp(lowT);
    const __m256d high = Clamp(highT);
    const EightPoints step = {Join(Scale(LowHalf(seg.x), low), Scale(HighHalf(seg.x), high)),
                              Join(Scale(LowHalf(seg.y), low), Scale(HighHalf(seg.y), high))};
    StoreFastMag(Subtract(step, rel), out.m_distances);
}

struct FourPoints {
    __m256d x;
    __m256d y;
};

DORVUTIL_AVX2 inline FourPoints ReadFour(const Point* p) {
    const __m256i interleaved = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    const __m256i v = _mm256_permutevar8x32_epi32(interleaved, _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7));
    return {_mm256_cvtepi32_pd(LowHalf(v)), _mm256_cvtepi32_pd(HighHalf(v))};
}

DORVUTIL_AVX2 inline FourPoints Subtract(const FourPoints& a, const FourPoints& b) {
    return {_mm256_sub_pd(a.x, b.x), _mm256_sub_pd(a.y, b.y)};
}

// Coordinates, their differences and rounded steps are whole numbers, exact in doubles.
DORVUTIL_AVX2 inline void ProjectExactBlock(const Point* pts, const FourPoints& p, const Projections& out) {
    const FourPoints from = ReadFour(pts);
    const FourPoints seg = Subtract(ReadFour(pts + 1), from);
    const FourPoints rel = Subtract(p, from);
    const __m256d dot = _mm256_add_pd(_mm256_mul_pd(rel.x, seg.x), _mm256_mul_pd(rel.y, seg.y));
    const __m256d t = Divide(dot, SumOfSquares(seg.x, seg.y));
    const __m256d clamped = Clamp(t);
    const FourPoints step = {Round(_mm256_mul_pd(seg.x, clamped)), Round(_mm256_mul_pd(seg.y, clamped))};
    const FourPoints gap = Subtract(step, rel);
    _mm256_storeu_pd(out.m_t, t);
    _mm256_storeu_pd(out.m_distances, SumOfSquares(gap.x, gap.y));
}

}  // namespace

DORVUTIL_AVX2 std::int32_t SegmentLengthsAvx2(const Point* pts, std::int32_t n, const Box& box, double* meters) {
    const std::int32_t common = CommonCosine(box);
    __m256i cosine = _mm256_set1_epi32(common);
    std::int32_t i = 0;
    for (; n - i >= 8; i += 8) {
        const EightPoints from = Read(pts + i);
        const EightPoints to = Read(pts + i + 1);
        EightPoints span = Subtract(from, to);
        if (Mask(IsLong(span)) != 0) {
            SegmentLengthsPlain(pts + i, 8, meters + i);
            continue;
        }
        if (common < 0) cosine = Cosines(_mm256_srli_epi32(_mm256_abs_epi32(_mm256_add_epi32(from.y, to.y)), 1));
        span.x = _mm256_srai_epi32(_mm256_mullo_epi32(cosine, span.x), 10);
        const __m256i units = TableLengths(span);
        _mm256_storeu_pd(meters + i, _mm256_mul_pd(_mm256_cvtepi32_pd(LowHalf(units)), All(kMetersPerCoord)));
        _mm256_storeu_pd(meters + i + 4, _mm256_mul_pd(_mm256_cvtepi32_pd(HighHalf(units)), All(kMetersPerCoord)));
    }
    return i;
}

DORVUTIL_AVX2 std::int32_t ProjectAllExactAvx2(const Point* pts, std::int32_t n, const Point& p,
                                               const Projections& out) {
    const FourPoints all = {All(static_cast<double>(p.x)), All(static_cast<double>(p.y))};
    std::int32_t i = 0;
    for (; n - i >= 4; i += 4) ProjectExactBlock(pts + i, all, {out.m_t + i, out.m_distances + i});
    return i;
}

DORVUTIL_AVX2 std::int32_t ProjectAllFastAvx2(const Point* pts, std::int32_t n, const Point& p,
                                              const Projections& out) {
    const EightPoints all = {_mm256_set1_epi32(p.x), _mm256_set1_epi32(p.y)};
    std::int32_t i = 0;
    for (; n - i >= 8; i += 8) ProjectFastBlock(pts + i, all, {out.m_t + i, out.m_distances + i});
    return i;
}

DORVUTIL_AVX2 std::uint32_t WidenAvx2(const Point* pts, std::uint32_t n, Box& box) {
    const __m128i south = _mm_setr_epi32(box.minX, box.minY, box.minX, box.minY);
    const __m128i north = _mm_setr_epi32(box.maxX, box.maxY, box.maxX, box.maxY);
    __m256i least = Join(south, south);
    __m256i greatest = Join(north, north);
    std::uint32_t i = 0;
    for (; n - i >= 4; i += 4) {
        const __m256i points = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pts + i));
        least = _mm256_min_epi32(least, points);
        greatest = _mm256_max_epi32(greatest, points);
    }
    const __m128i low = _mm_min_epi32(LowHalf(least), HighHalf(least));
    const __m128i high = _mm_max_epi32(LowHalf(greatest), HighHalf(greatest));
    const __m128i both = _mm_unpacklo_epi64(_mm_min_epi32(low, _mm_unpackhi_epi64(low, low)),
                                            _mm_max_epi32(high, _mm_unpackhi_epi64(high, high)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(&box), both);
    return i;
}

}  // namespace dorvutil::geometry_detail

#endif
