#include "dorvutil/text/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "dorvutil/text/chars.h"

namespace dorvutil {
namespace {

template <class T>
ParsedInteger Parse(const T* text, std::int32_t radix) {
    ParsedInteger result;
    if (radix < 0 || radix == 1 || radix > 36) return result;
    while (*text == ' ' || (*text >= '\t' && *text <= '\r')) ++text;
    if (*text == '+' || *text == '-') result.m_negative = *text++ == '-';
    const auto digit = [](T c) {
        return static_cast<unsigned char>(c) == c ? custom_wctoint(static_cast<char16_t>(c)) : -1;
    };
    const bool prefixed = text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    if (prefixed && (radix == 0 || radix == 16) && digit(text[2]) >= 0 && digit(text[2]) < 16) {
        text += 2;
        radix = 16;
    } else if (radix == 0) {
        radix = *text == '0' ? 8 : 10;
    }
    const auto base = static_cast<std::uint64_t>(radix);
    for (std::int32_t value = digit(*text); value >= 0 && value < radix; value = digit(*++text)) {
        const auto add = static_cast<std::uint64_t>(value);
        const bool fits = result.m_magnitude <= (UINT64_MAX - add) / base;
        result.m_magnitude = fits ? result.m_magnitude * base + add : UINT64_MAX;
    }
    return result;
}

// Whether a decimal number that from_chars found out of range is too large rather than too small: its exponent, with
// the position of its first digit that is not 0, is positive.
bool TooLarge(const char* text, const char* end, bool hexadecimal) {
    const char exponentMark = hexadecimal ? 'p' : 'e';
    std::int64_t scale = 0;
    bool point = false;
    bool significant = false;
    for (; text != end && (*text | 0x20) != exponentMark; ++text) {
        if (*text == '.') {
            point = true;
        } else {
            significant = significant || *text != '0';
            if (significant && !point) ++scale;
            if (!significant && point) --scale;
        }
    }
    if (hexadecimal) scale *= 4;
    if (text == end) return scale > 0;
    const bool negative = text[1] == '-';
    const ParsedInteger exponent = ParseInteger(text + 1 + (negative || text[1] == '+' ? 1 : 0), 10);
    const auto limited = static_cast<std::int64_t>(std::min<std::uint64_t>(exponent.m_magnitude, 1'000'000'000));
    return (negative ? -limited : limited) + scale > 0;
}

std::uint32_t WriteFinite(double value, std::chars_format form, std::int32_t precision, char* out) {
    const auto result = std::to_chars(out, out + kMaxDoubleText, value, form, precision);
    return static_cast<std::uint32_t>(result.ptr - out);
}

// "%g" that keeps its zeros: as its definition says, by the exponent of the scientific form.
std::uint32_t WriteGeneralAlternate(double value, std::int32_t precision, char* out) {
    precision = std::max(precision, 1);
    const std::uint32_t length = WriteFinite(value, std::chars_format::scientific, precision - 1, out);
    const char* const mark = std::find(out, out + length, 'e');
    std::int32_t magnitude = 0;
    std::from_chars(mark + 2, out + length, magnitude);
    if (mark[1] == '-') magnitude = -magnitude;
    if (magnitude < -4 || magnitude >= precision) return length;
    return WriteFinite(value, std::chars_format::fixed, precision - 1 - magnitude, out);
}

// Puts a decimal mark behind the digits of a text that has none.
std::uint32_t AddMark(char* out, std::uint32_t length) {
    if (std::memchr(out, '.', length) != nullptr) return length;
    char* const at = std::find(out, out + length, 'e');
    std::memmove(at + 1, at, static_cast<std::size_t>(out + length - at));
    *at = '.';
    return length + 1;
}

}  // namespace

ParsedInteger ParseInteger(const char* text, std::int32_t radix) { return Parse(text, radix); }
ParsedInteger ParseInteger(const char16_t* text, std::int32_t radix) { return Parse(text, radix); }

double ParseDouble(const char* text) {
    while (custom_isspace(*text)) ++text;
    const bool negative = *text == '-';
    if (*text == '+' || *text == '-') ++text;
    if (*text == '-') return 0;  // from_chars takes a sign of its own
    const bool hexadecimal = text[0] == '0' && (text[1] | 0x20) == 'x' && (custom_isxdigit(text[2]) || text[2] == '.');
    const char* const start = hexadecimal ? text + 2 : text;
    const char* const end = start + std::strlen(start);
    double value = 0;
    const auto form = hexadecimal ? std::chars_format::hex : std::chars_format::general;
    const auto result = std::from_chars(start, end, value, form);
    if (result.ec == std::errc::result_out_of_range) {
        value = TooLarge(start, result.ptr, hexadecimal) ? std::numeric_limits<double>::infinity() : 0;
    } else if (result.ec != std::errc()) {
        value = 0;
    }
    return negative ? -value : value;
}

std::uint32_t FormatUnsigned(std::uint64_t value, std::uint32_t radix, char* out) {
    const auto result = std::to_chars(out, out + kMaxIntegerDigits, value, static_cast<int>(radix));
    return static_cast<std::uint32_t>(result.ptr - out);
}

std::uint32_t FormatMagnitude(double value, const DoubleFormat& format, char* out) {
    value = std::fabs(value);
    const bool upper = format.m_conversion == 'E' || format.m_conversion == 'G';
    std::uint32_t length = 3;
    if (!std::isfinite(value)) {
        std::memcpy(out, std::isnan(value) ? "nan" : "inf", 3);
    } else {
        const std::int32_t wanted = format.m_precision < 0 ? 6 : format.m_precision;
        const std::int32_t precision = std::min(wanted, static_cast<std::int32_t>(kMaxDecimals));
        if (format.m_conversion == 'f') {
            length = WriteFinite(value, std::chars_format::fixed, precision, out);
        } else if ((format.m_conversion | 0x20) == 'e') {
            length = WriteFinite(value, std::chars_format::scientific, precision, out);
        } else if (format.m_alternate) {
            length = WriteGeneralAlternate(value, precision, out);
        } else {
            length = WriteFinite(value, std::chars_format::general, precision, out);
        }
        if (format.m_alternate) length = AddMark(out, length);
    }
    if (upper)
        std::transform(out, out + length, out,
                       [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return length;
}

}  // namespace dorvutil
