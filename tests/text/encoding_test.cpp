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
using test::kSamples;
using namespace std::string_literals;

struct Encoded {
    std::string text;  // what stands in the buffer up to the terminator or its end
    bool result;
    bool operator==(const Encoded&) const = default;
};

// The conversion into a heap block of just `size` bytes.
Encoded Encode(std::u16string_view text, std::uint32_t size) {
    const auto src = ExactCopy(text);
    std::string buffer(size, '#');
    const auto dst = ExactCopy(std::string_view(buffer));
    const bool result = ORVConvertUTF16toUTF8(src.get(), static_cast<std::uint32_t>(text.size()), dst.get(), size);
    std::string out(dst.get(), size);
    return {out.substr(0, out.find('\0')), result};
}

std::u16string Decode(std::string_view text, std::uint32_t units) {
    const auto src = ExactCopy(text);
    const auto dst = std::make_unique<char16_t[]>(units);
    for (std::uint32_t i = 0; i < units; ++i) dst[i] = u'#';
    EXPECT_TRUE(ORVConvertUTF8toUTF16(src.get(), static_cast<std::uint32_t>(text.size()), dst.get(), units));
    const std::u16string out(dst.get(), units);
    return out.substr(0, out.find(u'\0'));
}

TEST(Utf16ToUtf8, EndsAtWhatCannotBeConverted) {
    static const struct {
        const char* name;
        std::u16string text;
        std::uint32_t size;
        Encoded expected;
    } kCases[] = {
        {"two bytes and a terminator", u"aé", 4, {"aé", true}},
        {"no room for a terminator", u"aé", 3, {"aé", true}},
        {"a character that does not fit", u"aé", 2, {"a", false}},
        {"all four lengths", u"a\u07FF\uFFFF\U0010FFFF", 11, {"a\u07FF\uFFFF\U0010FFFF", true}},
        {"pair that does not fit", u"a\U00010000", 4, {"a", false}},
        {"high surrogate as the last unit", u"ab\xD800", 9, {"ab", false}},
        {"high surrogate before a letter", u"ab\xDBFFzz", 9, {"ab", false}},
        {"low surrogate first", u"\xDC00zz", 9, {"", false}},
        {"empty", u"", 3, {"", true}},
    };
    for (const auto& c : kCases) EXPECT_EQ(Encode(c.text, c.size), c.expected) << c.name;
    char buffer[4] = "xyz";
    EXPECT_FALSE(ORVConvertUTF16toUTF8(u"a", 1, nullptr, 4));
    EXPECT_FALSE(ORVConvertUTF16toUTF8(u"a", 1, buffer, 0));
    EXPECT_STREQ(buffer, "xyz");
}

TEST(Utf8ToUtf16, TakesWhatIsNotUtf8AsLatin1) {
    static const struct {
        const char* name;
        std::string text;
        std::uint32_t units;
        std::u16string expected;
    } kCases[] = {
        {"Latin-1 with its terminator", "\xE9\0"s, 9, u"\u00E9"},
        {"pair", "a\U0001F600", 3, u"a\U0001F600"},
        {"no room for a terminator", "aé", 2, u"aé"},
        {"pair that does not fit", "a\U0001F600", 2, u"a\u00F0"},
        {"text that does not fit", "ééé", 2, u"\u00C3\u00A9"},
        {"cut sequence", "a\xE2\x82", 9, u"a\u00E2\u0082"},
        {"overlong", "\xC0\x80z", 9, u"\u00C0\u0080z"},
        {"overlong of three bytes", "\xE0\x9F\xBF", 9, u"\u00E0\u009F\u00BF"},
        {"surrogate", "\xED\xA0\x80", 9, u"\u00ED\u00A0\u0080"},
        {"above the last code point", "\xF4\x90\x80\x80", 9, u"\u00F4\u0090\u0080\u0080"},
        {"last code point", "\xF4\x8F\xBF\xBF", 9, u"\U0010FFFF"},
        {"stray continuation byte", "a\xBF", 9, u"a\u00BF"},
        {"byte-wise up to a zero byte", "\xFF\0zz"s, 9, u"\u00FF"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Decode(c.text, c.units), c.expected);
        if (c.units == 9) {
            const auto n = static_cast<std::uint32_t>(c.text.size());
            EXPECT_EQ(GetNumUnitsNeededForUTF16(c.text.data(), n), c.expected.size());
        }
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
    constexpr std::uint32_t kSeed = 20240611;
    SCOPED_TRACE(kSeed);
    test::Random random(kSeed);
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
            std::u16string latin1;
            for (const char c : text) latin1 += static_cast<unsigned char>(c);
            ASSERT_EQ(Decode(text, n + 1), latin1) << i;
        }
        const utf::Count count = utf::CountUnits(reinterpret_cast<const std::uint8_t*>(text.data()), n);
        ASSERT_EQ(count.ending == utf::Ending::complete, ok) << i;
    }
    EXPECT_GT(rejected, 2000u);
}

