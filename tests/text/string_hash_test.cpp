#include "dorvutil/text/string_hash.h"

#include <gtest/gtest.h>

#include "text/string_support.h"

namespace dorvutil {
namespace {

TEST(StrHash, KnownValues) {
    EXPECT_EQ(StrHashValue<char>("a", 1), 0x616160u);
    EXPECT_EQ(StrHashValue<char>("abc", 3), 0x63636262u);
    EXPECT_EQ(StrHashValue<char16_t>(u"abc", 3), 0x63636262u);
    EXPECT_EQ(StrHashValue<char>("", 0), 0u);
    EXPECT_EQ(StrHashValue<char>(nullptr, 5), 0u);
    // Each byte -1: ((-1 << 8 ^ -1) << 8) ^ -1 ^ 1
    EXPECT_EQ(StrHashValue<char>("\xFF", 1), 0xFFFF'00FEu);
    EXPECT_EQ(StrHashValue<char16_t>(u"\u00FF", 1), 0x00FF'FFFEu);
    EXPECT_EQ(ORVustring("abc").HashValue(), 0x63636262u);
    EXPECT_EQ(ORVwstring(u"abc").HashValue(), 0x63636262u);
    EXPECT_EQ(ORVustring().HashValue(), 0u);
}

}  // namespace
}  // namespace dorvutil
