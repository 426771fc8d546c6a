#include "dorvutil/text/compare_engine.h"

#include <algorithm>

#include "dorvutil/text/utf8_step.h"

namespace dorvutil {
namespace {

// A character in a form whose order is that of the comparison: first byte, length of the sequence, remaining bytes.
constexpr std::uint64_t KeyOf(std::uint64_t first, std::uint64_t length, std::uint64_t rest) {
    return first << 32 | length << 24 | rest;
}

struct Character {
    std::uint64_t key;
    std::uint32_t length;  // in its own text
    bool odd;              // a byte out of place
};

std::uint64_t KeyOfCodePoint(std::uint32_t codePoint) {
    if (codePoint < 0x80) return KeyOf(codePoint, 1, 0);
    return KeyOf(0xC0 | codePoint >> 6, 2, std::uint64_t{0x80 | (codePoint & 0x3F)} << 16);
}

Character ReadCharacter(const CodePointMap& map, const char* p, std::size_t left) {
    const auto first = static_cast<unsigned char>(p[0]);
    if (first < 0x80) return {KeyOfCodePoint(map[first]), 1, false};
    const std::uint32_t length = CharLengthAt(p, left);
    if (length <= 1) return {KeyOf(first, 1, 0), 1, true};
    if (length == 2 && first >= 0xC2) return {KeyOfCodePoint(map[TwoByteCodePoint(p)]), 2, false};
    std::uint64_t rest = 0;
    for (std::uint32_t i = 1; i < length; ++i) rest |= std::uint64_t{static_cast<unsigned char>(p[i])} << (24 - 8 * i);
    return {KeyOf(first, length, rest), length, false};
}

// Difference of the first bytes, else of the lengths, else of the first remaining bytes that differ.
std::int32_t Difference(std::uint64_t a, std::uint64_t b) {
    for (std::uint32_t shift = 32;; shift -= 8) {
        const auto x = static_cast<std::int32_t>(a >> shift & 0xFF);
        const auto y = static_cast<std::int32_t>(b >> shift & 0xFF);
        if (x != y || shift == 0) return x - y;
    }
}

// Neither the terminator nor above ASCII.
constexpr bool IsAsciiCharacter(char c) { return static_cast<unsigned char>(c) - 1u < 0x7Fu; }

// Characters of ASCII, at most `limit`, that both texts begin with.
std::size_t EqualAscii(const char* a, const char* b, std::size_t limit) {
    std::size_t i = 0;
    while (i < limit && a[i] == b[i] && IsAsciiCharacter(a[i])) ++i;
    return i;
}

// Difference of two characters of ASCII under `map`; 0 where either is none.
std::int32_t AsciiDifference(const CodePointMap& map, char a, char b) {
    if (!IsAsciiCharacter(a) || !IsAsciiCharacter(b)) return 0;
    return map[static_cast<unsigned char>(a)] - map[static_cast<unsigned char>(b)];
}

enum class Stop { different, limit, end, odd };

struct Progress {
    Stop stop;
    std::int32_t difference;
    std::size_t a, b;  // bytes of each side that were compared
};

// Whether both sides stand at the same character of two bytes, by far the most common one above ASCII.
inline bool AgreeInTwoBytes(const char* a, std::size_t aLeft, const char* b, std::size_t bLeft) {
    return CharByteCount(*a) == 2 && *a == *b && aLeft > 1 && bLeft > 1 && IsContinuationByte(a[1]) && a[1] == b[1];
}

// With `kStopAtOdd` the loop gives up at the first byte out of place; otherwise such a byte is a character.
template <bool kStopAtOdd>
inline Progress Run(const CodePointMap& map, const char* a, std::size_t aLeft, const char* b, std::size_t bLeft,
                    std::uint32_t maxChars) {
    std::size_t i = 0;
    std::size_t j = 0;
    for (std::size_t left = maxChars;; --left) {
        // ASCII goes byte by byte, as nothing may be read behind a terminator.
        const std::size_t run = std::min({aLeft - i, bLeft - j, left});
        const std::size_t runEnd = i + run;
        for (; i < runEnd; ++i, ++j) {
            const std::uint32_t c = static_cast<unsigned char>(a[i]);
            const std::uint32_t d = static_cast<unsigned char>(b[j]);
            if (c == d) {
                if (c - 1 < 0x7F) continue;
                break;
            }
            if ((c | d) >= 0x80 || c == 0 || d == 0) break;
            if (map[c] != map[d]) return {Stop::different, map[c] - map[d], i, j};
        }
        left -= run - (runEnd - i);
        if (left == 0) return {Stop::limit, 0, i, j};
        if (i >= aLeft || j >= bLeft || a[i] == 0 || b[j] == 0) return {Stop::end, 0, i, j};
        if (AgreeInTwoBytes(a + i, aLeft - i, b + j, bLeft - j)) {
            i += 2;
            j += 2;
            continue;
        }
        const Character x = ReadCharacter(map, a + i, aLeft - i);
        const Character y = ReadCharacter(map, b + j, bLeft - j);
        if (kStopAtOdd && (x.odd || y.odd)) return {Stop::odd, 0, i, j};
        if (x.key != y.key) return {Stop::different, Difference(x.key, y.key), i, j};
        i += x.length;
        j += y.length;
    }
}

std::int32_t ByteAt(const char* s, std::size_t i, std::size_t left) {
    return i < left ? static_cast<unsigned char>(s[i]) : 0;
}

constexpr std::int32_t Sign(std::int64_t value) { return value > 0 ? 1 : value < 0 ? -1 : 0; }

// Whether a text whose characters so far were all in order has another one: anything but its end and a sequence that
// crosses the limit.
bool HasMore(const char* s, std::size_t i, std::size_t left) {
    if (i >= left || s[i] == 0) return false;
    return static_cast<std::size_t>(CharByteCount(s[i])) <= left - i;
}

std::uint32_t CountOf(const char* s, std::size_t left) {
    return static_cast<std::uint32_t>(StrCharCountWithin(s, static_cast<std::uint32_t>(left)));
}

std::int32_t CompareByCount(const char* a, std::size_t aLeft, const char* b, std::size_t bLeft) {
    const std::uint32_t aChars = CountOf(a, aLeft);
    const std::uint32_t bChars = CountOf(b, bLeft);
    const std::int32_t r = CompareWithin(a, aLeft, b, bLeft, FoldCaseAndAccents, std::min(aChars, bChars));
    return r != 0 ? Sign(r) : Sign(std::int64_t{aChars} - bChars);
}

}  // namespace

const CodePointMap& FoldingMap(const SpecialCharTables& tables, FoldMode mode) {
    switch (mode) {
        case FoldAccents:
            return tables.folded;
        case FoldCase:
            return tables.upper;
        case FoldCaseAndAccents:
            return tables.upperFolded;
        default:
            return tables.same;
    }
}

std::int32_t CompareWithin(const char* a, std::size_t aLeft, const char* b, std::size_t bLeft, FoldMode mode,
                           std::uint32_t maxChars) {
    const SpecialCharTables* const tables = SpecialCharTablesInUse();
    if (tables == nullptr) return 0;
    if (a == nullptr) aLeft = 0;
    if (b == nullptr) bLeft = 0;
    const Progress p = Run<false>(FoldingMap(*tables, mode), a, aLeft, b, bLeft, maxChars);
    if (p.stop != Stop::end) return p.difference;
    return ByteAt(a, p.a, aLeft) - ByteAt(b, p.b, bLeft);
}

namespace {

// From where the first characters of ASCII, which both texts begin with, end. Apart from the usual way, which needs
// nothing of it.
[[gnu::noinline]] std::int32_t CompareRest(const CodePointMap& map, const char* a, std::size_t aLeft, const char* b,
                                           std::size_t bLeft) {
    // Both texts in order up to here: no counts are needed to know that both have the characters compared.
    const Progress p = Run<true>(map, a, aLeft, b, bLeft, kAllChars);
    if (p.stop == Stop::different) return Sign(p.difference);
    if (p.stop == Stop::end) return HasMore(a, p.a, aLeft) - HasMore(b, p.b, bLeft);
    return CompareByCount(a, aLeft, b, bLeft);
}

}  // namespace

std::int32_t CompareThenCount(const char* a, std::size_t aLeft, const char* b, std::size_t bLeft) {
    const SpecialCharTables* const tables = SpecialCharTablesInUse();
    if (tables == nullptr) return CompareByCount(a, aLeft, b, bLeft);
    // Most texts part after a few letters of ASCII.
    const std::size_t same = EqualAscii(a, b, std::min(aLeft, bLeft));
    if (same < aLeft && same < bLeft) {
        const std::int32_t r = AsciiDifference(tables->upperFolded, a[same], b[same]);
        if (r != 0) return Sign(r);
    }
    return CompareRest(tables->upperFolded, a + same, aLeft - same, b + same, bLeft - same);
}

}  // namespace dorvutil
