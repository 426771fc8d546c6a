#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>

#include "dorvutil/text/string_hash.h"
#include "text/string_support.h"

namespace dorvutil {
namespace {

template <class S>
class StringNumbers : public StringTest<S> {};
TYPED_TEST_SUITE(StringNumbers, BothWidths);

TYPED_TEST(StringNumbers, Integers) {
    static constexpr struct {
        const char* text;
        int radix;
        std::int32_t value;
        std::uint32_t unsignedValue;
    } kCases[] = {{" ", 10, 0, 0},        {nullptr, 10, 0, 0},     {"42", 10, 42, 42},   {"+7", 10, 7, 7},
                  {"- 7", 10, 0, 0},      {" \t-4x", 10, -4, ~3u}, {"0x1F", 16, 31, 31}, {"1f", 16, 31, 31},
                  {"0xg", 16, 0, 0},      {"0x1F", 0, 31, 31},     {"017", 0, 15, 15},   {"08", 0, 0, 0},
                  {"zz", 36, 1295, 1295}, {"12", 2, 1, 1},         {"12", 1, 0, 0},      {"12", 37, 0, 0},
                  {"12", -1, 0, 0}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::PrintToString(c.text) + " in " + std::to_string(c.radix));
        EXPECT_EQ(this->M(c.text).to_long(c.radix), c.value);
        EXPECT_EQ(this->M(c.text).to_ulong(c.radix), c.unsignedValue);
    }
    const TypeParam large = this->M("2147483648"), low = this->M("-2147483649"),
                    huge = this->M("99999999999999999999999");
    EXPECT_TRUE(large.to_long() == INT32_MAX && low.to_long() == INT32_MIN && huge.to_long() == INT32_MAX);
    EXPECT_TRUE(large.to_ulong() == 2147483648u && low.to_ulong() == INT32_MAX && huge.to_ulong() == UINT32_MAX);
    EXPECT_EQ(this->M("ffffffff").to_ulong(16), UINT32_MAX);
}

TYPED_TEST(StringNumbers, FloatingPointAsTheStandardLibrary) {
    const auto check = [this](const char* text) {
        const double expected = std::atof(text);
        const double got = this->M(text).to_float();
        EXPECT_TRUE(got == expected || (std::isnan(got) && std::isnan(expected))) << text << " gave " << got;
        EXPECT_TRUE(std::isnan(got) || std::signbit(got) == std::signbit(expected)) << text;
    };
    for (const char* const text :
         {"1.5", "+.5",      "5.",     ".",         "e5",  "1e",       "1e+",      "0x1.8p1", "0x",
          "0xp", "0x.8",     "inf",    "-INFINITY", "nan", "1e400",    "-1e400",   "1e-400",  "--1",
          "+-1", "4.9e-324", "2e-324", "abc",       "",    "0x1p5000", "0x1p-5000"}) {
        check(text);
    }
    for (const char* const text :
         {"  -2.25e3x", "0.0000001e-400", "100000e400", "1e5000000000", "12345678901234567890123"}) {
        check(text);
    }
    EXPECT_EQ(this->M(std::string(60000, '0') + "1.5").to_float(), 1.5);
    EXPECT_EQ(TypeParam().to_float(), 0.0);
}

TYPED_TEST(StringNumbers, ToText) {
    static const struct {
        TypeParam text;
        const char* expected;
    } kCases[] = {{TypeParam::ltoa(-42, 10), "-42"},
                  {TypeParam::itoa(255, 16), "ff"},
                  {TypeParam::ltoa(-255, 16), "-ff"},
                  {TypeParam::ltoa(35, 36), "z"},
                  {TypeParam::ltoa(5, 1), ""},
                  {TypeParam::ultoa(5, 37), ""},
                  {TypeParam::ltoa(INT32_MIN, 2), "-10000000000000000000000000000000"},
                  {TypeParam::ultoa(42, 16), "0x0000002a"},
                  {TypeParam::ultoa(UINT32_MAX, 16), "0xffffffff"},
                  {TypeParam::ultoa(UINT32_MAX, 10), "4294967295"},
                  {TypeParam::ftoa(1.5, -1), "1.500000"},
                  {TypeParam::ftoa(1.5, 2), "1.50"},
                  {TypeParam::ftoa(-0.5, 0), "-0"}};
    for (const auto& c : kCases) EXPECT_EQ(Plain(c.text), c.expected);
    EXPECT_EQ(TypeParam::ftoa(-1e300, 2).length(), 63u);
    EXPECT_EQ(TypeParam::ftoa(0.1, 0x7FFFFFFF).length(), 63u);
}

TEST(StringHash, KnownValues) {
    EXPECT_EQ(StrHashValue<char>("a", 1), 0x616160u);
    EXPECT_EQ(StrHashValue<char16_t>(u"abc", 3), 0x63636262u);
    EXPECT_EQ(StrHashValue<char>("", 0) + StrHashValue<char>(nullptr, 5) + ORVustring().HashValue(), 0u);
    // Each byte -1: ((-1 << 8 ^ -1) << 8) ^ -1 ^ 1
    EXPECT_EQ(StrHashValue<char>("\xFF", 1), 0xFFFF'00FEu);
    EXPECT_EQ(StrHashValue<char16_t>(u"\u00FF", 1), 0x00FF'FFFEu);
    EXPECT_TRUE(ORVustring("abc").HashValue() == 0x63636262u && ORVwstring(u"abc").HashValue() == 0x63636262u);
}

}  // namespace
}  // namespace dorvutil
