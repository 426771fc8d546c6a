#include "dorvutil/frame/random.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

#include "dorvutil/frame/byte_order.h"
#include "dorvutil/frame/random_state.h"

namespace dorvutil {
namespace {

// One step of each component of LFSR113, written out as its author prints it.
std::uint32_t Step(std::uint32_t component, std::uint32_t z) {
    switch (component) {
        case 0:
            return ((z & 4294967294u) << 18) ^ (((z << 6) ^ z) >> 13);
        case 1:
            return ((z & 4294967288u) << 2) ^ (((z << 2) ^ z) >> 27);
        case 2:
            return ((z & 4294967280u) << 7) ^ (((z << 13) ^ z) >> 21);
        default:
            return ((z & 4294967168u) << 13) ^ (((z << 3) ^ z) >> 12);
    }
}

TEST(RandState, EachThreadAdvancesItsOwnWordWithItsOwnComponent) {
    std::uint32_t words[CRandState::kWords];
    for (std::uint32_t i = 0; i < CRandState::kWords; ++i) words[i] = 0x9E3779B9u * (i + 1);
    CRandState state(words);
    for (std::uint32_t call = 0; call < 2000; ++call) {
        const std::uint32_t thread = call * 7919u;  // walks through every word and every component
        std::uint32_t& word = words[thread % 32];
        word = Step(thread % 4, word);
        std::uint32_t mixed = word;
        for (std::uint32_t next = 1; next <= 3; ++next) mixed ^= words[(thread + next) % 32];
        const auto value = static_cast<std::int32_t>(mixed);
        const std::int32_t expected = value < 0 && value != std::numeric_limits<std::int32_t>::min() ? -value : value;
        ASSERT_EQ(state.Next(thread), expected) << "call " << call;
    }
}

TEST(OrvRand, NumbersDifferAndAreNotNegative) {
    std::set<std::int32_t> seen;
    for (int i = 0; i < 1000; ++i) {
        const std::int32_t value = ORVRand();
        EXPECT_TRUE(value >= 0 || value == std::numeric_limits<std::int32_t>::min());
        seen.insert(value);
    }
    EXPECT_GT(seen.size(), 990u);
}

TEST(ByteOrder, BothNamesReverse) {
    EXPECT_EQ(ConvBig2Little(std::uint32_t{0x11223344}), 0x44332211u);
    EXPECT_EQ(ConvLittle2Big(std::uint32_t{0x000000FF}), 0xFF000000u);
    EXPECT_EQ(ConvBig2Little(std::uint16_t{0x1122}), 0x2211u);
    EXPECT_EQ(ConvLittle2Big(std::uint16_t{0x00FF}), 0xFF00u);
}

}  // namespace
}  // namespace dorvutil
