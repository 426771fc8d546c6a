#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// Texts reduced to what a search compares. Nothing is read behind a terminator or the length given. Any thread.
namespace dorvutil {

class ORVustring;
class ORVwstring;

/// Copies the letters, digits and multi-byte characters of at most `srcLen` bytes of UTF-8; other ASCII and bytes out
/// of place are dropped. The first character that does not fit in dstSize - 1 bytes ends the output, which is
/// terminated. Returns the number of bytes written, terminator not counted; 0 for a null or empty side. `dst` may be
/// `src`.
DORVUTIL_API std::int32_t SanitizeString(char* dst, std::int32_t dstSize, const char* src, std::int32_t srcLen);

/// The wide form: keeps units of 0x80 and above and ASCII letters and digits; sizes and result in units.
DORVUTIL_API std::int32_t SanitizeString(char16_t* dst, std::int32_t dstSize, const char16_t* src, std::int32_t srcLen);

/// The same on string objects; the result is cut at 254 bytes (units).
DORVUTIL_API ORVustring SanitizeString(const ORVustring& text);
DORVUTIL_API ORVwstring SanitizeString(const ORVwstring& text);

/// Copies at most `srcLen` bytes of UTF-8 with every ß replaced by "ss", up to the last whole character that fits in
/// dstSize - 1 bytes, and a terminator. `dst` must hold an empty text on entry and not overlap `src`. Returns the
/// number of bytes written; 0, with `dst` left alone, for a null side, dstSize < 1 or srcLen < 1.
DORVUTIL_API std::int32_t FilterString(char* dst, std::int32_t dstSize, const char* src, std::int32_t srcLen);

}  // namespace dorvutil
