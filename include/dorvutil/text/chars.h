#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// Plain character functions. The classification is that of the C locale whatever the process has set: ASCII only,
/// false for every byte of 0x80 and above. Any thread.
namespace dorvutil {

constexpr bool custom_isdigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool custom_isupper(char c) { return c >= 'A' && c <= 'Z'; }
constexpr bool custom_islower(char c) { return c >= 'a' && c <= 'z'; }
constexpr bool custom_isalpha(char c) { return custom_isupper(c) || custom_islower(c); }
constexpr bool custom_isalnum(char c) { return custom_isalpha(c) || custom_isdigit(c); }
constexpr bool custom_isxdigit(char c) { return custom_isdigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'); }
/// Space and the controls from tab to carriage return.
constexpr bool custom_isspace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Value of a digit to base 36, in either case: 0 to 35; -1 for anything else.
constexpr std::int32_t custom_wctoint(char16_t c) {
    if (c >= u'0' && c <= u'9') return c - u'0';
    if (c >= u'A' && c <= u'Z') return c - u'A' + 10;
    if (c >= u'a' && c <= u'z') return c - u'a' + 10;
    return -1;
}

/// First place in `h` where `s` stands, ASCII letters matching in either case; `h` for an empty `s`; null when there is
/// none or a side is null.
DORVUTIL_API const char* custom_stristr(const char* h, const char* s);

/// First place in the first `n` bytes of `h` (n = -1: all of it) where `s` stands, without regard to case
/// (special_chars.h). `h` when a side is null or `s` has no characters; null when it is nowhere. Without the
/// special-character manager every place matches.
DORVUTIL_API const char* custom_strnistr(const char* h, const char* s, std::int32_t n);

}  // namespace dorvutil
