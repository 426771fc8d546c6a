#include "dorvutil/text/utf8.h"

#include <gtest/gtest.h>

#include <cstring>

#include "dorvutil/text/string.h"
#include "dorvutil/text/utf_kernels.h"
#include "text/encoding_samples.h"

namespace dorvutil {
namespace {

using test::ExactCopy;

// What CharByteCount and the structure of UTF-8 say, one byte after the other.
std::int32_t CountSlowly(const std::string& text, std::size_t maxBytes) {
    std::int32_t chars = 0;
    for (std::size_t i = 0; i < maxBytes && i < text.size() && text[i] != 0; ++chars) {
        const std::int32_t length = CharByteCount(text[i]);
        if (length != 0 && i + static_cast<std::size_t>(length) > maxBytes) break;
        bool ok = length != 0;
        for (std::size_t k = 1; k < static_cast<std::size_t>(length); ++k) ok = ok && (text[i + k] & 0xC0) == 0x80;
        if (!ok) return static_cast<std::int32_t>(std::strlen(text.data()));
        i += static_cast<std::size_t>(length);
    }
    return chars;
}

TEST(CharByteCount, EveryByte) {
    for (int c = 0; c < 256; ++c) {
        const int expected = c < 0x80 ? 1 : c < 0xC0 ? 0 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : c < 0xF8 ? 4 : 0;
        const char byte = static_cast<char>(c);
        EXPECT_EQ(CharByteCount(byte), expected) << c;
        EXPECT_EQ(CharByteCount(&byte), expected) << c;
    }
    EXPECT_EQ(CharByteCount(static_cast<const char*>(nullptr)), 0);
}

TEST(StrCharCount, Edges) {
    static constexpr struct {
        const char* text;
        std::uint32_t maxBytes;
        std::int32_t expected, within;
    } kCases[] = {{"aé", 9, 2, 2},   {"a\xE9z", 9, 3, 3},       {"a\xFFzzz", 3, 5, 3},
                  {"aé", 2, 1, 1},   {"a\xE2zz", 3, 1, 1},      {"a\xE2\x82", 9, 3, 3},
                  {"\x80", 9, 1, 1}, {"\xED\xA0\x80", 9, 1, 1}, {"abc", 0, 0, 0}};
    for (const auto& c : kCases) {
        EXPECT_EQ(StrCharCount(c.text, c.maxBytes), c.expected) << testing::PrintToString(c.text);
        EXPECT_EQ(StrCharCountWithin(c.text, c.maxBytes), c.within) << testing::PrintToString(c.text);
    }
    const char* const null = nullptr;
    EXPECT_EQ(StrCharCountWithin(ExactCopy<char>("ab\xFF").get(), 3), 3);
    EXPECT_EQ(StrCharCount(ORVustring("aé")), 2);
    EXPECT_TRUE(StrByteCount(ORVustring("aé")) == 3 && StrByteCount("aé") == 3);
    EXPECT_EQ(StrCharCount(null, 3u) + StrByteCount(ORVustring()) + StrByteCount(null), 0);
}

TEST(StrCharCount, RandomTextAsCountedSlowly) {
    test::Random random(5);
    for (std::uint32_t i = 0; i < 20000; ++i) {
        std::string text = test::RandomText(random, random() % 150);
        if (i % 2 != 0) test::Mutate(random, text);
        const auto block = ExactCopy(std::string_view(text.c_str(), text.size() + 1));
        const auto limit = static_cast<std::uint32_t>(random() % (text.size() + 5));
        ASSERT_EQ(StrCharCount(block.get(), limit), CountSlowly(text, limit)) << i;
        ASSERT_EQ(StrCharCount(block.get()), CountSlowly(text, text.size() + 9)) << i;
    }
}

TEST(StrBytesForChars, Edges) {
    static constexpr struct {
        const char* text;
        std::int32_t chars, expected;
    } kCases[] = {{"aéb", 2, 3},    {"aéb", 9, 4},       {"aéb", 0, 0},     {"aéb", -1, 0},
                  {"a\x80z", 9, 1}, {"a\xF0\x9F", 9, 3}, {"\xE9zzz", 1, 3}, {nullptr, 2, 0}};
    for (const auto& c : kCases) EXPECT_EQ(StrBytesForChars(c.text, c.chars), c.expected) << &c - kCases;
    EXPECT_TRUE(StrBytesForBytesChars("aébc", 4, 2) == 3 && StrBytesForBytesChars("aébc", 4, 3) == 4);
    EXPECT_EQ(StrBytesForBytesChars("aébc", 2, 5), 2);
}

TEST(StrPrevChar, Edges) {
    static constexpr char kText[] = "aé\x80\xFF";
    static constexpr std::int32_t kExpected[] = {-1, 0, 1, 1, 1, 1};
    for (std::int32_t pos = 0; pos < 6; ++pos) {
        const char* const found = StrPrevChar(kText, pos);
        EXPECT_EQ(found == nullptr ? -1 : found - kText, kExpected[pos]) << pos;
    }
    EXPECT_EQ(StrPrevChar("\x80\x80", 2), nullptr);
    EXPECT_EQ(StrPrevChar(nullptr, 2), nullptr);
}

TEST(IsValidUTF8String, Edges) {
    static constexpr struct {
        const char* text;
        std::int32_t maxBytes;
        bool plain, withControl;
    } kCases[] = {{"aéЖ€😀", 99, true, true},   {"a\tb", 99, false, true},   {"\x7F", 99, true, true},
                  {"a\x80", 99, false, false}, {"\xC3z", 99, false, false}, {"\xC3", 99, false, false},
                  {"a\xC3z", 2, true, true},   {"ab\x80", 2, true, true},   {"\xC0\x80", 99, true, true},
                  {"\xF8", 99, false, false},  {"", 99, true, true},        {nullptr, 9, false, false}};
    for (const auto& c : kCases) {
        EXPECT_EQ(IsValidUTF8String(c.text, c.maxBytes, false), c.plain) << testing::PrintToString(c.text);
        EXPECT_EQ(IsValidUTF8String(c.text, c.maxBytes, true), c.withControl) << testing::PrintToString(c.text);
    }
}

}  // namespace
}  // namespace dorvutil
