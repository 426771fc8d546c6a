#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/encoding.h"

/// Case and accents of European letters in UTF-8 text: Latin, Cyrillic and Greek. A character is one UTF-8 sequence; a
/// lead byte whose continuation is missing or bad is a character of one byte without case or accent. Nothing is read
/// behind a terminator or a limit. ASCII letters follow a rule, the others the manager's tables. Any thread.
namespace dorvutil {

struct SpecialCharTables;

/// Stands for the special-character tables: case pairs, plain letters of accented ones, and the Latin look-alikes of
/// Cyrillic and Greek letters. One instance, owned by the registry; everything in this header, in compare.h and the
/// decoding of ISO/IEC 8859 asks for it through GetSpecCharMgr and does without when it is not there. The tables are
/// constant and never change.
class DORVUTIL_API CSpecialCharMgr {
public:
    CSpecialCharMgr();
    ~CSpecialCharMgr();
    CSpecialCharMgr(const CSpecialCharMgr&) = delete;
    CSpecialCharMgr& operator=(const CSpecialCharMgr&) = delete;

    /// Lets go of the tables, as the first step of tear-down: from here on the manager counts as absent. Not to be
    /// called while other threads use it.
    void ReleaseTables() { m_tables = nullptr; }

    /// Null once released.
    const SpecialCharTables* Tables() const { return m_tables; }

private:
    const SpecialCharTables* m_tables;  // constant data, not owned
};

/// Changes the case of at most `maxChars` characters of the text in `s`, a buffer of `size` bytes, in place; its length
/// stays. Stops at the terminator, at a byte that is not a lead byte and before a character that crosses `size`. Does
/// nothing for a null `s`, size < 1 or without the manager. Returns `s`.
DORVUTIL_API char* SpecialChar_tolower(char* s, std::int32_t size, std::uint32_t maxChars);
DORVUTIL_API char* SpecialChar_toupper(char* s, std::int32_t size, std::uint32_t maxChars);

/// The other case of one UTF-16 unit; a unit without one, and half a surrogate pair, stays as it is. Without the
/// manager only ASCII letters change.
DORVUTIL_API char16_t SpecialChar_towlower(char16_t c);
DORVUTIL_API char16_t SpecialChar_towupper(char16_t c);

/// The plain text (a constant, valid for ever) of the character at `ch`, or `ch` itself when it has none. Null without
/// the manager and for a null `ch`.
DORVUTIL_API const char* SpecialChar_Anglicize(const char* ch);

/// Copies at most `srcLen` bytes of `src` to `dst`, with accented letters replaced by plain ones (ß by "ss"). The
/// output stops before the first character that does not fit in dstSize - 1 bytes, before a byte that is not a lead
/// byte, at the terminator and before a sequence that crosses `srcLen`; it is always terminated. Returns `dst`,
/// unchanged for a null `src` or dstSize < 1; without the manager null, and `dst` is empty. The buffers must not
/// overlap.
DORVUTIL_API char* ChangeSpecialChars(char* dst, std::int32_t dstSize, const char* src, std::int32_t srcLen);
/// The same under its other name.
DORVUTIL_API char* SpecialChar_Anglicize(char* dst, std::int32_t dstSize, const char* src, std::int32_t srcLen);

/// The same for route numbers: the Cyrillic letters А Е М Р and the Greek Ε, in both cases, become A E M R and E.
DORVUTIL_API char* SpecialChar_AnglicizeRouteNum(char* dst, std::int32_t dstSize, const char* src, std::int32_t srcLen);

/// Decodes the byte `highNibble`:`lowNibble` of a text in `part` of ISO/IEC 8859 to UTF-8 in `out`, without terminator.
/// 0 when decoded (a byte that the part leaves undefined gives '?') and, with nothing written, without the manager;
/// 1, nothing written, when the text is longer than `outSize`; -1 for a byte below 0xA0, a negative nibble or a null
/// `out`.
DORVUTIL_API std::int32_t CSpecialCharMgr_GetDecodedSpacialChar(std::int32_t lowNibble, std::int32_t highNibble,
                                                                char* out, std::uint32_t outSize, IsoCodePart part);

}  // namespace dorvutil
