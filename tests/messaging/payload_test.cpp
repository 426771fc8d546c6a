#include "dorvutil/messaging/payload.h"

#include <gtest/gtest.h>

namespace dorvutil {
namespace {

TEST(Payload, EveryClassAcceptsItsOwnTagAndNoOther) {
    char16_t text[] = u"x";
    const struct {
        std::uint32_t type;
        bool (*accepts)(std::uint32_t);
        std::uint32_t tag;
    } kCases[] = {
        {CBDataBase().Type(), CBDataBase::CastIsPossible, 0},
        {CBDataL(0).Type(), CBDataL::CastIsPossible, 1},
        {CBDataLOut(0).Type(), CBDataLOut::CastIsPossible, 2},
        {CBData2L(0, 0).Type(), CBData2L::CastIsPossible, 4},
        {CBData2LOut(0, 0).Type(), CBData2LOut::CastIsPossible, 5},
        {CBDataNormal(0, u"", 0).Type(), CBDataNormal::CastIsPossible, 6},
        {CBData_In2wsz_Out1L(text, text, 0).Type(), CBData_In2wsz_Out1L::CastIsPossible, 8},
        {CBDataGetAttr("", nullptr).Type(), CBDataGetAttr::CastIsPossible, 9},
        {CBDataUIMsg(0).Type(), CBDataUIMsg::CastIsPossible, 10},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(c.type, c.tag);
        for (std::uint32_t tag = 0; tag < 16; ++tag) EXPECT_EQ(c.accepts(tag), tag == c.tag) << c.tag << " " << tag;
    }
}

TEST(Payload, FieldsKeepTheOrderOfTheConstructors) {
    const CBData2L two(1, -2);
    EXPECT_TRUE(two.m_first == 1 && two.m_second == -2);
    const CBDataNormal normal(3, u"wide", 4);
    EXPECT_TRUE(normal.m_first == 3 && normal.m_text == u"wide" && normal.m_second == 4);
    char16_t first[] = u"a", second[] = u"b";
    const CBData_In2wsz_Out1L in2(first, second, 5);
    EXPECT_TRUE(in2.m_first == first && in2.m_second == second && in2.m_result == 5);
    const CBDataUIMsg all(CBDataUIMsg(7, 8, {9, -10})), event(7);
    EXPECT_TRUE(all.m_event == 7 && all.m_parameter == 8 && all.m_point.x == 9 && all.m_point.y == -10);
    EXPECT_TRUE(event.m_event == 7 && event.m_parameter == 0 && event.m_point.x == 0 && event.m_point.y == 0);
}

}  // namespace
}  // namespace dorvutil
