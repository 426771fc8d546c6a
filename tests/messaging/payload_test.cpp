#include "dorvutil/messaging/payload.h"

#include <gtest/gtest.h>

namespace dorvutil {
namespace {

TEST(Payload, EveryClassAcceptsItsOwnTagAndNoOther) {
    char16_t text[] = u"x";
    const CBDataL l(0);
    const CBDataLOut lOut(0);
    const CBData2L l2(0, 0);
    const CBData2LOut l2Out(0, 0);
    const CBDataNormal normal(0, u"", 0);
    const CBData_In2wsz_Out1L in2(text, text, 0);
    const CBDataGetAttr attr("", nullptr);
    const CBDataUIMsg ui(0);
    const struct {
        const char* name;
        const CBDataBase* payload;
        bool (*accepts)(std::uint32_t);
        std::uint32_t tag;
    } kCases[] = {
        {"CBDataL", &l, CBDataL::CastIsPossible, 1},
        {"CBDataLOut", &lOut, CBDataLOut::CastIsPossible, 2},
        {"CBData2L", &l2, CBData2L::CastIsPossible, 4},
        {"CBData2LOut", &l2Out, CBData2LOut::CastIsPossible, 5},
        {"CBDataNormal", &normal, CBDataNormal::CastIsPossible, 6},
        {"CBData_In2wsz_Out1L", &in2, CBData_In2wsz_Out1L::CastIsPossible, 8},
        {"CBDataGetAttr", &attr, CBDataGetAttr::CastIsPossible, 9},
        {"CBDataUIMsg", &ui, CBDataUIMsg::CastIsPossible, 10},
    };
    EXPECT_EQ(CBDataBase().Type(), 0u);
    EXPECT_TRUE(CBDataBase::CastIsPossible(0));
    EXPECT_FALSE(CBDataBase::CastIsPossible(1));
    for (const auto& c : kCases) {
        EXPECT_EQ(c.payload->Type(), c.tag) << c.name;
        for (std::uint32_t tag = 0; tag < 16; ++tag) EXPECT_EQ(c.accepts(tag), tag == c.tag) << c.name << " " << tag;
    }
}

TEST(Payload, FieldsKeepTheOrderOfTheConstructors) {
    const CBData2L two(1, -2);
    EXPECT_EQ(two.m_first, 1);
    EXPECT_EQ(two.m_second, -2);
    const CBDataNormal normal(3, u"wide", 4);
    EXPECT_EQ(normal.m_first, 3);
    EXPECT_STREQ(normal.m_text.c_str(), "wide");
    EXPECT_EQ(normal.m_second, 4);
    char16_t first[] = u"a", second[] = u"b";
    const CBData_In2wsz_Out1L in2(first, second, 5);
    EXPECT_EQ(in2.m_first, first);
    EXPECT_EQ(in2.m_second, second);
    EXPECT_EQ(in2.m_result, 5);
    const CBDataGetAttr attr("name", "argument");
    EXPECT_STREQ(attr.m_name.c_str(), "name");
    EXPECT_STREQ(attr.m_argument, "argument");
    EXPECT_TRUE(attr.m_result.empty());
}

TEST(Payload, UIMessageFillsInWhatIsLeftOut) {
    const struct {
        const char* name;
        CBDataUIMsg message;
        std::int32_t event, parameter, x, y;
    } kCases[] = {
        {"event", CBDataUIMsg(7), 7, 0, 0, 0},
        {"event and parameter", CBDataUIMsg(7, -8), 7, -8, 0, 0},
        {"all", CBDataUIMsg(7, 8, {9, -10}), 7, 8, 9, -10},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const CBDataUIMsg copy(c.message);
        EXPECT_EQ(copy.Type(), 10u);
        EXPECT_EQ(copy.m_event, c.event);
        EXPECT_EQ(copy.m_parameter, c.parameter);
        EXPECT_EQ(copy.m_point.x, c.x);
        EXPECT_EQ(copy.m_point.y, c.y);
    }
}

}  // namespace
}  // namespace dorvutil
