#pragma once

#include <array>
#include <cstdint>
#include <numbers>

/// The constant tables of the integer trigonometry, computed by the compiler. Every entry lies further from a rounding
/// boundary than the error of the double arithmetic below, so that the tables are the same whoever computes them.
namespace dorvutil::geometry_detail {

constexpr std::uint32_t kTableLast = 1024;  // entry i of a table belongs to the ratio i / 1024
constexpr std::uint32_t kTableSize = kTableLast + 1;
constexpr std::uint32_t kRightAngle = 90'000'000;  // in coordinate units

/// Newton's method; `square` is 0 or of ordinary size.
constexpr double SquareRoot(double square) {
    if (square == 0) return 0;
    double root = 1;
    for (double next = 0;; root = next) {
        next = (root + square / root) / 2;
        if (next - root < 1e-15 && root - next < 1e-15) return next;
    }
}

/// For 0 <= tangent <= 1: three times half the angle, then the series.
constexpr double ArcTangent(double tangent) {
    for (int i = 0; i < 3; ++i) tangent /= 1 + SquareRoot(1 + tangent * tangent);
    const double square = tangent * tangent;
    double sum = 0;
    for (int n = 19; n > 0; n -= 2) sum = 1.0 / n - square * sum;
    return 8 * tangent * sum;
}

/// Half up; for numbers from 0 on.
constexpr std::uint32_t Rounded(double value) { return (static_cast<std::uint32_t>(2 * value) + 1) / 2; }

/// Entry i: the latitude whose cosine is i / 1024, in coordinate units. It falls strictly.
constexpr auto kCosLatTable = [] {
    std::array<std::uint32_t, kTableSize> table{};
    table[0] = kRightAngle;  // of which the tangent of the half is 1
    for (std::uint32_t i = 1; i < kTableSize; ++i) {
        const double half = ArcTangent(SquareRoot(static_cast<double>(kTableLast - i) / (kTableLast + i)));
        table[i] = Rounded(half * 2 * 180 / std::numbers::pi * 1e6);
    }
    return table;
}();

/// Entry i: the angle whose tangent is i / 1024, in radians times 1024.
constexpr auto kArcTangentTable = [] {
    std::array<std::int32_t, kTableSize> table{};
    for (std::uint32_t i = 0; i < kTableSize; ++i)
        table[i] = static_cast<std::int32_t>(Rounded(ArcTangent(static_cast<double>(i) / kTableLast) * 1024));
    return table;
}();

/// Entry i: the length of (1, i / 1024), times 1024.
constexpr auto kMagnitudeTable = [] {
    std::array<std::uint16_t, kTableSize> table{};
    for (std::uint32_t i = 0; i < kTableSize; ++i) {
        const double ratio = static_cast<double>(i) / kTableLast;
        table[i] = static_cast<std::uint16_t>(Rounded(SquareRoot(1 + ratio * ratio) * 1024));
    }
    return table;
}();

static_assert(kCosLatTable[0] == 90'000'000 && kCosLatTable[1] == 89'944'047 && kCosLatTable[2] == 89'888'094);
static_assert(kCosLatTable[500] == 60'772'324 && kCosLatTable[1023] == 2'532'346 && kCosLatTable[1024] == 0);
static_assert(kArcTangentTable[0] == 0 && kArcTangentTable[1] == 1 && kArcTangentTable[512] == 475);
static_assert(kArcTangentTable[1024] == 804);
static_assert(kMagnitudeTable[0] == 1024 && kMagnitudeTable[1020] == 1445 && kMagnitudeTable[1024] == 1448);

/// Where the binary search of kCosLatTable for `latitude` ends: the entry itself, or the last one probed, which is one
/// of its two neighbours but not always the nearer one.
constexpr std::uint32_t LastProbe(std::uint32_t latitude) {
    std::uint32_t low = 0;
    std::uint32_t high = kTableLast;
    std::uint32_t middle = 0;
    while (low <= high && high <= kTableLast) {
        middle = (low + high) / 2;
        if (kCosLatTable[middle] == latitude) break;
        if (kCosLatTable[middle] > latitude)
            low = middle + 1;
        else
            high = middle - 1;  // below 0 wraps and ends the search
    }
    return middle;
}

constexpr std::uint32_t kStripBits = 15;  // narrower than any two neighbours in kCosLatTable: 55946 units and more
constexpr std::uint32_t kStripMask = (1u << kStripBits) - 1;
constexpr std::uint32_t kStrips = (kRightAngle >> kStripBits) + 1;

/// LastProbe over 2^kStripBits latitudes. Between two entries of kCosLatTable the search always ends at the same one of
/// them, so that LastProbe is a step function, and it steps only next to an entry, of which a strip holds one at most.
struct ProbeStrip {
    std::uint16_t m_probe;     // at the upper end, where it is least
    std::uint16_t m_below[2];  // it is one more below each of these places within the strip
};

constexpr std::uint32_t ProbeIn(const ProbeStrip& strip, std::uint32_t place) {
    return strip.m_probe + (place < strip.m_below[0] ? 1u : 0u) + (place < strip.m_below[1] ? 1u : 0u);
}

constexpr auto kProbeStrips = [] {
    std::array<ProbeStrip, kStrips + 1> table{};  // the last one so that a strip can be read as 8 bytes
    for (std::uint32_t i = 0; i < kStrips; ++i)
        table[i].m_probe = static_cast<std::uint16_t>(LastProbe((i << kStripBits) | kStripMask));
    const auto addStep = [&table](std::uint32_t above, int slot) {
        const std::uint32_t place = above & kStripMask;
        if (place != 0) table[above >> kStripBits].m_below[slot] = static_cast<std::uint16_t>(place);
    };
    for (std::uint32_t i = 0; i < kTableSize; ++i) {
        const std::uint32_t latitude = kCosLatTable[i];
        if (i != 0 && LastProbe(latitude + 1) != i) addStep(latitude + 1, 0);
        if (i != kTableLast && LastProbe(latitude - 1) != i) addStep(latitude, 1);
    }
    return table;
}();

}  // namespace dorvutil::geometry_detail
