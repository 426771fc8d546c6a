#include "dorvutil/security/hex_text.h"

namespace dorvutil {
namespace {

constexpr char kDigits[] = "0123456789abcdef";

// Characters are signed here on every system, so that those above 127 lie below '9'.
constexpr std::uint32_t DigitValue(char character) {
    const int c = static_cast<signed char>(character);
    if (c <= '9') return static_cast<std::uint32_t>(c - '0');
    const int upper = c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c;
    return static_cast<std::uint32_t>(upper - ('A' - 10));
}

}  // namespace

bool HexToText(const std::uint8_t* bytes, std::uint32_t n, char* text, std::uint32_t textSize) {
    if (std::uint64_t{n} * 2 > textSize) return false;
    if (n != 0 && (!bytes || !text)) return false;
    for (std::uint32_t i = 0; i < n; ++i) {
        *text++ = kDigits[bytes[i] >> 4];
        *text++ = kDigits[bytes[i] & 0xF];
    }
    return true;
}

bool TextToHex(const char* text, std::uint8_t* bytes) {
    if (!text || !bytes) return false;
    for (; text[0] != 0; text += 2) {
        const std::uint32_t high = DigitValue(text[0]) * 16;
        if (text[1] == 0) {
            *bytes = static_cast<std::uint8_t>(high);
            break;
        }
        *bytes++ = static_cast<std::uint8_t>(high + DigitValue(text[1]));
    }
    return true;
}

}  // namespace dorvutil
