#include "text_fold.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

#include "dorvutil/text/sanitize.h"
#include "dorvutil/text/special_chars.h"
#include "dorvutil/text/utf8.h"

namespace roadlyn {
namespace {

// Plain letters of U+0100 to U+024F and U+1E00 to U+1EFF, from the canonical decompositions of Unicode; '.' for none.
constexpr char kLatinExtended[] =
    "aaaaaaccccccccddddeeeeeeeeeegggggggghhhhiiiiiiiiii..jjkkklllllll"
    "lllnnnnnnnnnoooooo..rrrrrrssssssssttttttuuuuuuuuuuuuwwyyyzzzzzzs"
    "bb........d............ikk......oo.............uu..yyzz........."
    ".............aaiioouuuuuuuuuu.aaaa....ggkkoooo..j...gg..nnaa...."
    "aaaaeeeeiiiioooorrrruuuusstt..hh......aaeeooooooooyy......acclt."
    "...bu.......rryy";
constexpr char kLatinAdditional[] =
    "aabbbbbbccddddddddddeeeeeeeeeeffgghhhhhhhhhhiiiikkkkkkllllllllmm"
    "mmmmnnnnnnnnoooooooopppprrrrrrrrssssssssssttttttttuuuuuuuuuuvvvv"
    "wwwwwwwwwwxxxxyyzzzzzzhtwya...s.aaaaaaaaaaaaaaaaaaaaaaaaeeeeeeee"
    "eeeeeeeeiiiioooooooooooooooooooooooouuuuuuuuuuuuuuyyyyyyyy......";
static_assert(sizeof(kLatinExtended) == 0x150 + 1 && sizeof(kLatinAdditional) == 0x100 + 1);

constexpr std::string_view kNoReplacement{"\0", 1};

bool IsAscii(std::string_view text) {
    unsigned char all = 0;
    for (const char c : text) all = static_cast<unsigned char>(all | static_cast<unsigned char>(c));
    return all < 0x80;
}

bool IsLetterOrDigit(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

std::uint32_t CodePointAt(std::string_view text, std::size_t position, std::size_t length) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint32_t>(static_cast<unsigned char>(text[i])); };
    if (length == 1) return byte(position);
    std::uint32_t code = byte(position) & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) code = code << 6 | (byte(position + i) & 0x3Fu);
    return code;
}

// What stands for a character that the library's tables leave as it is: a plain text, nothing, or kNoReplacement.
std::string_view Supplement(std::uint32_t code) {
    if (code >= 0x100 && code < 0x250) {
        if (code == 0x152 || code == 0x153) return "oe";
        const char& plain = kLatinExtended[code - 0x100];
        return plain == '.' ? kNoReplacement : std::string_view(&plain, 1);
    }
    if (code >= 0x1E00 && code < 0x1F00) {
        const char& plain = kLatinAdditional[code - 0x1E00];
        return plain == '.' ? kNoReplacement : std::string_view(&plain, 1);
    }
    if (code >= 0x300 && code < 0x370) return {};  // combining marks
    switch (code) {
        case 0xA0:
        case 0xB4:
        case 0x2B9:
        case 0x2BB:
        case 0x2BC:
        case 0x2BE:
        case 0x2BF:  // apostrophes
        case 0x2010:
        case 0x2011:
        case 0x2012:
        case 0x2013:
        case 0x2014:  // dashes
        case 0x2018:
        case 0x2019:
        case 0x201B:
        case 0x202F:
        case 0x2032:
            return {};
        case 0x3C2:
            return "\xCF\x83";  // final sigma
        case 0x439:
        case 0x419:
            return "\xD0\xB8";  // short i: its mark may come as a combining one
        case 0x451:
        case 0x401:
            return "\xD0\xB5";  // io
        case 0x457:
        case 0x407:
            return "\xD1\x96";  // yi
        default:
            return kNoReplacement;
    }
}

std::string PlainLetters(std::string_view text) {
    std::string plain(text.size() * 2 + 1, '\0');  // the longest plain text is twice its letter
    if (dorvutil::ChangeSpecialChars(plain.data(), static_cast<std::int32_t>(plain.size()), text.data(),
                                     static_cast<std::int32_t>(text.size())) == nullptr) {
        return std::string(text);
    }
    plain.resize(plain.find('\0'));
    return plain;
}

}  // namespace

std::string LowerText(std::string_view text) {
    std::string lower(text);
    dorvutil::SpecialChar_tolower(lower.data(), static_cast<std::int32_t>(lower.size()) + 1,
                                  std::numeric_limits<std::uint32_t>::max());
    return lower;
}

std::string SanitizedText(std::string_view text) {
    std::string kept(text.size() + 1, '\0');
    const std::int32_t length = dorvutil::SanitizeString(kept.data(), static_cast<std::int32_t>(kept.size()),
                                                         text.data(), static_cast<std::int32_t>(text.size()));
    kept.resize(static_cast<std::size_t>(length));
    return kept;
}

std::string FoldedText(std::string_view text) {
    if (IsAscii(text)) return SanitizedText(LowerText(text));
    const std::string lower = LowerText(PlainLetters(text));
    std::string folded;
    folded.reserve(lower.size());
    for (std::size_t i = 0; i < lower.size();) {
        const std::size_t length = CharacterLength(lower, i);
        if (length == 1) {
            if (IsLetterOrDigit(static_cast<unsigned char>(lower[i]))) folded += lower[i];
        } else {
            const std::string_view instead = Supplement(CodePointAt(lower, i, length));
            folded += instead.data() == kNoReplacement.data() ? std::string_view(lower).substr(i, length) : instead;
        }
        i += length;
    }
    return folded;
}

std::size_t FindInvalidUtf8(std::string_view text) {
    if (IsAscii(text)) return std::string_view::npos;
    for (std::size_t i = 0; i < text.size();) {
        const auto length = static_cast<std::size_t>(dorvutil::CharByteCount(text[i]));
        if (length == 0 || length > text.size() - i) return i;
        for (std::size_t k = 1; k < length; ++k) {
            if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) return i;
        }
        static constexpr std::array<std::uint32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};
        const std::uint32_t code = CodePointAt(text, i, length);
        if (code < kLeast[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return i;
        i += length;
    }
    return std::string_view::npos;
}

std::size_t CharacterLength(std::string_view text, std::size_t position) {
    const std::int32_t length = dorvutil::CharByteCount(text[position]);
    return length < 1 ? 1 : std::min(static_cast<std::size_t>(length), text.size() - position);
}

}  // namespace roadlyn
