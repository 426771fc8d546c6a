#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "dorvutil/text/utf8.h"

/// Stepping through UTF-8 by structure, shared by the comparison, case and sanitizing code.
namespace dorvutil {

/// Bytes up to the terminator, at most `limit`; nothing behind either is read.
inline std::size_t LengthWithin(const char* s, std::size_t limit) {
    const void* const end = std::memchr(s, 0, limit);
    return end == nullptr ? limit : static_cast<std::size_t>(static_cast<const char*>(end) - s);
}

constexpr bool IsContinuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

/// Length of the character at `p`, which has `left` > 0 bytes before its limit: that of its sequence when all its
/// continuation bytes are there, 1 for a lead byte without them, 0 for a byte that is not a lead byte. A terminator is
/// no continuation byte, so nothing behind it is read.
inline std::uint32_t CharLengthAt(const char* p, std::size_t left) {
    const auto length = static_cast<std::uint32_t>(CharByteCount(*p));
    if (length <= 1) return length;
    for (std::uint32_t i = 1; i < length; ++i) {
        if (i >= left || !IsContinuationByte(p[i])) return 1;
    }
    return length;
}

/// StrBytesForChars for text that ends at its terminator or after `left` bytes.
inline std::int32_t BytesForCharsWithin(const char* s, std::size_t left, std::int32_t nChars) {
    std::size_t bytes = 0;
    for (; nChars > 0 && bytes < left && s[bytes] != 0; --nChars) {
        const auto length = static_cast<std::size_t>(CharByteCount(s[bytes]));
        if (length == 0) break;
        // The end of the text may cut the sequence short, but what else stands in it does not matter here.
        const std::size_t sequenceEnd = bytes + length;
        do ++bytes;
        while (bytes < sequenceEnd && bytes < left && s[bytes] != 0);
    }
    return static_cast<std::int32_t>(bytes);
}

/// Code point of a character of two bytes; 0 for the overlong forms of ASCII, which no table knows.
constexpr std::uint32_t TwoByteCodePoint(const char* p) {
    const auto lead = static_cast<unsigned char>(p[0]);
    if (lead < 0xC2) return 0;
    return (lead & 0x1Fu) << 6 | (static_cast<unsigned char>(p[1]) & 0x3Fu);
}

/// Writes a code point from 0x80 to 0x7FF.
inline void PutTwoByteCodePoint(char* p, std::uint32_t codePoint) {
    p[0] = static_cast<char>(0xC0 | codePoint >> 6);
    p[1] = static_cast<char>(0x80 | (codePoint & 0x3F));
}

}  // namespace dorvutil
