#pragma once

#include <cstdint>
#include <string>

#include "dorvutil/text/compare.h"
#include "dorvutil/text/utf8.h"

/// What differs between the widths, under one name for the templates of the string classes.
namespace dorvutil::widths {

inline std::int32_t CompareNoCase(const char* a, const char* b) { return SpecialChar_stricmp(a, b); }
inline std::int32_t CompareNoCase(const char16_t* a, const char16_t* b) { return SpecialChar_wcsicmp(a, b); }
inline std::int32_t CompareNoCase(const char* a, const char* b, std::uint32_t n) {
    return SpecialChar_strnicmp(a, b, n);
}
inline std::int32_t CompareNoCase(const char16_t* a, const char16_t* b, std::uint32_t n) {
    return SpecialChar_wcsnicmp(a, b, n);
}

/// Bytes of the character at `s`, of which `left` bytes are there: a UTF-8 sequence, or one byte that is out of place.
inline std::uint32_t CharUnits(const char* s, std::uint32_t left) {
    const auto n = static_cast<std::uint32_t>(CharByteCount(*s));
    if (n < 2 || n > left) return 1;
    for (std::uint32_t i = 1; i < n; ++i) {
        if ((static_cast<unsigned char>(s[i]) & 0xC0u) != 0x80u) return 1;
    }
    return n;
}
inline std::uint32_t CharUnits(const char16_t*, std::uint32_t) { return 1; }

/// Characters in `n` units, as the comparisons count them.
template <class T>
std::uint32_t CharCount(const T* s, std::uint32_t n) {
    std::uint32_t count = 0;
    for (std::uint32_t i = 0; i < n; ++count) i += CharUnits(s + i, n - i);
    return count;
}

/// Unsigned value of one unit.
inline std::uint32_t Value(char c) { return static_cast<unsigned char>(c); }
inline std::uint32_t Value(char16_t c) { return c; }

template <class T>
std::uint32_t Length(const T* s) {
    const std::size_t n = std::char_traits<T>::length(s);
    return n < 0x7FFF'FFFFu ? static_cast<std::uint32_t>(n) : 0x7FFF'FFFFu;
}

/// A limit where negative means all of `length`.
inline std::uint32_t Limit(std::int32_t n, std::uint32_t length) {
    return n < 0 ? length : static_cast<std::uint32_t>(n);
}

}  // namespace dorvutil::widths