// What one form of a conversion does with a block of just `room`.
template <class From, class To>
std::tuple<std::basic_string<To>, std::size_t, utf::Ending> Trace(utf::Ending (*convert)(utf::Cursor<From, To>&),
                                                                  const std::basic_string<From>& text,
                                                                  std::size_t room) {
    const auto src = ExactCopy(std::basic_string_view<From>(text));
    const auto dst = std::make_unique<To[]>(room);
    utf::Cursor<From, To> c{src.get(), src.get() + text.size(), dst.get(), dst.get() + room};
    const utf::Ending ending = convert(c);
    const auto written = static_cast<std::size_t>(c.dst - dst.get());
    return {std::basic_string<To>(dst.get(), written), c.SourceLeft(), ending};
}

TEST(Utf, BlockFormsAgreeWithThePlainForms) {
    constexpr std::uint32_t kSeed = 77;
    test::Random random(kSeed);
    for (std::uint32_t i = 0; i < 20000; ++i) {
        std::string text = test::RandomText(random, random() % 200);
        if (i % 4 == 0) test::Mutate(random, text);
        const std::basic_string<std::uint8_t> bytes(text.begin(), text.end());
        std::u16string wide = Decode(text, static_cast<std::uint32_t>(text.size() + 1));
        if (i % 4 == 1 && !wide.empty())
            wide[random() % wide.size()] = static_cast<char16_t>(0xD800 + random() % 0x800);
        SCOPED_TRACE(testing::Message() << "seed " << kSeed << " text " << i);
        const std::size_t unitRoom = i % 3 == 0 ? random() % (bytes.size() + 1) : bytes.size();
        const auto decoded = Trace(utf::Decode, bytes, unitRoom);
        const auto plainDecoded = Trace(utf::DecodePlain, bytes, unitRoom);
        // An ill-formed text is dropped whole: only that it is ill-formed counts.
        ASSERT_EQ(std::get<2>(decoded) == utf::Ending::complete, std::get<2>(plainDecoded) == utf::Ending::complete);
        if (std::get<2>(decoded) == utf::Ending::complete) {
            ASSERT_EQ(decoded, plainDecoded);
        }
        const std::size_t byteRoom = i % 3 == 0 ? random() % (wide.size() * 3 + 1) : wide.size() * 3;
        ASSERT_EQ(Trace(utf::Encode, wide, byteRoom), Trace(utf::EncodePlain, wide, byteRoom));
        const utf::Count blocks = utf::CountBytes(wide.data(), wide.size());
        const utf::Count plain = utf::CountBytesPlain(wide.data(), wide.size());
        ASSERT_EQ(std::tie(blocks.value, blocks.ending), std::tie(plain.value, plain.ending));
    }
}

