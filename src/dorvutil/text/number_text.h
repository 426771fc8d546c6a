#pragma once

#include <cstdint>

/// Numbers from and to text in the C locale, whatever the process has set.
namespace dorvutil {

/// A parsed integer: the magnitude (saturated at 2^64 - 1) and its sign; 0 when there is no number.
struct ParsedInteger {
    std::uint64_t m_magnitude = 0;
    bool m_negative = false;
};

/// The grammar of strtol: blanks, a sign, "0x" (radix 16) or nothing, digits. Radix 0 takes it from the prefix; other
/// values outside 2 to 36 read nothing. Stops at the first unit that is no digit and at a terminator.
ParsedInteger ParseInteger(const char* text, std::int32_t radix);
ParsedInteger ParseInteger(const char16_t* text, std::int32_t radix);

/// The value a 32-bit strtol gives: clamped.
constexpr std::int32_t ToSigned32(const ParsedInteger& n) {
    if (n.m_negative)
        return n.m_magnitude > 0x8000'0000u ? INT32_MIN
                                            : static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(n.m_magnitude));
    return n.m_magnitude > 0x7FFF'FFFFu ? INT32_MAX : static_cast<std::int32_t>(n.m_magnitude);
}

/// The value a 32-bit strtoul gives: clamped, a sign negates.
constexpr std::uint32_t ToUnsigned32(const ParsedInteger& n) {
    if (n.m_magnitude > 0xFFFF'FFFFu) return 0xFFFF'FFFFu;
    const auto value = static_cast<std::uint32_t>(n.m_magnitude);
    return n.m_negative ? 0u - value : value;
}

/// What atof reads, including "inf", "nan" and hexadecimal forms; too large gives infinity, too small 0.
double ParseDouble(const char* text);

/// Room that FormatUnsigned needs: 64 digits.
inline constexpr std::uint32_t kMaxIntegerDigits = 64;
/// Writes the digits of `value` in `radix` (2 to 36, lower case) to `out`, no terminator; returns how many.
std::uint32_t FormatUnsigned(std::uint64_t value, std::uint32_t radix, char* out);

/// How a floating-point number is printed.
struct DoubleFormat {
    char m_conversion = 'f';        ///< f e E g G
    std::int32_t m_precision = -1;  ///< Negative: six.
    bool m_alternate = false;       ///< '#': always a decimal mark, and %g keeps its zeros.
};

/// Room for any formatted number: 309 digits, the mark, kMaxDecimals and an exponent.
inline constexpr std::uint32_t kMaxDecimals = 1100;  ///< No double has more decimals that are not 0.
inline constexpr std::uint32_t kMaxDoubleText = 1440;
/// Writes what "%.*f" and its kind give for |value|, without sign and terminator. Decimals over kMaxDecimals are left
/// to the caller: all zeros. Returns the length.
std::uint32_t FormatMagnitude(double value, const DoubleFormat& format, char* out);

}  // namespace dorvutil
