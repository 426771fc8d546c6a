#include "dorvutil/text/special_chars.h"

#include <cstring>

#include "dorvutil/text/special_char_tables.h"
#include "dorvutil/text/utf8_step.h"

namespace dorvutil {
namespace {

// Maps characters in place; no entry changes the length.
void ChangeCase(const CodePointMap& map, char* s, std::size_t size, std::uint32_t maxChars) {
    std::size_t i = 0;
    for (; maxChars > 0 && i < size && s[i] != 0; --maxChars) {
        const auto first = static_cast<unsigned char>(s[i]);
        if (first < 0x80) {
            s[i++] = static_cast<char>(map[first]);
            continue;
        }
        const auto promised = static_cast<std::size_t>(CharByteCount(s[i]));
        if (promised == 0 || promised > size - i) return;
        const std::uint32_t length = CharLengthAt(s + i, size - i);
        const std::uint32_t codePoint = length == 2 ? TwoByteCodePoint(s + i) : 0;
        if (codePoint != 0) PutTwoByteCodePoint(s + i, map[codePoint]);
        i += length;
    }
}

char16_t ChangeUnitCase(char16_t c, CodePointMap SpecialCharTables::*map, char16_t firstAscii, std::int32_t shift) {
    if (c < 0x80) {
        const bool changes = c >= firstAscii && c <= firstAscii + 25;
        return changes ? static_cast<char16_t>(c + shift) : c;
    }
    const SpecialCharTables* const tables = c < kTableEnd ? SpecialCharTablesInUse() : nullptr;
    return tables == nullptr ? c : static_cast<char16_t>((tables->*map)[c]);
}

// Plain text of the character of `length` bytes at `p`; null when it has none.
const char* FoldTextAt(const SpecialCharTables& tables, const char* p, std::uint32_t length) {
    if (length != 2) return nullptr;
    const std::uint32_t index = tables.foldIndex[TwoByteCodePoint(p)];
    return index == 0 ? nullptr : FoldTextOf(index);
}

struct Text {
    const char* data;
    std::size_t length;
};

// What the character at `p` becomes: its plain text, its look-alike, or itself.
Text ReplacementAt(const SpecialCharTables& tables, const char* p, std::uint32_t length, bool lookAlikes) {
    if (const char* const plain = FoldTextAt(tables, p, length)) return {plain, std::strlen(plain)};
    if (lookAlikes && length == 2) {
        const char& letter = tables.lookAlike[TwoByteCodePoint(p)];
        if (letter != 0) return {&letter, 1};
    }
    return {p, length};
}

char* FoldInto(char* dst, std::int32_t dstSize, const char* src, std::int32_t srcLen, bool lookAlikes) {
    const SpecialCharTables* const tables = SpecialCharTablesInUse();
    const bool writable = dst != nullptr && dstSize >= 1;
    if (tables == nullptr) {
        if (writable) *dst = 0;
        return nullptr;
    }
    if (!writable || src == nullptr) return dst;
    const auto limit = static_cast<std::size_t>(srcLen < 0 ? 0 : srcLen);
    std::size_t room = static_cast<std::size_t>(dstSize) - 1;
    char* out = dst;
    for (std::size_t i = 0; i < limit && src[i] != 0;) {
        const auto promised = static_cast<std::size_t>(CharByteCount(src[i]));
        if (promised == 0 || promised > limit - i) break;
        const std::uint32_t length = CharLengthAt(src + i, limit - i);
        const Text text = ReplacementAt(*tables, src + i, length, lookAlikes);
        if (text.length > room) break;
        std::memcpy(out, text.data, text.length);
        out += text.length;
        room -= text.length;
        i += length;
    }
    *out = 0;
    return dst;
}

}  // namespace

char* SpecialChar_tolower(char* s, std::int32_t size, std::uint32_t maxChars) {
    const SpecialCharTables* const tables = SpecialCharTablesInUse();
    if (tables != nullptr && s != nullptr && size > 0) {
        ChangeCase(tables->lower, s, static_cast<std::size_t>(size), maxChars);
    }
    return s;
}

char* SpecialChar_toupper(char* s, std::int32_t size, std::uint32_t maxChars) {
    const SpecialCharTables* const tables = SpecialCharTablesInUse();
    if (tables != nullptr && s != nullptr && size > 0) {
        ChangeCase(tables->upper, s, static_cast<std::size_t>(size), maxChars);
    }
    return s;
}

char16_t SpecialChar_towlower(char16_t c) { return ChangeUnitCase(c, &SpecialCharTables::lower, u'A', 32); }

char16_t SpecialChar_towupper(char16_t c) { return ChangeUnitCase(c, &SpecialCharTables::upper, u'a', -32); }

const char* SpecialChar_Anglicize(const char* ch) {
    const SpecialCharTables* const tables = SpecialCharTablesInUse();
    if (tables == nullptr || ch == nullptr) return nullptr;
    const char* const plain = FoldTextAt(*tables, ch, CharLengthAt(ch, 4));
    return plain == nullptr ? ch : plain;
}

char* ChangeSpecialChars(char* dst, std::int32_t dstSize, const char* src, std::int32_t srcLen) {
    return FoldInto(dst, dstSize, src, srcLen, false);
}

char* SpecialChar_Anglicize(char* dst, std::int32_t dstSize, const char* src, std::int32_t srcLen) {
    return FoldInto(dst, dstSize, src, srcLen, false);
}

char* SpecialChar_AnglicizeRouteNum(char* dst, std::int32_t dstSize, const char* src, std::int32_t srcLen) {
    return FoldInto(dst, dstSize, src, srcLen, true);
}

}  // namespace dorvutil
