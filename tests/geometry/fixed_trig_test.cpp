#include "dorvutil/geometry/fixed_trig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "dorvutil/geometry/trig_tables.h"

namespace dorvutil {
namespace {

constexpr std::int32_t kExtremes[] = {INT32_MIN, INT32_MIN + 1, -1, 0, 1, INT32_MAX - 1, INT32_MAX};

std::int32_t CosTableEntry(int i) {
    return static_cast<std::int32_t>(std::lround(std::acos(i / 1024.0L) * 180 / std::acos(-1.0L) * 1e6L));
}

// The search step by step, over entries of its own.
std::int32_t PlainCosLat(std::int64_t latitude) {
    static const std::vector<std::int32_t> table = [] {
        std::vector<std::int32_t> entries;
        for (int i = 0; i <= 1024; ++i) entries.push_back(CosTableEntry(i));
        return entries;
    }();
    latitude = std::abs(latitude);
    std::int32_t middle = 0;
    for (std::int32_t low = 0, high = 1024; low <= high;) {
        middle = (low + high) / 2;
        const std::int32_t entry = table[static_cast<std::size_t>(middle)];
        if (entry == latitude) break;
        if (entry > latitude) low = middle + 1;
        if (entry < latitude) high = middle - 1;
    }
    return middle;
}

std::int32_t PlainCos(std::int64_t angle) {
    angle = std::abs(angle) % 6434;
    std::int32_t sign = 1;
    if (angle > 3217) sign = -sign, angle -= 3217;
    if (angle > 1608) sign = -sign, angle = 3217 - angle;
    return sign * PlainCosLat(55952 * angle);
}

std::int32_t PlainAtan2(std::int64_t dy, std::int64_t dx, std::int32_t latitude) {
    std::int64_t p = std::abs(dy), q = std::abs(dx), core = 1608;
    while (p >= 262144 || q >= 262144) p >>= 1, q >>= 1;
    while (p < 1024 && q < 1024 && p + q != 0) p *= 2, q *= 2;
    if (latitude != 0) q = (PlainCosLat(latitude) * q) >> 10;
    const bool swapped = p > q;
    if (swapped) std::swap(p, q);
    if (q != 0) {
        const std::int64_t t = std::lround(std::atan(static_cast<long double>(p * 1024 / q) / 1024) * 1024);
        core = swapped ? 1608 - t : t;
    }
    return static_cast<std::int32_t>(dy >= 0 ? (dx >= 0 ? core : 3217 - core) : dx >= 0 ? 6434 - core : 3217 + core);
}

template <class Table>
std::uint32_t Fnv(const Table& table) {
    std::uint32_t hash = 2166136261u;
    for (const auto entry : table) hash = (hash ^ static_cast<std::uint32_t>(entry)) * 16777619u;
    return hash;
}

TEST(FixedTrig, TablesAreTheStatedOnes) {
    EXPECT_EQ(Fnv(geometry_detail::kCosLatTable), 0xA4C13622u);
    EXPECT_EQ(Fnv(geometry_detail::kArcTangentTable), 0x097A7675u);
    EXPECT_EQ(Fnv(geometry_detail::kMagnitudeTable), 0x7FDD407Eu);
}

TEST(FixedTrig, CosLatEndsWhereTheSearchEnds) {
    static constexpr std::int32_t kKnown[][2] = {{0, 1024},          {90'000'000, 0},  {60'000'000, 512},
                                                 {45'000'000, 725},  {100'000'000, 0}, {89'970'816, 0},
                                                 {-45'000'000, 725}, {INT32_MIN, 0},   {INT32_MAX, 0}};
    for (const auto& known : kKnown) EXPECT_EQ(GetCosLat(known[0]), known[1]) << known[0];
    for (int i = 0; i <= 1024; ++i)
        for (std::int32_t latitude = CosTableEntry(i) - 2; latitude <= CosTableEntry(i) + 2; ++latitude)
            ASSERT_EQ(GetCosLat(latitude), PlainCosLat(latitude)) << latitude;
    for (std::int32_t latitude = -90'001'000; latitude < 90'100'000; latitude += 997)
        ASSERT_EQ(GetCosLat(latitude), PlainCosLat(latitude)) << latitude;
}

TEST(FixedTrig, CosOfEveryAngle) {
    EXPECT_EQ(GetCos({0}).m_value, 1024);
    EXPECT_EQ(GetCos({3217}).m_value, -1024);
    EXPECT_EQ(GetCos({1608}).m_value, 0);
    for (std::int32_t angle = -20'000; angle <= 20'000; ++angle)
        ASSERT_EQ(GetCos({angle}).m_value, PlainCos(angle)) << angle;
    for (const std::int32_t angle : kExtremes) EXPECT_EQ(GetCos({angle}).m_value, PlainCos(angle)) << angle;
}

TEST(FixedTrig, Atan2OfEverySize) {
    static constexpr std::int32_t kKnown[][4] = {
        {0, 5, 0, 0},    {5, 0, 0, 1608},          {0, -5, 0, 3217}, {-5, 0, 0, 4826}, {0, 0, 0, 1608},
        {0, 0, 1, 1608}, {0, 5, 90'000'000, 1608}, {7, 7, 0, 804},   {-7, -7, 0, 4021}};
    for (const auto& known : kKnown) EXPECT_EQ(GetAtan2(known[0], known[1], known[2]).m_value, known[3]);
    for (const std::int32_t dy : kExtremes)
        for (const std::int32_t dx : kExtremes)
            for (const std::int32_t latitude : kExtremes)
                EXPECT_EQ(GetAtan2(dy, dx, latitude).m_value, PlainAtan2(dy, dx, latitude)) << dy << ' ' << dx;
    const auto seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int i = 0; i < 200'000; ++i) {
        const auto dy = static_cast<std::int32_t>(random()) >> (random() % 32);
        const auto dx = static_cast<std::int32_t>(random()) >> (random() % 32);
        const auto latitude = i % 4 == 0 ? 0 : static_cast<std::int32_t>(random()) % 91'000'000;
        ASSERT_EQ(GetAtan2(dy, dx, latitude).m_value, PlainAtan2(dy, dx, latitude))
            << dy << ' ' << dx << ' ' << latitude;
    }
}

TEST(FixedTrig, FastMagOnBothSidesOfTheLimit) {
    static constexpr std::int64_t kKnown[][3] = {{0, 0, 0},
                                                 {0, -7, 7},
                                                 {3, 4, 5},
                                                 {1, 1, 1},
                                                 {262143, 0, 262143},
                                                 {262144, 0, 262144},
                                                 {262143, -262143, 370686},
                                                 {262144, 262143, 370727},
                                                 {INT32_MIN, 0, 2147483648},
                                                 {INT32_MIN, INT32_MIN, 3037000500},
                                                 {INT32_MAX, INT32_MIN, 3037000499}};
    for (const auto& [x, y, length] : kKnown)
        EXPECT_EQ(FastMag({static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)}), length) << x << ' ' << y;
    const auto seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int i = 0; i < 200'000; ++i) {
        const auto x = static_cast<std::int32_t>(random()) >> (random() % 32);
        const auto y = static_cast<std::int32_t>(random()) >> (random() % 32);
        const std::int64_t a = std::min(std::abs(std::int64_t{x}), std::abs(std::int64_t{y}));
        const std::int64_t b = std::max(std::abs(std::int64_t{x}), std::abs(std::int64_t{y}));
        std::int64_t expected = b;
        if (b >= 262144)
            expected = std::llround(std::sqrt(static_cast<double>(a) * static_cast<double>(a) +
                                              static_cast<double>(b) * static_cast<double>(b)));
        else if (a != 0)
            expected =
                std::lround(std::sqrt(1 + std::pow(static_cast<double>(a * 1024 / b) / 1024, 2)) * 1024) * b >> 10;
        ASSERT_EQ(FastMag({x, y}), expected) << x << ' ' << y;
    }
}

}  // namespace
}  // namespace dorvutil
