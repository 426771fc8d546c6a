#include "dorvutil/geometry/coordinate_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <string>

namespace dorvutil {
namespace {

struct Reading {
    bool m_read = false;
    std::int32_t m_x = 77;  // as before where nothing is read
    std::int32_t m_y = 77;

    bool operator==(const Reading&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Reading& r) {
        return out << r.m_read << " y " << r.m_y << " x " << r.m_x;
    }
};
constexpr Reading Read(std::int32_t y, std::int32_t x) { return {true, x, y}; }
constexpr Reading kRefused;

Reading Narrow(const std::string& text) {
    Reading r;
    r.m_read = IsStrLatLong(text.c_str(), &r.m_x, &r.m_y);
    return r;
}
Reading Wide(const std::string& latin1) {
    std::u16string text;
    for (const char c : latin1) text += static_cast<char16_t>(static_cast<unsigned char>(c));
    Reading r;
    r.m_read = IsStrLatLongW(text.c_str(), &r.m_x, &r.m_y);
    return r;
}

TEST(CoordinateText, FormatsLikeSixDecimals) {
    EXPECT_EQ(ConvertLat(-33865000), "33.865000S");
    EXPECT_EQ(ConvertLon(151209444), "151.209444E");
    EXPECT_EQ(ConvertLatLon({151209444, -33865000}, ", "), "33.865000S, 151.209444E");
    EXPECT_EQ(ConvertLatLon({-1, 0}, nullptr), "0.000000N0.000001W");
    std::mt19937 random(1);
    for (int i = 0; i < 10'000; ++i) {
        const auto value = i == 0 ? INT32_MIN : i == 1 ? INT32_MAX : static_cast<std::int32_t>(random()) >> (i % 32);
        char expected[32];
        std::snprintf(expected, sizeof expected, "%0.6f%c", std::abs(value * 1.0) / 1e6, value < 0 ? 'W' : 'E');
        ASSERT_STREQ(ConvertLon(value).c_str(), expected);
    }
}

TEST(CoordinateText, ReadsTheSameInBothWidths) {
    static const struct {
        const char* text;
        Reading reading;
    } kCases[] = {
        {"51.5, -0.12", Read(51500000, -120000)},
        {"51.5N, 0.12W", Read(51500000, -120000)},
        {"0.12w;51.5s", Read(-51500000, -120000)},
        {"51.5&+0.12", Read(51500000, 120000)},
        {"51., -0.", Read(51000000, 0)},
        {"51N, 7E", Read(51000000, 7000000)},
        {"0.5N0.7E, 0.9E", Read(500000, 900000)},
        {"513030N, 0000730W", Read(51508333, -125000)},
        {"0000730W,513030N", Read(51508333, -125000)},
        {"51303S, 0000730W", Read(INT32_MIN, -730000000)},
        {"513030S, 000007300W", Read(INT32_MIN, INT32_MIN)},
        {"513030.N, 0000730W", Read(INT32_MAX, -730000000)},
        {"-513030N, 00007+9W", Read(-50491666, -119166)},
        {"4.35,1.005", Read(static_cast<std::int32_t>(4.35 * 1000000), static_cast<std::int32_t>(1.005 * 1000000))},
        {"1-2.5, --5.", Read(1000000, 0)},
        {"1.2.3, +-.7", Read(1200000, 0)},
        {"., -.5", Read(0, -500000)},
        {"1.5x3, 2.5;2.5", Read(1500000, 2500000)},
        {"99999999999999999999., -99999999999.", Read(INT32_MAX, INT32_MIN)},
    };
    static const char* const kNoPairs[] = {"51, -0",    "51.5, -0",   "0.5N; 0.5N", "0.5E; 0.5W",   "0.5E, 0.5",
                                           "0.5, 0.5N", "1.5e3, 2.5", "1e400.,1.",  "N51.5, W0.12", "51.5",
                                           ",",         "",           "0x1.8,0.5",  "inf.,nan."};
    for (const char* const text : kNoPairs) EXPECT_FALSE(Narrow(text).m_read || Wide(text).m_read) << text;
    for (const auto& c : kCases) {
        EXPECT_EQ(Narrow(c.text), c.reading) << c.text;
        EXPECT_EQ(Wide(c.text), c.reading) << c.text;
    }
}

TEST(CoordinateText, OnlyTheNarrowFormSkipsMarks) {
    static const struct {
        const char* text;
        Reading narrow, wide;
    } kCases[] = {
        {"51\xB0"
         "30'30\"N, 000 07 30 W",
         Read(51508333, -125000), kRefused},
        {"  51.5,   -0.12", Read(51500000, -120000), Read(51500000, -120000)},
        {"51.5 N, 0.12 W", Read(51500000, -120000), Read(51500000, 120000)},
        {"5 1.5, 0 . 1", Read(51500000, 100000), kRefused},
        {"\t51.5, 0.1", kRefused, kRefused},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(Narrow(c.text), c.narrow) << c.text;
        EXPECT_EQ(Wide(c.text), c.wide) << c.text;
    }
    EXPECT_FALSE(IsStrLatLongW(u"5\uFF11.5, \u0660.1", nullptr, nullptr));
    std::int32_t x = 77, y = 77;
    EXPECT_FALSE(IsStrLatLongW(u"\u0131.5, \u0135.1", &x, &y));
    EXPECT_FALSE(IsStrLatLong(nullptr, &x, &y));
    EXPECT_FALSE(IsStrLatLong("1.5,1.5", nullptr, &y));
    EXPECT_FALSE(IsStrLatLongW(u"1.5,1.5", &x, nullptr));
    EXPECT_EQ(x + y, 154);
}

TEST(CoordinateText, LongTextsAreCut) {
    const std::string zeros(125, '0');
    for (Reading (*const read)(const std::string&) : {Narrow, Wide}) {
        EXPECT_EQ(read("1.5,0" + zeros + "7."), kRefused);  // the point is cut off
        EXPECT_EQ(read("1.5," + zeros.substr(1) + "7.9"), Read(1500000, 7900000));
        EXPECT_EQ(read(zeros.substr(1) + "7.99,1.5"), Read(7900000, 1500000));
        EXPECT_EQ(read("1.5N," + zeros.substr(0, 30) + "7." + "E"), Read(1500000, 7000000));
        EXPECT_EQ(read("1.5N," + zeros.substr(0, 31) + "7." + "E"), Read(1500000, 0));
        EXPECT_EQ(read("1.5," + std::string(100'000, '1') + "."), kRefused);
        EXPECT_EQ(read(std::string(100'000, '1')), kRefused);
    }
    EXPECT_EQ(Narrow(std::string(126, ' ') + "1.5,1.5"), kRefused);
}

}  // namespace
}  // namespace dorvutil
