#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// Counting and stepping through UTF-8 byte strings. A lead byte is 0x00-0x7F (a sequence of one byte), 110xxxxx (two),
/// 1110xxxx (three) or 11110xxx (four). Only this structure is looked at: overlong forms and surrogates pass. Nothing
/// is read behind a terminator. Any thread.
namespace dorvutil {

class ORVustring;

/// Length of the sequence that `lead` starts: 1 to 4, or 0 when it is not a lead byte.
constexpr std::int32_t CharByteCount(char lead) {
    const auto byte = static_cast<unsigned char>(lead);
    if (byte < 0x80) return 1;
    if (byte < 0xC0) return 0;
    if (byte < 0xE0) return 2;
    if (byte < 0xF0) return 3;
    return byte < 0xF8 ? 4 : 0;
}

/// The same for the byte at `p`; 0 for a null pointer.
constexpr std::int32_t CharByteCount(const char* p) { return p == nullptr ? 0 : CharByteCount(*p); }

/// Number of characters up to the terminator within `maxBytes` bytes; a sequence that crosses `maxBytes` ends the
/// count. When a byte is out of place the text is single-byte text, and the result is its number of bytes up to the
/// terminator, wherever that is: text that may be unterminated needs StrCharCountWithin. 0 for a null `s`.
DORVUTIL_API std::int32_t StrCharCount(const char* s, std::uint32_t maxBytes = 0xFFFF'FFFFu);
DORVUTIL_API std::int32_t StrCharCount(const ORVustring& text);

/// StrCharCount for text that need not be terminated: the count of single-byte text also ends at `maxBytes`.
DORVUTIL_API std::int32_t StrCharCountWithin(const char* s, std::uint32_t maxBytes);

/// Number of bytes up to the terminator; 0 for null.
DORVUTIL_API std::int32_t StrByteCount(const char* s);
DORVUTIL_API std::int32_t StrByteCount(const ORVustring& text);

/// Bytes taken by the first `nChars` characters, or by fewer when the terminator or a byte that is not a lead byte
/// comes first. A sequence cut off by the terminator counts the bytes it has. 0 for a null `s` or nChars < 1.
DORVUTIL_API std::int32_t StrBytesForChars(const char* s, std::int32_t nChars);

/// Bytes of at most `nChars` characters within `nBytes`: `nBytes` itself when the text has no more characters than
/// that.
DORVUTIL_API std::int32_t StrBytesForBytesChars(const char* s, std::int32_t nBytes, std::int32_t nChars);

/// Start of the character before byte position `pos`: the nearest byte below 0x80 or lead byte at `pos` - 1 or before.
/// Null when there is none, for a null `s` and for pos < 1. The caller answers for s[0] to s[pos - 1].
DORVUTIL_API const char* StrPrevChar(const char* s, std::int32_t pos);

/// Whether the bytes up to the terminator or `maxBytes` have the structure of UTF-8; a sequence that crosses `maxBytes`
/// ends the test well. With `allowControl` false the characters 0x01 to 0x1F make the text invalid. False for a null
/// `s`.
DORVUTIL_API bool IsValidUTF8String(const char* s, std::int32_t maxBytes, bool allowControl);

}  // namespace dorvutil
