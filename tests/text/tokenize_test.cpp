#include "dorvutil/text/tokenize.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "text/string_support.h"

namespace dorvutil {
namespace {

template <class S>
class Tokenize : public testing::Test {};
TYPED_TEST_SUITE(Tokenize, BothWidths);

TYPED_TEST(Tokenize, WholeSeparators) {
    static const struct {
        const char *text, *separator;
        std::vector<std::string> tokens;
    } kCases[] = {{"a,b,", ",", {"a", "b", ""}}, {"", ",", {}},         {"abc", ",", {"abc"}},   {",", ",", {"", ""}},
                  {"a::b", "::", {"a", ":b"}},   {"aXb", "x", {"aXb"}}, {"ab", "", {"", "", ""}}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.text) + " at " + c.separator);
        for (const bool owns : {true, false}) {
            ListMgr<TypeParam> out(owns);
            TokenizeString(Make<TypeParam>(c.text), Make<TypeParam>(c.separator), out);
            ASSERT_EQ(out.Count(), c.tokens.size());
            for (std::uint32_t i = 0; i < out.Count(); ++i) EXPECT_EQ(Plain(*out[i]), c.tokens[i]);
            out.SetOwnsItems(true);
        }
    }
    ListMgr<TypeParam> out;
    TokenizeString(TypeParam(), TypeParam(), out);
    EXPECT_EQ(out.Count(), 0u);
    TokenizeString(Make<TypeParam>(std::string(500, ',')), Make<TypeParam>(","), out);
    EXPECT_EQ(out.Count(), 128u);
}

TYPED_TEST(Tokenize, WholeSeparatorsToLongs) {
    TVector<std::int32_t> out;
    TokenizeStringToLongs(Make<TypeParam>("1;-2;;x;99999999999"), Make<TypeParam>(";"), out);
    const std::vector<std::int32_t> got(out.begin(), out.end());
    EXPECT_EQ(got, (std::vector<std::int32_t>{1, -2, 0, 0, INT32_MAX}));
}

TYPED_TEST(Tokenize, AnySeparatorToLongs) {
    std::int32_t out[4] = {};
    const auto separators = Units<UnitOf<TypeParam>>(",; ");
    const auto text = Make<TypeParam>(" 1,;0x1F 0xffffffff,00000000000000000000000000000000000000007,5");
    EXPECT_EQ(TokenizeStringToLongs(text, separators.c_str(), out, 4), 4u);
    EXPECT_EQ(std::vector<std::int32_t>(out, out + 4), (std::vector<std::int32_t>{1, 31, INT32_MAX, 0}));
    EXPECT_EQ(TokenizeStringToLongs(text, separators.c_str(), out, 2), 2u);
    EXPECT_EQ(TokenizeStringToLongs(text, separators.c_str(), out, 0), 0u);
    EXPECT_EQ(TokenizeStringToLongs(TypeParam(), separators.c_str(), out, 4), 0u);
}

TEST(TokenizePointers, AnySeparatorToLongs) {
    std::int32_t out[5] = {};
    EXPECT_EQ(TokenizeStringToLongs("10, 0x10;;-3 0xffffffff,0100", ",; ", out, 5), 5u);
    EXPECT_EQ(std::vector<std::int32_t>(out, out + 5), (std::vector<std::int32_t>{10, 16, -3, -1, 100}));
    EXPECT_EQ(TokenizeStringToLongs("152", "5", out, 5), 2u) << "digits may be separators";
    EXPECT_EQ(out[1], 2);
    EXPECT_EQ(TokenizeStringToLongs(",;", ",;", out, 5), 0u);
    EXPECT_EQ(TokenizeStringToLongs(nullptr, ",", out, 5), 0u);
    EXPECT_EQ(TokenizeStringToLongs("1", ",", nullptr, 5), 0u);
}

TEST(TokenizePointers, InPlace) {
    char text[] = ",a,,b,";
    TVector<const char*> out;
    EXPECT_EQ(TokenizeString(text, ',', out), 5u);
    for (const char* const expected : {"", "a", "", "b", ""}) {
        EXPECT_STREQ(out[0], expected);
        out.DeleteAt(0);
    }
    char empty[] = "";
    EXPECT_EQ(TokenizeString(empty, ',', out), 0u);
    EXPECT_EQ(TokenizeString(nullptr, ',', out), 0u);
    char whole[] = "abc";
    EXPECT_EQ(TokenizeString(whole, 0, out), 1u);
}

}  // namespace
}  // namespace dorvutil
