#include "dorvutil/memory/bit_vector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "memory/failing_heap.h"

namespace dorvutil {
namespace {

TEST(BitVectorText, ReadsDigitsFromTheRight) {
    static constexpr struct {
        const char* text;
        const char* digits;  // bit 7 … bit 0
    } kCases[] = {{"1 0 1 1", "00001011"}, {"", "00000000"},    {"1", "00000001"},
                  {nullptr, "00000000"},   {"1x1", "00000101"}, {" \t\n\v\f\r1 ", "00000001"},
                  {"11112222", "11110000"}};
    for (const auto& c : kCases) {
        const CBitVector bits(c.text);
        for (std::uint32_t i = 0; i < 8; ++i) EXPECT_EQ(bits[i], c.digits[7 - i] == '1') << c.digits << i;
    }
    const CBitVector wide((std::string("1") + std::string(32, '0')).c_str());
    EXPECT_TRUE(wide[32] && !wide.Or(0, 32));
}

TEST(BitVectorSize, SetsOldAndNewBitsAlikeAndReadsMissingOnesClear) {
    CBitVector bits(3, true);
    EXPECT_TRUE(bits.And(0, 3));
    bits.SetSize(100, false);
    EXPECT_FALSE(bits.Or(0, 100));
    bits.SetSize(32, true);
    bits.Set(32);
    bits.Set(31, 0xFFFFFFFFu);
    EXPECT_TRUE(bits.And(0, 32) && bits.Or(31, 0xFFFFFFFFu));
    EXPECT_FALSE(bits[32] || bits[0xFFFFFFFFu] || bits.And(31, 2));
    EXPECT_FALSE(CBitVector(0, true).Or(0, 0xFFFFFFFFu));
    const FailingHeap heap(1);
    bits.SetSize(1000, true);
    EXPECT_FALSE(bits.Or(0, 1000));
}

// Ranges within a word, across words and of no bits.
TEST(BitVectorModel, RandomOperationsMatch) {
    const std::uint32_t seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const std::uint32_t size = 200;
    CBitVector bits(size, false);
    std::vector<bool> model(size, false);
    for (int step = 0; step < 20000; ++step) {
        const auto i = static_cast<std::uint32_t>(random() % size);
        const auto n = static_cast<std::uint32_t>(random() % (size - i + 1)) / (step % 2 == 0 ? 1 : 8);
        const auto from = model.begin() + i;
        const auto choice = random() % 16;
        if (choice < 4) choice % 2 == 0 ? bits.Set(i) : bits.Clear(i), model[i] = choice % 2 == 0;
        if (choice == 4) bits.Set(i, n), std::fill(from, from + n, true);
        if (choice == 5) bits.Clear(i, n), std::fill(from, from + n, false);
        if (step % 1000 == 0) bits.Set(), model.assign(size, true);
        if (step % 1700 == 0) bits.Clear(), model.assign(size, false);
        ASSERT_EQ(bits.Or(i, n), std::find(from, from + n, true) != from + n) << step;
        ASSERT_EQ(bits.And(i, n), n != 0 && std::find(from, from + n, false) == from + n) << step;
        ASSERT_EQ(CBitVector(bits)[i], model[i]) << step;
    }
}

}  // namespace
}  // namespace dorvutil