TEST(Utf, ForbiddenSequencesAreFoundAtEveryPlace) {
    static constexpr std::string_view kForbidden[] = {
        "\xC0\x80",
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
        "\xC3z",
        "\xE2\x82z",
        "\x80",
        "é\x80",
        "€\x80",
        "😀\x80",
    };
    static constexpr std::string_view kAllowed[] = {"\xE0\xA0\x80",     "\xED\x9F\xBF",     "\xEE\x80\x80",
                                                    "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "\xC2\x80"};
    const auto Ends = [](const std::string& text) {
        return utf::CountUnits(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()).ending;
    };
    for (std::size_t at = 0; at < 80; ++at) {
        for (const std::string_view part : kForbidden) {
            const std::string text = std::string(at, 'a') + std::string(part) + std::string(120 - at, 'b');
            ASSERT_NE(Ends(text), utf::Ending::complete) << at << ' ' << testing::PrintToString(part);
            ASSERT_EQ(Decode(text, 200).size(), text.size()) << at << ' ' << testing::PrintToString(part);
        }
        for (const std::string_view part : kAllowed) {
            const std::string text = std::string(at, 'a') + std::string(part) + std::string(120 - at, 'b');
            ASSERT_EQ(Ends(text), utf::Ending::complete) << at << ' ' << testing::PrintToString(part);
            ASSERT_LT(Decode(text, 200).size(), text.size());
        }
    }
}

TEST(Utf, EveryCutOfATextStaysInsideItsBlock) {
    for (const std::string_view sample : kSamples) {
        for (std::size_t from = 0; from < 4; ++from) {
            for (std::size_t n = 0; from + n <= sample.size(); ++n) {
                const std::string_view cut = sample.substr(from, n);
                const std::u16string wide = Decode(cut, static_cast<std::uint32_t>(n + 1));
                ASSERT_EQ(GetNumUnitsNeededForUTF16(ExactCopy(cut).get(), static_cast<std::uint32_t>(n)), wide.size());
                const auto whole = GetNumBytesConvertedToUTF8(wide.data(), static_cast<std::uint32_t>(wide.size()));
                for (std::uint32_t size = 1; size <= whole; size += 1 + whole / 16) {
                    const Encoded encoded = Encode(wide, size);
                    ASSERT_LE(size - encoded.text.size(), 3u);
                    ASSERT_EQ(encoded.result, encoded.text.size() == whole);
                }
            }
        }
    }
}

TEST(GetNumBytesNeededForUTF8, CountsUpToAnUnpairedSurrogate) {
    EXPECT_EQ(GetNumBytesNeededForUTF8(u"aé", -1), 4);
    EXPECT_EQ(GetNumBytesNeededForUTF8(nullptr, -1), 0);
    EXPECT_EQ(GetNumBytesNeededForUTF8(u"", -1), 1);
    EXPECT_EQ(GetNumBytesNeededForUTF8(u"a\0b", 3), 4);
    EXPECT_EQ(GetNumBytesNeededForUTF8(ExactCopy(std::u16string_view(u"abc")).get(), 2), 3);
    EXPECT_EQ(GetNumBytesNeededForUTF8(u"\U0001F600", 2), 5);
    EXPECT_EQ(GetNumBytesNeededForUTF8(u"ab\xD800", -1), 2);
    EXPECT_EQ(GetNumBytesConvertedToUTF8(u"ab\xD800", 3), 2u);
    EXPECT_EQ(GetNumBytesConvertedToUTF8(nullptr, 3), 0u);
}

TEST(Latin1, BothDirections) {
    std::string all;
    for (int c = 1; c < 256; ++c) all += static_cast<char>(c);
    char utf8[512];
    char back[300];
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
        const char* name;
        std::string text;
        std::uint32_t size;
        std::string expected;
    } kCases[] = {
        {"ends above 0xFF", "aéĀb", 9, "a\xE9"},
        {"limit", "aéb", 3, "a\xE9"},
        {"not UTF-8 is copied", "a\xE9z", 9, "a\xE9z"},
        {"ill-formed behind the end of output", "aĀ\xE9", 9, "a\xC4\x80\xE9"},
        {"zero byte", "a\0b"s, 9, "a"},
        {"no room", "ab", 1, ""},
    };
    for (const auto& c : kCases) {
        std::string out(c.size, '#');
        EXPECT_TRUE(
            ORVConvertUTF8toLatin1(c.text.data(), static_cast<std::uint32_t>(c.text.size()), out.data(), c.size));
        EXPECT_EQ(out, c.expected + std::string(c.size - c.expected.size(), '\0')) << c.name;
    }
    EXPECT_FALSE(ORVConvertUTF8toLatin1("a", 1, nullptr, 3));
    EXPECT_FALSE(ORVConvertLatin1toUTF8(nullptr, 1, back, 3));
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
        const char* name;
        std::int32_t low, high;
        std::uint32_t size;
        int part;
        std::int32_t result;
        const char* out;
    } kCases[] = {
        {"decoded", 9, 14, 2, 1, 0, "é###"},          {"Cyrillic", 9, 14, 4, 5, 0, "щ###"},
        {"below 0xA0", 0, 9, 4, 1, -1, "####"},       {"negative nibble", -1, 14, 4, 1, -1, "####"},
        {"no room", 9, 14, 1, 1, 1, "####"},          {"unknown part", 9, 14, 4, 3, 0, "?###"},
        {"undefined byte", 1, 10, 4, 6, 0, "?###"},   {"no room for the mark", 1, 10, 0, 6, 1, "####"},
        {"nibble too large", 0, 16, 4, 1, 0, "?###"},
    };
    for (const auto& c : kCases) {
        char out[] = "#####";
        const auto part = static_cast<IsoCodePart>(c.part);
        EXPECT_EQ(CSpecialCharMgr_GetDecodedSpacialChar(c.low, c.high, out, c.size, part), c.result) << c.name;
        EXPECT_EQ(std::string(out).substr(0, std::strlen(c.out)), c.out) << c.name;
    }
    EXPECT_EQ(CSpecialCharMgr_GetDecodedSpacialChar(9, 14, nullptr, 4, ISO8859_1), -1);
}

TEST(Iso8859, OutputIsCutOnACharacterBoundary) {
    const std::string many(300, '\xE9');
    const auto Convert = [](const std::string& text, std::uint32_t size) {
        std::string out(size, '#');
        EXPECT_TRUE(
            ORVConvertToISO8859(text.data(), static_cast<std::uint32_t>(text.size()), out.data(), size, ISO8859_1));
        return std::string(out.c_str());
    };
    EXPECT_EQ(Convert(many, 600).size(), 254u);
    EXPECT_EQ(Convert("a" + many, 600).size(), 253u);
    EXPECT_EQ(Convert("a\xE9\xE9", 5), "aé");
    EXPECT_EQ(Convert("abc\x85"
                      "def",
                      9),
              "abc");
    EXPECT_EQ(Convert(std::string(5, 'a') + "\x85" + std::string(200, 'b'), 4), "aaa");
    char out[4];
    EXPECT_FALSE(ORVConvertToISO8859(nullptr, 1, out, 4, ISO8859_1));
    EXPECT_FALSE(ORVConvertToISO8859("a", 0, out, 4, ISO8859_1));
    EXPECT_FALSE(ORVConvertToISO8859("a", 1, out, 0, ISO8859_1));
}

}  // namespace
}  // namespace dorvutil
