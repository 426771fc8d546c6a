#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

#include "text/string_support.h"

namespace dorvutil {
namespace {

template <class S>
class StringNumbers : public testing::Test {};
TYPED_TEST_SUITE(StringNumbers, BothWidths);

TYPED_TEST(StringNumbers, Integers) {
    static constexpr struct {
        const char* text;
        int radix;
        std::int32_t value;
        std::uint32_t unsignedValue;
    } kCases[] = {{"", 10, 0, 0},
                  {"42", 10, 42, 42},
                  {"  \t-42x", 10, -42, 0u - 42u},
                  {"+7", 10, 7, 7},
                  {"- 7", 10, 0, 0},
                  {"2147483648", 10, INT32_MAX, 2147483648u},
                  {"-2147483649", 10, INT32_MIN, 2147483647u},
                  {"99999999999999999999999", 10, INT32_MAX, UINT32_MAX},
                  {"0x1F", 16, 31, 31},
                  {"1f", 16, 31, 31},
                  {"0xg", 16, 0, 0},
                  {"ffffffff", 16, INT32_MAX, UINT32_MAX},
                  {"0x1F", 0, 31, 31},
                  {"017", 0, 15, 15},
                  {"08", 0, 0, 0},
                  {"zz", 36, 1295, 1295},
                  {"12", 2, 1, 1},
                  {"12", 1, 0, 0},
                  {"12", 37, 0, 0},
                  {"12", -1, 0, 0}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.text) + " in " + std::to_string(c.radix));
        EXPECT_EQ(Make<TypeParam>(c.text).to_long(c.radix), c.value);
        EXPECT_EQ(Make<TypeParam>(c.text).to_ulong(c.radix), c.unsignedValue);
    }
    EXPECT_EQ(TypeParam().to_long(), 0);
    EXPECT_EQ(TypeParam().to_ulong(), 0u);
    EXPECT_EQ(TypeParam().to_float(), 0.0);
}

TYPED_TEST(StringNumbers, FloatingPointAsTheStandardLibrary) {
    static constexpr const char* kTexts[] = {"1.5",
                                             "  -2.25e3x",
                                             "+.5",
                                             "5.",
                                             ".",
                                             "e5",
                                             "1e",
                                             "1e+",
                                             "0x1.8p1",
                                             "0x",
                                             "0xp",
                                             "0x.8",
                                             "inf",
                                             "-INFINITY",
                                             "nan",
                                             "1e400",
                                             "-1e400",
                                             "1e-400",
                                             "0.0000001e-400",
                                             "100000e400",
                                             "--1",
                                             "+-1",
                                             "4.9e-324",
                                             "2e-324",
                                             "1e5000000000",
                                             "abc",
                                             "",
                                             "0x1p5000",
                                             "0x1p-5000",
                                             "123456789012345678901234567890"};
    for (const char* const text : kTexts) {
        const double expected = std::atof(text);
        const double got = Make<TypeParam>(text).to_float();
        SCOPED_TRACE(text);
        if (std::isnan(expected)) {
            EXPECT_TRUE(std::isnan(got));
        } else {
            EXPECT_EQ(got, expected);
            EXPECT_EQ(std::signbit(got), std::signbit(expected));
        }
    }
    EXPECT_EQ(Make<TypeParam>(std::string(60000, '0') + "1.5").to_float(), 1.5);
}

TYPED_TEST(StringNumbers, ToText) {
    EXPECT_EQ(Plain(TypeParam::ltoa(-42, 10)), "-42");
    EXPECT_EQ(Plain(TypeParam::itoa(255, 16)), "ff");
    EXPECT_EQ(Plain(TypeParam::ltoa(-255, 16)), "-ff");
    EXPECT_EQ(Plain(TypeParam::ltoa(INT32_MIN, 2)), "-10000000000000000000000000000000");
    EXPECT_EQ(Plain(TypeParam::ltoa(35, 36)), "z");
    EXPECT_EQ(Plain(TypeParam::ltoa(5, 1)), "");
    EXPECT_EQ(Plain(TypeParam::ultoa(5, 37)), "");
    EXPECT_EQ(Plain(TypeParam::ultoa(42, 16)), "0x0000002a");
    EXPECT_EQ(Plain(TypeParam::ultoa(UINT32_MAX, 16)), "0xffffffff");
    EXPECT_EQ(Plain(TypeParam::ultoa(UINT32_MAX, 10)), "4294967295");
    EXPECT_EQ(Plain(TypeParam::ftoa(1.5, -1)), "1.500000");
    EXPECT_EQ(Plain(TypeParam::ftoa(1.5, 2)), "1.50");
    EXPECT_EQ(Plain(TypeParam::ftoa(-0.5, 0)), "-0");
    EXPECT_EQ(TypeParam::ftoa(-1e300, 2).length(), 63u);
    EXPECT_EQ(TypeParam::ftoa(0.1, 0x7FFFFFFF).length(), 63u);
}

}  // namespace
}  // namespace dorvutil
