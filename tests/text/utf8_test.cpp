#include "dorvutil/text/utf8.h"

#include <gtest/gtest.h>

#include <cstring>

#include "dorvutil/text/string.h"
#include "dorvutil/text/utf_kernels.h"
#include "text/encoding_samples.h"

namespace dorvutil {
namespace {

using test::ExactCopy;
using test::kSamples;
using namespace std::string_literals;

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
        const char* name;
        const char* text;
        std::uint32_t maxBytes;
        std::int32_t expected, within;
    } kCases[] = {
        {"two characters", "aé", 9, 2, 2},
        {"not UTF-8",
         "a\xE9"
         "b",
         9, 3, 3},
        {"not UTF-8, beyond the limit too",
         "a\xFF"
         "bcd",
         3, 5, 3},
        {"sequence across the limit", "aé", 2, 1, 1},
        {"broken sequence across the limit", "a\xE2zz", 3, 1, 1},
        {"sequence cut by the terminator", "a\xE2\x82", 9, 3, 3},
        {"stray continuation byte", "\x80", 9, 1, 1},
        {"surrogates pass", "\xED\xA0\x80", 9, 1, 1},
        {"no bytes", "abc", 0, 0, 0},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(StrCharCount(c.text, c.maxBytes), c.expected) << c.name;
        EXPECT_EQ(StrCharCountWithin(c.text, c.maxBytes), c.within) << c.name;
    }
    EXPECT_EQ(StrCharCount(static_cast<const char*>(nullptr), 3u), 0);
    EXPECT_EQ(StrCharCountWithin(ExactCopy(std::string_view("ab\xFF")).get(), 3), 3);
    EXPECT_EQ(StrCharCount(ORVustring("aé")), 2);
    EXPECT_EQ(StrByteCount(ORVustring("aé")), 3);
    EXPECT_EQ(StrByteCount(ORVustring()), 0);
    EXPECT_EQ(StrByteCount("aé"), 3);
    EXPECT_EQ(StrByteCount(static_cast<const char*>(nullptr)), 0);
}

TEST(StrCharCount, RandomTextAsCountedSlowly) {
    constexpr std::uint32_t kSeed = 5;
    test::Random random(kSeed);
    for (std::uint32_t i = 0; i < 20000; ++i) {
        std::string text = test::RandomText(random, random() % 150);
        if (i % 2 != 0) test::Mutate(random, text);
        const auto block = ExactCopy(std::string_view(text.c_str(), text.size() + 1));
        const auto limit = static_cast<std::uint32_t>(random() % (text.size() + 5));
        ASSERT_EQ(StrCharCount(block.get(), limit), CountSlowly(text, limit)) << "seed " << kSeed << " text " << i;
        ASSERT_EQ(StrCharCount(block.get()), CountSlowly(text, text.size() + 9)) << "seed " << kSeed << " text " << i;
    }
}

TEST(StrBytesForChars, Edges) {
    static constexpr struct {
        const char* name;
        const char* text;
        std::int32_t chars, expected;
    } kCases[] = {
        {"first two", "aéb", 2, 3},
        {"all and more", "aéb", 9, 4},
        {"none", "aéb", 0, 0},
        {"negative", "aéb", -1, 0},
        {"not stepped over",
         "a\x80"
         "b",
         9, 1},
        {"cut by the terminator", "a\xF0\x9F", 9, 3},
        {"what stands inside does not matter", "\xE9zzz", 1, 3},
    };
    for (const auto& c : kCases) EXPECT_EQ(StrBytesForChars(c.text, c.chars), c.expected) << c.name;
    EXPECT_EQ(StrBytesForChars(nullptr, 2), 0);
    EXPECT_EQ(StrBytesForBytesChars("aébc", 4, 2), 3);
    EXPECT_EQ(StrBytesForBytesChars("aébc", 4, 3), 4);
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
        const char* name;
        const char* text;
        std::int32_t maxBytes;
        bool plain, withControl;
    } kCases[] = {
        {"letters", "aéЖ€😀", 99, true, true},
        {"tab", "a\tb", 99, false, true},
        {"delete is no control", "\x7F", 99, true, true},
        {"stray continuation byte", "a\x80", 99, false, false},
        {"bad continuation", "\xC3z", 99, false, false},
        {"cut by the terminator", "\xC3", 99, false, false},
        {"crosses the limit", "a\xC3z", 2, true, true},
        {"bad behind the limit", "ab\x80", 2, true, true},
        {"overlong is not tested", "\xC0\x80", 99, true, true},
        {"F8 is no lead byte", "\xF8", 99, false, false},
        {"empty", "", 99, true, true},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(IsValidUTF8String(c.text, c.maxBytes, false), c.plain) << c.name;
        EXPECT_EQ(IsValidUTF8String(c.text, c.maxBytes, true), c.withControl) << c.name;
    }
    EXPECT_FALSE(IsValidUTF8String(nullptr, 9, true));
}

TEST(Utf8, EveryCutOfATextStaysInsideItsBlock) {
    for (const std::string_view sample : kSamples) {
        for (std::size_t n = 0; n <= sample.size(); ++n) {
            const auto cut = ExactCopy(std::string_view(std::string(sample.substr(0, n)).c_str(), n + 1));
            const std::int32_t chars = StrCharCount(cut.get());
            EXPECT_LE(StrBytesForChars(cut.get(), chars), static_cast<std::int32_t>(n));
            IsValidUTF8String(cut.get(), static_cast<std::int32_t>(n + 1), true);
        }
    }
}

}  // namespace
}  // namespace dorvutil
