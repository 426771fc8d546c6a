#pragma once

#include <algorithm>
#include <charconv>
#include <cmath>

#include "dorvutil/text/basic_string.h"
#include "dorvutil/text/number_text.h"

/// TOrvString: numbers.
namespace dorvutil {
namespace numbers {

inline double ToDouble(const char* text, std::uint32_t) { return ParseDouble(text); }

// Only ASCII belongs to a number, so the text up to the first other unit is all that is looked at.
inline double ToDouble(const char16_t* text, std::uint32_t n) {
    std::uint32_t ascii = 0;
    while (ascii < n && text[ascii] != 0 && text[ascii] < 0x80) ++ascii;
    TOrvString<char> narrow;
    char buffer[64];
    for (std::uint32_t done = 0; done < ascii;) {
        const std::uint32_t part = std::min<std::uint32_t>(ascii - done, sizeof(buffer));
        std::transform(text + done, text + done + part, buffer, [](char16_t c) { return static_cast<char>(c); });
        if (!narrow.append(buffer, static_cast<std::int32_t>(part))) return 0;
        done += part;
    }
    return narrow.empty() ? 0 : ParseDouble(&narrow[0]);
}

// An ASCII text in either width.
template <class T>
TOrvString<T> FromAscii(const char* text, std::uint32_t n) {
    T units[kMaxIntegerDigits + 2];
    std::copy(text, text + n, units);
    return TOrvString<T>(units, static_cast<std::int32_t>(n));
}

}  // namespace numbers

template <class T>
std::int32_t TOrvString<T>::to_long(std::int32_t radix) const {
    return ToSigned32(ParseInteger(Text(), radix));
}

template <class T>
std::uint32_t TOrvString<T>::to_ulong(std::int32_t radix) const {
    const T* text = Text();
    if (radix == 16 && text[0] == '0' && text[1] == 'x') text += 2;
    return ToUnsigned32(ParseInteger(text, radix));
}

template <class T>
double TOrvString<T>::to_float() const {
    return numbers::ToDouble(Text(), length());
}

template <class T>
TOrvString<T> TOrvString<T>::ltoa(std::int32_t value, std::int32_t radix) {
    if (radix < 2 || radix > 36) return TOrvString(&m_NULL);
    char text[kMaxIntegerDigits + 1] = {'-'};
    const std::uint32_t sign = value < 0 ? 1 : 0;
    const auto bits = static_cast<std::uint32_t>(value);
    const std::uint32_t digits =
        FormatUnsigned(sign ? 0u - bits : bits, static_cast<std::uint32_t>(radix), text + sign);
    return numbers::FromAscii<T>(text, sign + digits);
}

template <class T>
TOrvString<T> TOrvString<T>::ultoa(std::uint32_t value, std::int32_t radix) {
    if (radix < 2 || radix > 36) return TOrvString(&m_NULL);
    char text[kMaxIntegerDigits];
    const std::uint32_t digits = FormatUnsigned(value, static_cast<std::uint32_t>(radix), text);
    if (radix != 16) return numbers::FromAscii<T>(text, digits);
    char hex[] = "0x00000000";
    std::copy(text, text + digits, hex + 10 - digits);
    return numbers::FromAscii<T>(hex, 10);
}

template <class T>
TOrvString<T> TOrvString<T>::ftoa(double value, std::int32_t precision) {
    constexpr std::uint32_t kLongest = 63;
    char text[kMaxDoubleText + 1] = {'-'};
    const std::uint32_t sign = std::signbit(value) ? 1 : 0;
    const std::uint32_t length = FormatMagnitude(value, {.m_conversion = 'f', .m_precision = precision}, text + sign);
    return numbers::FromAscii<T>(text, std::min(sign + length, kLongest));
}

}  // namespace dorvutil
