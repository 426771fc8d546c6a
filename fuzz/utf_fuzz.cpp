// UTF-8 and UTF-16: the fast kernels against the plain ones, both against a decoder written here from RFC 3629, the
// sizes announced against the sizes written.
#include "dorvutil/text/encoding.h"
#include "dorvutil/text/utf8.h"
#include "dorvutil/text/utf_kernels.h"
#include "fuzz_support.h"

namespace dorvutil::fuzz {
namespace {

using utf::Ending;

// The length of the well-formed sequence (RFC 3629) at the start of a text, 0 when there is none.
std::size_t WellFormed(std::string_view s, std::uint32_t& codePoint) {
    const auto at = [&](std::size_t i) { return static_cast<std::uint8_t>(s[i]); };
    const std::size_t n = at(0) < 0x80   ? 1
                          : at(0) < 0xC0 ? 0
                          : at(0) < 0xE0 ? 2
                          : at(0) < 0xF0 ? 3
                          : at(0) < 0xF8 ? 4
                                         : 0;
    if (n == 0 || n > s.size()) return 0;
    static constexpr std::uint32_t kMask[] = {0, 0x7F, 0x1F, 0xF, 7};
    static constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    codePoint = at(0) & kMask[n];
    for (std::size_t i = 1; i < n; ++i) {
        if ((at(i) & 0xC0) != 0x80) return 0;
        codePoint = codePoint << 6 | (at(i) & 0x3Fu);
    }
    const bool surrogate = codePoint >= 0xD800 && codePoint < 0xE000;
    return codePoint < kLeast[n] || codePoint > 0x10FFFF || surrogate ? 0 : n;
}

// False when the text is not UTF-8; `units` is then what comes before the fault.
bool Decoded(std::string_view s, std::u16string& units) {
    while (!s.empty()) {
        std::uint32_t codePoint = 0;
        const std::size_t n = WellFormed(s, codePoint);
        if (n == 0) return false;
        if (codePoint >= 0x10000) {
            units.push_back(static_cast<char16_t>(0xD800 + ((codePoint - 0x10000) >> 10)));
            codePoint = 0xDC00 + ((codePoint - 0x10000) & 0x3FF);
        }
        units.push_back(static_cast<char16_t>(codePoint));
        s.remove_prefix(n);
    }
    return true;
}

void CheckDecodeKernels(std::string_view bytes, std::size_t room) {
    const auto* const src = reinterpret_cast<const std::uint8_t*>(bytes.data());
    Exact<char16_t> plainOut(room), fastOut(room);
    utf::DecodeCursor plain{src, src + bytes.size(), plainOut.Data(), plainOut.Data() + room};
    utf::DecodeCursor fast{src, src + bytes.size(), fastOut.Data(), fastOut.Data() + room};
    const Ending ending = utf::DecodePlain(plain);
    const Ending fastEnding = utf::Decode(fast);
    FUZZ_CHECK((ending == Ending::complete) == (fastEnding == Ending::complete));
    if (ending != Ending::complete) return;
    FUZZ_CHECK(plain.dst - plainOut.Data() == fast.dst - fastOut.Data() && fast.src == plain.src);
    FUZZ_CHECK(std::equal(plainOut.Data(), plain.dst, fastOut.Data()));
}

void CheckEncodeKernels(std::u16string_view units, std::size_t room) {
    Exact<char> plainOut(room), fastOut(room);
    const auto cursor = [&](Exact<char>& out) {
        auto* const dst = reinterpret_cast<std::uint8_t*>(out.Data());
        return utf::EncodeCursor{units.data(), units.data() + units.size(), dst, dst + room};
    };
    utf::EncodeCursor plain = cursor(plainOut), fast = cursor(fastOut);
    FUZZ_CHECK(utf::EncodePlain(plain) == utf::Encode(fast));
    FUZZ_CHECK(plain.src == fast.src && plain.RoomLeft() == fast.RoomLeft());
    FUZZ_CHECK(std::memcmp(plainOut.Data(), fastOut.Data(), room - plain.RoomLeft()) == 0);
    const utf::Count a = utf::CountBytesPlain(units.data(), units.size());
    const utf::Count b = utf::CountBytes(units.data(), units.size());
    FUZZ_CHECK(a.value == b.value && a.left == b.left && a.ending == b.ending);
}

void CheckCounts(const Exact<char>& text) {
    const auto* const s = reinterpret_cast<const std::uint8_t*>(text.Data());
    const utf::Count units = utf::CountUnitsPlain(s, text.Size()), fast = utf::CountUnits(s, text.Size());
    FUZZ_CHECK((units.ending == Ending::complete) == (fast.ending == Ending::complete));
    FUZZ_CHECK(units.ending != Ending::complete || units.value == fast.value);
    const utf::Count chars = utf::CountCharsPlain(s, text.Size()), fastChars = utf::CountChars(s, text.Size());
    FUZZ_CHECK((chars.ending == Ending::illegal) == (fastChars.ending == Ending::illegal));
    FUZZ_CHECK(chars.ending == Ending::illegal || chars.value == fastChars.value);
    const std::size_t length = UpToZero(text.View()).size();
    const std::int32_t count = StrCharCountWithin(text.Data(), text.Count());
    FUZZ_CHECK(count >= 0 && static_cast<std::size_t>(count) <= length);
    if (!IsValidUTF8String(text.Data(), text.Length(), true)) {
        FUZZ_CHECK(static_cast<std::size_t>(count) == length);
    } else {
        FUZZ_CHECK(StrBytesForBytesChars(text.Data(), static_cast<std::int32_t>(length), count + 1) ==
                   static_cast<std::int32_t>(length));
    }
}

// The decoded text, or the bytes widened up to a zero when they are not UTF-8.
void CheckToUtf16(const Exact<char>& text, const std::u16string& expected, bool valid) {
    const std::u16string_view all = valid ? std::u16string_view(expected) : UpToZero<char16_t>(expected);
    FUZZ_CHECK(GetNumUnitsNeededForUTF16(text.Data(), text.Count()) == all.size());
    Exact<char16_t> units(all.size() + 1);
    units.Data()[all.size()] = 0xFFFF;
    FUZZ_CHECK(ORVConvertUTF8toUTF16(text.Data(), text.Count(), units.Data(), units.Count()));
    FUZZ_CHECK(units.View().substr(0, all.size()) == all && units.Data()[all.size()] == 0);
}

// True exactly when there is no unpaired surrogate; what is written decodes to the text up to it.
void CheckToUtf8(const Exact<char16_t>& units) {
    const std::uint32_t bytes = GetNumBytesConvertedToUTF8(units.Data(), units.Count());
    Exact<char> text(bytes + std::size_t{1});
    text.Data()[bytes] = 'x';
    const bool whole = ORVConvertUTF16toUTF8(units.Data(), units.Count(), text.Data(), text.Count());
    FUZZ_CHECK(text.Data()[bytes] == 0);
    std::u16string back;
    FUZZ_CHECK(Decoded(text.View().substr(0, bytes), back));
    FUZZ_CHECK(units.View().substr(0, back.size()) == back && (back.size() == units.Size()) == whole);
    const std::int32_t needed = GetNumBytesNeededForUTF8(units.Data(), units.Length());
    FUZZ_CHECK(static_cast<std::uint32_t>(needed) == bytes + (whole ? 1 : 0));
}

void CheckSingleBytes(const Exact<char>& text) {
    Exact<char> utf8(2 * text.Size() + 1), back(text.Size() + 1);
    FUZZ_CHECK(ORVConvertLatin1toUTF8(text.Data(), text.Count(), utf8.Data(), utf8.Count()));
    const auto n = static_cast<std::uint32_t>(UpToZero(utf8.View()).size());
    FUZZ_CHECK(ORVConvertUTF8toLatin1(utf8.Data(), n, back.Data(), back.Count()));
    FUZZ_CHECK(UpToZero(back.View()) == UpToZero(text.View()));
    for (const IsoCodePart part :
         {ISO8859_1, ISO8859_2, ISO8859_5, ISO8859_6, ISO8859_7, ISO8859_9, ISO8859_13, IsoCodePart{3}}) {
        Exact<char> iso(3 * text.Size() + 1);
        FUZZ_CHECK(ORVConvertToISO8859(text.Data(), text.Count(), iso.Data(), iso.Count(), part) == (text.Size() != 0));
        FUZZ_CHECK(UpToZero(iso.View()).size() <= 254);
    }
}

}  // namespace

void TestInput(Input& input) {
    const std::uint8_t choice = input.Byte();
    const Exact<char> text(input.Rest(4096));
    std::u16string expected;
    const bool valid = Decoded(text.View(), expected);
    if (!valid) expected = Widened(text.View());
    CheckToUtf16(text, expected, valid);
    CheckToUtf8(Exact<char16_t>(std::u16string_view(expected)));
    CheckCounts(text);
    CheckSingleBytes(text);
    const Exact<char16_t> units{std::u16string_view(Units(text.View()))};
    CheckToUtf8(units);
    // Room for everything, and for less than that.
    for (const std::size_t less : {std::size_t{0}, std::size_t{choice}}) {
        CheckDecodeKernels(text.View(), text.Size() - std::min(less, text.Size()));
        CheckEncodeKernels(units.View(), 3 * units.Size() - std::min(less, 3 * units.Size()));
    }
}

}  // namespace dorvutil::fuzz
