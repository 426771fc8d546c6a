#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// Conversions between UTF-8 (RFC 3629, strict), UTF-16, Latin-1 and parts of ISO/IEC 8859, in buffers of the caller.
/// Sizes are in bytes for narrow and in units for wide text. Nothing is read beyond the n bytes or units given and
/// nothing is written beyond the size given; source and destination must not overlap. No allocation, no shared state:
/// any thread. The process locale is never asked.
namespace dorvutil {

/// The supported parts of ISO/IEC 8859; the value is the number of the part. Any other value selects nothing.
enum IsoCodePart : std::int32_t {
    ISO8859_1 = 1,    ///< Western European
    ISO8859_2 = 2,    ///< Central European
    ISO8859_5 = 5,    ///< Cyrillic
    ISO8859_6 = 6,    ///< Arabic
    ISO8859_7 = 7,    ///< Greek
    ISO8859_9 = 9,    ///< Turkish
    ISO8859_13 = 13,  ///< Baltic
};

/// Converts `n` UTF-16 units. True only when all of them were converted: an unpaired surrogate and a character that
/// does not fit in `dstSize` bytes end the conversion, and the whole characters before it stay. A zero byte follows
/// them when there is room for it. False, with nothing written, for a null or empty `dst`; a null `src` gives an empty
/// text and false. Zero units inside the `n` are converted like any other.
DORVUTIL_API bool ORVConvertUTF16toUTF8(const char16_t* src, std::uint32_t n, char* dst, std::uint32_t dstSize);

/// Converts `n` bytes of UTF-8; code points from 0x10000 take two units. A zero unit follows when fewer than `dstUnits`
/// were written. If the bytes are not UTF-8 throughout, or do not fit, `dst` is written anew with one unit for each
/// byte (the text is taken as Latin-1) up to a zero byte, the end of the `n` bytes or of `dst`. True, except for a null
/// or empty `dst` (nothing written) and a null `src` (empty text).
DORVUTIL_API bool ORVConvertUTF8toUTF16(const char* src, std::uint32_t n, char16_t* dst, std::uint32_t dstUnits);

/// Converts `n` bytes of Latin-1; result, prefix and terminator as for ORVConvertUTF16toUTF8.
DORVUTIL_API bool ORVConvertLatin1toUTF8(const char* src, std::uint32_t n, char* dst, std::uint32_t dstSize);

/// Converts `n` bytes of UTF-8 to one byte for each character; the first code point above 0xFF, a zero byte, or
/// dstSize - 1 bytes end the output. Bytes that are not UTF-8 throughout are copied as they are. The rest of `dst` is
/// zero. False only for a null buffer or a zero `dstSize`.
DORVUTIL_API bool ORVConvertUTF8toLatin1(const char* src, std::uint32_t n, char* dst, std::uint32_t dstSize);

/// Converts `n` bytes of text in `part` of ISO/IEC 8859 to UTF-8. Bytes below 0xA0 are copied, bytes the part leaves
/// undefined become '?'. The output is cut at 254 bytes and at dstSize - 1 bytes, on a character boundary, and the rest
/// of `dst` is zero; a copied byte from 0x80 to 0x9F, which is no UTF-8, ends the output. Without the special-character
/// manager every byte is copied. False, with nothing written, for a null buffer or a zero size.
DORVUTIL_API bool ORVConvertToISO8859(const char* src, std::uint32_t n, char* dst, std::uint32_t dstSize,
                                      IsoCodePart part);

/// Bytes that `n` units (n < 0: up to the terminator) take in UTF-8, with one byte for the terminator. Units from an
/// unpaired surrogate on, and then the terminator too, are not counted: use GetNumBytesConvertedToUTF8 to size a buffer
/// for text that may be ill-formed. 0 for a null `src`. Never reads src[n].
DORVUTIL_API std::int32_t GetNumBytesNeededForUTF8(const char16_t* src, std::int32_t n);

/// Bytes, terminator not counted, that ORVConvertUTF16toUTF8 writes for `n` units when they all fit: those of the whole
/// text, or of the text before an unpaired surrogate. 0 for a null `src`.
DORVUTIL_API std::uint32_t GetNumBytesConvertedToUTF8(const char16_t* src, std::uint32_t n);

/// Units, terminator not counted, that ORVConvertUTF8toUTF16 writes for `n` bytes when they all fit: those of the
/// decoded text, or, when the bytes are not UTF-8, the bytes before the first zero byte. 0 for a null `src`. Never more
/// than n.
DORVUTIL_API std::uint32_t GetNumUnitsNeededForUTF16(const char* src, std::uint32_t n);

}  // namespace dorvutil
