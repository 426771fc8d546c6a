#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// Comparisons of names. "Case" and "accents" are those of special_chars.h; folding maps one character to one text, so
/// that ß equals a single s. Characters compare by the bytes of their UTF-8 form, unsigned; a proper prefix sorts
/// first. A null text counts as empty. Nothing is read behind a terminator or a length given; a byte that is out of
/// place counts as a character of its own. Nothing is allocated. Any thread.
namespace dorvutil {

/// Narrow, zero-terminated, UTF-8. Negative, 0 or positive; 0 without the special-character manager. `n` is in
/// characters.
DORVUTIL_API std::int32_t SpecialChar_strcmp(const char* a, const char* b);    ///< Exact.
DORVUTIL_API std::int32_t SpecialChar_stricmp(const char* a, const char* b);   ///< Without case.
DORVUTIL_API std::int32_t SpecialChar_strcmp2(const char* a, const char* b);   ///< Without accents.
DORVUTIL_API std::int32_t SpecialChar_stricmp2(const char* a, const char* b);  ///< Without case and accents.
DORVUTIL_API std::int32_t SpecialChar_strnicmp(const char* a, const char* b, std::uint32_t n);
DORVUTIL_API std::int32_t SpecialChar_strncmp2(const char* a, const char* b, std::uint32_t n);
DORVUTIL_API std::int32_t SpecialChar_strnicmp2(const char* a, const char* b, std::uint32_t n);

/// SpecialChar_stricmp2 of both texts sanitized (sanitize.h) into buffers of 127 bytes: punctuation and blanks do not
/// count.
DORVUTIL_API std::int32_t SpecialChar_stricmpSanitize(const char* a, const char* b);

/// Wide, zero-terminated; `n` is in units. Half a surrogate pair counts as a character of its own.
DORVUTIL_API std::int32_t SpecialChar_wcsicmp(const char16_t* a, const char16_t* b);
DORVUTIL_API std::int32_t SpecialChar_wcsnicmp(const char16_t* a, const char16_t* b, std::uint32_t n);
DORVUTIL_API std::int32_t SpecialChar_wcsnicmp2(const char16_t* a, const char16_t* b, std::uint32_t n);

/// Length-aware forms: -1, 0 or 1. Lengths are in bytes or units; a negative one counts as 0. Where the texts agree
/// over the shorter length the longer one is greater; without the special-character manager that alone decides, except
/// in StringCompare.
///
/// Byte by byte, as strncmp, then the lengths.
DORVUTIL_API std::int32_t StringCompare(const char* a, std::int32_t aLen, const char* b, std::int32_t bLen);
/// Without case and accents, then the numbers of characters.
DORVUTIL_API std::int32_t StringCompare2(const char* a, std::int32_t aLen, const char* b, std::int32_t bLen);
/// StringCompare2 with each side whose flag is set sanitized first (into 127 bytes). The lengths stay limits.
DORVUTIL_API std::int32_t StringCompareSanitize(const char* a, std::int32_t aLen, const char* b, std::int32_t bLen,
                                                bool sanitizeA, bool sanitizeB);
/// The wide form (127 units), which compares the lengths after sanitizing.
DORVUTIL_API std::int32_t StringCompareSanitizeW(const char16_t* a, std::int32_t aLen, const char16_t* b,
                                                 std::int32_t bLen, bool sanitizeA, bool sanitizeB);
/// Without case, then the lengths.
DORVUTIL_API std::int32_t StringCompareW(const char16_t* a, std::int32_t aLen, const char16_t* b, std::int32_t bLen);
/// Without case and accents, then the lengths.
DORVUTIL_API std::int32_t StringCompareW2(const char16_t* a, std::int32_t aLen, const char16_t* b, std::int32_t bLen);

/// StringCompare2 of `name` with what has been typed: `input`, sanitized first (127 bytes) if `sanitize`, and then cut
/// to its first `maxChars` characters.
DORVUTIL_API std::int32_t StringCompareTypeAhead(const char* input, std::int32_t inputLen, const char* name,
                                                 std::int32_t nameLen, std::int32_t maxChars, bool sanitize);

/// Whether `input` and `name` (zero-terminated) agree in their first `minChars` characters without case and accents: 0,
/// or the sign of the difference. An input with fewer characters than that gives the negative of what is missing. When
/// they agree, `exact` tells that the input has just `minChars` characters, and `boundary` that it ends there or
/// (unless `sanitize`) that its byte at `pos` is one of space ' , - . Both are false otherwise. `sanitize`: the input
/// is sanitized first (127 bytes).
DORVUTIL_API std::int32_t StringCompareInputMinAndExact(const char* input, const char* name, std::int32_t pos,
                                                        std::int32_t minChars, bool sanitize, bool& exact,
                                                        bool& boundary);

}  // namespace dorvutil
