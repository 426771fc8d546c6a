#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// Bytes as hexadecimal text. Any thread.
namespace dorvutil {

/// Writes `n` bytes as 2n lower-case digits, without a terminator. False, with nothing written, when `textSize` is
/// below 2n or a pointer is null (for n = 0 they may be).
DORVUTIL_API bool HexToText(const std::uint8_t* bytes, std::uint32_t n, char* text, std::uint32_t textSize);

/// Reads pairs of digits, upper or lower case, up to the terminator; `bytes` has room for one byte for each pair. A
/// digit without a partner is the upper half of a last byte, which needs room too. Characters that are no digits give
/// bytes that mean nothing. True unless a pointer is null.
DORVUTIL_API bool TextToHex(const char* text, std::uint8_t* bytes);

}  // namespace dorvutil
