#include "dorvutil/memory/bit_vector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "memory/failing_heap.h"

namespace dorvutil {
namespace {

std::string Digits(const CBitVector& bits, std::uint32_t n) {
    std::string text;
    while (n-- > 0) text += bits[n] ? '1' : '0';
    return text;
}

TEST(BitVectorText, ReadsDigitsFromTheRight) {
    static constexpr struct {
        const char* text;
        const char* digits;
    } kCases[] = {{"1 0 1 1", "00001011"}, {"", "00000000"},    {"1", "00000001"},
                  {"10", "00000010"},      {"1x1", "00000101"}, {" \t\n\v\f\r1 ", "00000001"},
                  {"11112222", "11110000"}};
    for (const auto& c : kCases) EXPECT_EQ(Digits(CBitVector(c.text), 8), c.digits) << c.text;
    EXPECT_FALSE(CBitVector(nullptr)[0]);
    const CBitVector wide((std::string("1") + std::string(32, '0')).c_str());
    EXPECT_TRUE(wide[32]);
    EXPECT_FALSE(wide.Or(0, 32));
}

TEST(BitVectorRange, CrossesWords) {
    CBitVector bits(64, false);
    bits.Set(30, 4);
    EXPECT_TRUE(bits.And(30, 4));
    EXPECT_FALSE(bits.Or(34, 10));
    EXPECT_FALSE(bits.Or(0, 30));
    EXPECT_FALSE(bits.And(29, 2));
    EXPECT_FALSE(bits.Or(30, 0));
    EXPECT_FALSE(bits.And(30, 0));
    EXPECT_TRUE(bits.CheckRange(1000, 1000));
}

TEST(BitVectorSize, SetsOldAndNewBitsAlike) {
    CBitVector bits(3, true);
    EXPECT_TRUE(bits.And(0, 3));
    bits.SetSize(100, false);
    EXPECT_FALSE(bits.Or(0, 100));
    bits.SetSize(40, true);
    EXPECT_TRUE(bits.And(0, 40));
    bits.SetSize(0, true);
    EXPECT_FALSE(bits[0]);
    const CBitVector none(0, true);
    EXPECT_FALSE(none.Or(0, 0xFFFFFFFFu));
}

TEST(BitVectorLimits, BitsThatAreNotThereReadClear) {
    CBitVector bits(32, true);
    bits.Set(32);
    bits.Set(31, 0xFFFFFFFFu);
    EXPECT_FALSE(bits[32]);
    EXPECT_FALSE(bits[0xFFFFFFFFu]);
    EXPECT_FALSE(bits.And(31, 2));
    EXPECT_TRUE(bits.Or(31, 0xFFFFFFFFu));
    const FailingHeap heap(1);
    bits.SetSize(1000, true);
    EXPECT_FALSE(bits.Or(0, 1000));
}

TEST(BitVectorModel, RandomOperationsMatch) {
    const std::uint32_t seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const std::uint32_t size = 200;
    CBitVector bits(size, false);
    std::vector<bool> model(size, false);
    for (int step = 0; step < 20000; ++step) {
        const auto i = static_cast<std::uint32_t>(random() % size);
        const auto n = static_cast<std::uint32_t>(random() % (size - i + 1));
        const auto from = model.begin() + i;
        switch (random() % 8) {
            case 0:
                bits.Set(i);
                model[i] = true;
                break;
            case 1:
                bits.Clear(i);
                model[i] = false;
                break;
            case 2:
                bits.Set(i, n % 70);
                std::fill(from, from + std::min(n, n % 70), true);
                break;
            case 3:
                bits.Clear(i, n);
                std::fill(from, from + n, false);
                break;
            default:
                break;
        }
        if (step % 1000 == 0) bits.Set(), model.assign(size, true);
        if (step % 1700 == 0) bits.Clear(), model.assign(size, false);
        ASSERT_EQ(bits.Or(i, n), std::find(from, from + n, true) != from + n) << step;
        ASSERT_EQ(bits.And(i, n), n != 0 && std::find(from, from + n, false) == from + n) << step;
        ASSERT_EQ(bits[i], model[i]) << step;
    }
    const CBitVector copy(bits);
    for (std::uint32_t i = 0; i < size; ++i) ASSERT_EQ(copy[i], model[i]);
}

}  // namespace
}  // namespace dorvutil
