#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/memory/list.h"
#include "dorvutil/memory/vector.h"
#include "dorvutil/text/string.h"

/// Splitting texts. Results are appended to `out`; running out of memory ends them early. Any thread.
namespace dorvutil {

/// Splits at every occurrence of the whole text `separator`. The search goes on one unit behind the start of a
/// separator, so the rest of a longer one begins the next token. Empty tokens count; at most 128 tokens; none for an
/// empty text.
DORVUTIL_API void TokenizeString(const ORVustring& text, const ORVustring& separator, ListMgr<ORVustring>& out);
DORVUTIL_API void TokenizeString(const ORVwstring& text, const ORVwstring& separator, ListMgr<ORVwstring>& out);

/// The same tokens as decimal numbers (TOrvString::to_long).
DORVUTIL_API void TokenizeStringToLongs(const ORVustring& text, const ORVustring& separator,
                                        TVector<std::int32_t>& out);
DORVUTIL_API void TokenizeStringToLongs(const ORVwstring& text, const ORVwstring& separator,
                                        TVector<std::int32_t>& out);

/// Splits at any of the characters of `separators`; empty tokens are skipped. A token with an 'x' in it is hexadecimal
/// (32 bits, sign as they fall), any other decimal. Stores at most `max` values; returns how many. 0 for a null side.
/// The text is only read.
DORVUTIL_API std::uint32_t TokenizeStringToLongs(const char* text, const char* separators, std::int32_t* out,
                                                 std::uint32_t max);
/// The same for string objects, of whose tokens the first 31 characters count; hexadecimal values are clamped like
/// decimal ones.
DORVUTIL_API std::uint32_t TokenizeStringToLongs(const ORVustring& text, const char* separators, std::int32_t* out,
                                                 std::uint32_t max);
DORVUTIL_API std::uint32_t TokenizeStringToLongs(const ORVwstring& text, const char16_t* separators, std::int32_t* out,
                                                 std::uint32_t max);

/// Splits in place: every `separator` becomes a terminator, and the start of each piece, empty ones too, is appended.
/// Nothing for an empty text. Returns the vector's count.
DORVUTIL_API std::uint32_t TokenizeString(char* text, std::int32_t separator, TVector<const char*>& out);

}  // namespace dorvutil
