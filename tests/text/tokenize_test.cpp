#include "dorvutil/text/tokenize.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "text/string_support.h"

namespace dorvutil {
namespace {

using Longs = std::vector<std::int32_t>;

template <class S>
class Tokenize : public StringTest<S> {};
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
            TokenizeString(this->M(c.text), this->M(c.separator), out);
            ASSERT_EQ(out.Count(), c.tokens.size());
            for (std::uint32_t i = 0; i < out.Count(); ++i) EXPECT_EQ(Plain(*out[i]), c.tokens[i]);
            out.SetOwnsItems(true);
        }
    }
    ListMgr<TypeParam> out;
    TokenizeString(TypeParam(), TypeParam(), out);
    EXPECT_EQ(out.Count(), 0u);
    TokenizeString(this->M(std::string(500, ',')), this->M(","), out);
    EXPECT_EQ(out.Count(), 128u);
}

TYPED_TEST(Tokenize, Longs) {
    TVector<std::int32_t> whole;
    TokenizeStringToLongs(this->M("1;-2;;x;99999999999"), this->M(";"), whole);
    EXPECT_EQ(Longs(whole.begin(), whole.end()), (Longs{1, -2, 0, 0, INT32_MAX}));
    Longs out(4);
    const auto* const separators = this->U(",; ");
    const auto text = this->M(" 1,;0x1F 0xffffffff,00000000000000000000000000000000000000007,5");
    for (const std::uint32_t room : {4u, 2u, 0u}) {
        EXPECT_EQ(TokenizeStringToLongs(text, separators, out.data(), room), room);
    }
    EXPECT_EQ(out, (Longs{1, 31, INT32_MAX, 0}));
    EXPECT_EQ(TokenizeStringToLongs(TypeParam(), separators, out.data(), 4), 0u);
}

TEST(TokenizePointers, AnySeparatorToLongs) {
    Longs out(5);
    EXPECT_EQ(TokenizeStringToLongs("10, 0x10;;-3 0xffffffff,0100", ",; ", out.data(), 5), 5u);
    EXPECT_EQ(out, (Longs{10, 16, -3, -1, 100}));
    EXPECT_EQ(TokenizeStringToLongs("152", "5", out.data(), 5), 2u) << "digits may be separators";
    EXPECT_EQ(out[1], 2);
    EXPECT_EQ(TokenizeStringToLongs(",;", ",;", out.data(), 5), 0u);
    EXPECT_EQ(TokenizeStringToLongs(nullptr, ",", out.data(), 5) + TokenizeStringToLongs("1", ",", nullptr, 5), 0u);
}

TEST(TokenizePointers, InPlace) {
    char text[] = ",a,,b,", empty[] = "", whole[] = "abc";
    TVector<const char*> out, other;
    EXPECT_EQ(TokenizeString(text, ',', out), 5u);
    EXPECT_EQ(std::vector<std::string>(out.begin(), out.end()), (std::vector<std::string>{"", "a", "", "b", ""}));
    EXPECT_EQ(TokenizeString(empty, ',', other) + TokenizeString(nullptr, ',', other), 0u);
    EXPECT_EQ(TokenizeString(whole, 0, other), 1u);
}

}  // namespace
}  // namespace dorvutil
