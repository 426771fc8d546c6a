#include "dorvutil/text/encoding.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>

#include "dorvutil/text/special_chars.h"
#include "dorvutil/text/utf_kernels.h"
#include "text/encoding_samples.h"

namespace dorvutil {
namespace {

using test::ExactCopy;
using test::Iconv;
using namespace std::string_literals;

using Encoded = std::pair<std::string, bool>;  // what stands in the buffer up to the terminator or its end; the result

// The conversions into heap blocks of just `size` bytes or units.
Encoded Encode(std::u16string_view text, std::uint32_t size) {
    const auto dst = ExactCopy<char>(std::string(size, '#'));
    const auto n = static_cast<std::uint32_t>(text.size());
    const bool result = ORVConvertUTF16toUTF8(ExactCopy(text).get(), n, dst.get(), size);
    const std::string out(dst.get(), size);
    return {out.substr(0, out.find('\0')), result};
}

std::u16string Decode(std::string_view text, std::uint32_t units) {
    const auto dst = ExactCopy<char16_t>(std::u16string(units, u'#'));
    const auto n = static_cast<std::uint32_t>(text.size());
    EXPECT_TRUE(ORVConvertUTF8toUTF16(ExactCopy(text).get(), n, dst.get(), units));
    const std::u16string out(dst.get(), units);
    return out.substr(0, out.find(u'\0'));
}

std::u16string AsLatin1(std::string_view text) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
    return {bytes, bytes + text.size()};
}

TEST(Utf16ToUtf8, EndsAtWhatCannotBeConverted) {
    static const struct {
        std::u16string text;
        std::uint32_t size;
        Encoded expected;
    } kCases[] = {{u"aé", 4, {"aé", true}},        {u"aé", 3, {"aé", true}},
                  {u"aé", 2, {"a", false}},        {u"a𐀀", 4, {"a", false}},
                  {u"ab\xD800", 9, {"ab", false}}, {u"ab\xDBFFz", 9, {"ab", false}},
                  {u"\xDC00zz", 9, {"", false}},   {u"", 3, {"", true}}};
    for (const auto& c : kCases) EXPECT_EQ(Encode(c.text, c.size), c.expected) << &c - kCases;
    char buffer[4] = "xyz";
    EXPECT_FALSE(ORVConvertUTF16toUTF8(u"a", 1, nullptr, 4) || ORVConvertUTF16toUTF8(u"a", 1, buffer, 0));
    EXPECT_STREQ(buffer, "xyz");
}

TEST(Utf8ToUtf16, TakesWhatIsNotUtf8AsLatin1) {
    static const struct {
        std::string text;
        std::uint32_t units;
        std::u16string expected;
    } kCases[] = {{"\xE9\0"s, 9, u"é"},   {"a😀", 3, u"a😀"},   {"aé", 2, u"aé"},
                  {"a😀", 2, u"a\u00F0"},  {"ééé", 2, u"Ã©"},  {"a\xE2\x82", 9, u"aâ\u0082"},
                  {"\xFF\0zz"s, 9, u"ÿ"}, {"a\xBF", 9, u"a¿"}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(&c - kCases);
        EXPECT_EQ(Decode(c.text, c.units), c.expected);
        const auto n = static_cast<std::uint32_t>(c.text.size());
        EXPECT_TRUE(c.units != 9 || GetNumUnitsNeededForUTF16(c.text.data(), n) == c.expected.size());
    }
    EXPECT_FALSE(ORVConvertUTF8toUTF16("a", 1, nullptr, 4));
}

TEST(Utf, EveryCodePointConvertsAsIconvDoes) {
    std::u32string all;
    for (char32_t c = 1; c < 0x110000; ++c) {
        if (c < 0xD800 || c > 0xDFFF) all += c;
    }
    bool ok = false;
    const std::string_view bytes(reinterpret_cast<const char*>(all.data()), all.size() * 4);
    const std::string narrow = Iconv("UTF-8", "UTF-32LE").Convert(bytes, ok);
    ASSERT_TRUE(ok);
    const std::u16string wide = test::UnitsOf(Iconv("UTF-16LE", "UTF-32LE").Convert(bytes, ok));
    EXPECT_TRUE(Decode(narrow, static_cast<std::uint32_t>(wide.size())) == wide);
    EXPECT_TRUE(Encode(wide, static_cast<std::uint32_t>(narrow.size())) == (Encoded{narrow, true}));
    EXPECT_EQ(GetNumUnitsNeededForUTF16(narrow.data(), static_cast<std::uint32_t>(narrow.size())), wide.size());
    EXPECT_EQ(GetNumBytesNeededForUTF8(wide.c_str(), -1), static_cast<std::int32_t>(narrow.size() + 1));
}

TEST(Utf, RandomAndDamagedTextConvertsAsIconvDoes) {
    test::Random random(20240611);
    Iconv toWide("UTF-16LE", "UTF-8");
    std::uint32_t rejected = 0;
    for (std::uint32_t i = 0; i < 6000; ++i) {
        std::string text = test::RandomText(random, random() % 300);
        if (i % 2 != 0) test::Mutate(random, text);
        bool ok = false;
        const std::u16string expected = test::UnitsOf(toWide.Convert(text, ok));
        const auto n = static_cast<std::uint32_t>(text.size());
        rejected += ok ? 0 : 1;
        if (ok) {
            ASSERT_EQ(Decode(text, n + 1), expected) << i;
            ASSERT_EQ(Encode(expected, n + i % 2), (Encoded{text, n + i % 2 != 0})) << i;
            ASSERT_EQ(GetNumBytesConvertedToUTF8(expected.data(), static_cast<std::uint32_t>(expected.size())), n);
        } else {
            ASSERT_EQ(Decode(text, n + 1), AsLatin1(text)) << i;
        }
        const utf::Count count = utf::CountUnits(reinterpret_cast<const std::uint8_t*>(text.data()), n);
        ASSERT_EQ(count.ending == utf::Ending::complete, ok) << i;
    }
    EXPECT_GT(rejected, 2000u);
}

// What one form of a conversion does with a block of just `room`.
template <class From, class To>
auto Trace(utf::Ending (*convert)(utf::Cursor<From, To>&), const std::basic_string<From>& text, std::size_t room) {
    const auto src = ExactCopy(std::basic_string_view<From>(text));
    const auto dst = std::make_unique<To[]>(room);
    utf::Cursor<From, To> c{src.get(), src.get() + text.size(), dst.get(), dst.get() + room};
    const utf::Ending ending = convert(c);
    return std::tuple(std::basic_string<To>(dst.get(), c.dst), c.SourceLeft(), ending);
}

TEST(Utf, BlockFormsAgreeWithThePlainForms) {
    test::Random random(77);
    for (std::uint32_t i = 0; i < 20000; ++i) {
        SCOPED_TRACE(i);
        std::string text = test::RandomText(random, random() % 200);
        if (i % 4 == 0) test::Mutate(random, text);
        const std::basic_string<std::uint8_t> bytes(text.begin(), text.end());
        std::u16string wide = Decode(text, static_cast<std::uint32_t>(text.size() + 1)) + u'.';
        if (i % 4 == 1) wide[random() % wide.size()] = static_cast<char16_t>(0xD800 + random() % 0x800);
        const std::size_t unitRoom = i % 3 == 0 ? random() % (bytes.size() + 1) : bytes.size();
        const auto decoded = Trace(utf::Decode, bytes, unitRoom), plain = Trace(utf::DecodePlain, bytes, unitRoom);
        // An ill-formed text is dropped whole: only that it is ill-formed counts.
        const bool complete = std::get<2>(decoded) == utf::Ending::complete;
        ASSERT_EQ(complete, std::get<2>(plain) == utf::Ending::complete);
        ASSERT_TRUE(!complete || decoded == plain);
        const std::size_t byteRoom = i % 3 == 0 ? random() % (wide.size() * 3 + 1) : wide.size() * 3;
        ASSERT_EQ(Trace(utf::Encode, wide, byteRoom), Trace(utf::EncodePlain, wide, byteRoom));
        const utf::Count blocks = utf::CountBytes(wide.data(), wide.size());
        const utf::Count count = utf::CountBytesPlain(wide.data(), wide.size());
        ASSERT_EQ(std::tie(blocks.value, blocks.ending), std::tie(count.value, count.ending));
    }
}

TEST(Utf, ForbiddenSequencesAreFoundAtEveryPlace) {
    static constexpr std::string_view kForbidden[] = {"\xC0\x80",
                                                      "\xC1\xBF",
                                                      "\xE0\x80\x80",
                                                      "\xE0\x9F\xBF",
                                                      "\xED\xA0\x80",
                                                      "\xED\xBF\xBF",
                                                      "\xF0\x80\x80\x80",
                                                      "\xF0\x8F\xBF\xBF",
                                                      "\xF4\x90\x80\x80",
                                                      "\xF5\x80\x80\x80",
                                                      "\xF8\x80\x80\x80",
                                                      "\xC3zz",
                                                      "\xE2\x82z",
                                                      "\xBF\x80",
                                                      "zé\x80z",
                                                      "z€\x80z",
                                                      "z😀\x80"};
    static constexpr std::string_view kAllowed[] = {"\xE0\xA0\x80",     "\xED\x9F\xBF",     "\xEE\x80\x80",
                                                    "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "\xC2\x80"};
    const auto check = [](std::string_view part, bool good) {
        for (std::size_t at = 0; at < 80; ++at) {
            const std::string text = std::string(at, 'a') + std::string(part) + std::string(120 - at, 'b');
            const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
            ASSERT_EQ(utf::CountUnits(bytes, text.size()).ending == utf::Ending::complete, good) << at << ' ' << part;
            ASSERT_EQ(Decode(text, 200) == AsLatin1(text), !good) << at << ' ' << part;
        }
    };
    for (const std::string_view part : kForbidden) check(part, false);
    for (const std::string_view part : kAllowed) check(part, true);
}

TEST(GetNumBytesNeededForUTF8, CountsUpToAnUnpairedSurrogate) {
    static constexpr struct {
        const char16_t* text;
        std::int32_t n, bytes;
    } kCases[] = {{u"aé", -1, 4}, {nullptr, -1, 0}, {u"", -1, 1}, {u"a\0b", 3, 4}, {u"😀", 2, 5}, {u"ab\xD800", -1, 2}};
    for (const auto& c : kCases) EXPECT_EQ(GetNumBytesNeededForUTF8(c.text, c.n), c.bytes);
    EXPECT_EQ(GetNumBytesNeededForUTF8(ExactCopy<char16_t>(u"abc").get(), 2), 3);
    EXPECT_EQ(GetNumBytesConvertedToUTF8(u"ab\xD800", 3), 2u);
    EXPECT_EQ(GetNumBytesConvertedToUTF8(nullptr, 3), 0u);
}

TEST(Latin1, BothDirections) {
    std::string all;
    for (int c = 1; c < 256; ++c) all += static_cast<char>(c);
    char utf8[512], back[300];
    ASSERT_TRUE(ORVConvertLatin1toUTF8(all.data(), 255, utf8, sizeof utf8));
    EXPECT_STREQ(utf8 + 127 + 2 * 126, "þÿ");
    ASSERT_TRUE(ORVConvertUTF8toLatin1(utf8, static_cast<std::uint32_t>(std::strlen(utf8)), back, sizeof back));
    EXPECT_EQ(back, all);
    const std::string many(2000, '\xE9');
    std::string longOut(4001, '#');
    EXPECT_TRUE(ORVConvertLatin1toUTF8(many.data(), 2000, longOut.data(), 4001));
    EXPECT_EQ(longOut.substr(3996), "éé"s + '\0');
    EXPECT_FALSE(ORVConvertLatin1toUTF8(many.data(), 2000, longOut.data(), 2002));
    static const struct {
        std::string text;
        std::uint32_t size;
        std::string expected;
    } kCases[] = {{"aéĀb", 9, "a\xE9"},           {"aéb", 3, "a\xE9"}, {"a\xE9z", 9, "a\xE9z"},
                  {"aĀ\xE9", 9, "a\xC4\x80\xE9"}, {"a\0b"s, 9, "a"},   {"ab", 1, ""}};
    for (const auto& c : kCases) {
        std::string out(c.size, '#');
        const auto n = static_cast<std::uint32_t>(c.text.size());
        EXPECT_TRUE(ORVConvertUTF8toLatin1(c.text.data(), n, out.data(), c.size));
        EXPECT_EQ(out, c.expected + std::string(c.size - c.expected.size(), '\0'));
    }
    EXPECT_FALSE(ORVConvertUTF8toLatin1("a", 1, nullptr, 3) || ORVConvertLatin1toUTF8(nullptr, 1, back, 3));
}

TEST(Iso8859, EveryByteOfEveryPartDecodesAsIconvDoes) {
    for (const int part : {1, 2, 5, 6, 7, 9, 13}) {
        Iconv iconv("UTF-8", ("ISO-8859-" + std::to_string(part)).c_str());
        for (int byte = 0xA0; byte < 0x100; ++byte) {
            const char in[] = {static_cast<char>(byte)};
            bool ok = false;
            const std::string expected = iconv.Convert({in, 1}, ok);
            char out[5] = "";
            ASSERT_TRUE(ORVConvertToISO8859(in, 1, out, sizeof out, static_cast<IsoCodePart>(part)));
            EXPECT_EQ(out, ok ? expected : "?") << part << ' ' << byte;
        }
    }
}

TEST(Iso8859, DecodeReportsWhyNot) {
    static const struct {
        std::int32_t low, high;
        std::uint32_t size;
        int part;
        std::int32_t result;
        const char* out;
    } kCases[] = {{9, 14, 2, 1, 0, "é###"},   {9, 14, 4, 5, 0, "щ###"}, {0, 9, 4, 1, -1, "####"},
                  {-1, 14, 4, 1, -1, "####"}, {9, 14, 1, 1, 1, "####"}, {9, 14, 4, 3, 0, "?###"},
                  {1, 10, 4, 6, 0, "?###"},   {1, 10, 0, 6, 1, "####"}, {0, 16, 4, 1, 0, "?###"}};
    for (const auto& c : kCases) {
        char out[] = "#####";
        const auto part = static_cast<IsoCodePart>(c.part);
        EXPECT_EQ(CSpecialCharMgr_GetDecodedSpacialChar(c.low, c.high, out, c.size, part), c.result);
        EXPECT_EQ(std::string(out).substr(0, std::strlen(c.out)), c.out) << c.low << ' ' << c.high;
    }
    EXPECT_EQ(CSpecialCharMgr_GetDecodedSpacialChar(9, 14, nullptr, 4, ISO8859_1), -1);
}

TEST(Iso8859, OutputIsCutOnACharacterBoundary) {
    const std::string many(300, '\xE9');
    const auto convert = [](const std::string& text, std::uint32_t size) {
        std::string out(size, '#');
        const auto n = static_cast<std::uint32_t>(text.size());
        EXPECT_TRUE(ORVConvertToISO8859(text.data(), n, out.data(), size, ISO8859_1));
        return std::string(out.c_str());
    };
    EXPECT_TRUE(convert(many, 600).size() == 254 && convert("a" + many, 600).size() == 253);
    EXPECT_EQ(convert("a\xE9\xE9", 5), "aé");
    EXPECT_EQ(convert("abc\x85xyz", 9), "abc");
    EXPECT_EQ(convert("aaaaa\x85xyz", 4), "aaa");
    char out[4];
    EXPECT_FALSE(ORVConvertToISO8859(nullptr, 1, out, 4, ISO8859_1) || ORVConvertToISO8859("a", 0, out, 4, ISO8859_1) ||
                 ORVConvertToISO8859("a", 1, out, 0, ISO8859_1));
}

}  // namespace
}  // namespace dorvutil
