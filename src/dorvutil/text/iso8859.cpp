#include "dorvutil/text/iso8859_tables.h"

#include <algorithm>
#include <cstring>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/text/encoding.h"
#include "dorvutil/text/special_char_tables.h"
#include "dorvutil/text/utf8.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kOutputLimit = 254;  // bytes of one ORVConvertToISO8859
constexpr std::uint32_t kWorkSize = 256;

// Null for a part that is not supported.
const IsoHalf* HalfOf(IsoCodePart part) {
    switch (part) {
        case ISO8859_1:
            return &kIso1;
        case ISO8859_2:
            return &kIso2;
        case ISO8859_5:
            return &kIso5;
        case ISO8859_6:
            return &kIso6;
        case ISO8859_7:
            return &kIso7;
        case ISO8859_9:
            return &kIso9;
        case ISO8859_13:
            return &kIso13;
    }
    return nullptr;
}

// The character of a byte; '?' when the part has none.
char16_t DecodeIso(std::int32_t lowNibble, std::int32_t highNibble, IsoCodePart part) {
    const IsoHalf* const half = HalfOf(part);
    if (half == nullptr || lowNibble > 15 || highNibble > 15) return u'?';
    const char16_t c = (*half)[static_cast<std::uint32_t>(highNibble * 16 + lowNibble) - kIsoFirstByte];
    return c == 0 ? u'?' : c;
}

// Bytes that one source byte adds at `out`; 0 when there is no room.
std::uint32_t AppendIsoByte(char byte, char* out, std::uint32_t room, IsoCodePart part, bool decodes) {
    const std::int32_t value = static_cast<unsigned char>(byte);
    if (!decodes || value < static_cast<std::int32_t>(kIsoFirstByte)) {
        *out = byte;
        return 1;
    }
    if (CSpecialCharMgr_GetDecodedSpacialChar(value & 15, value >> 4, out, room, part) != 0) return 0;
    return static_cast<std::uint32_t>(CharByteCount(*out));
}

}  // namespace

std::int32_t CSpecialCharMgr_GetDecodedSpacialChar(std::int32_t lowNibble, std::int32_t highNibble, char* out,
                                                   std::uint32_t outSize, IsoCodePart part) {
    if (SpecialCharTablesInUse() == nullptr) return 0;
    if (lowNibble < 0 || highNibble < 10 || out == nullptr) return -1;
    const char16_t unit = DecodeIso(lowNibble, highNibble, part);
    const std::uint32_t needed = GetNumBytesConvertedToUTF8(&unit, 1);
    if (needed > outSize) return 1;
    ORVConvertUTF16toUTF8(&unit, 1, out, needed);
    return 0;
}

bool ORVConvertToISO8859(const char* src, std::uint32_t n, char* dst, std::uint32_t dstSize, IsoCodePart part) {
    if (src == nullptr || dst == nullptr || n == 0 || dstSize == 0) return false;
    std::memset(dst, 0, dstSize);
    char work[kWorkSize] = {};
    const bool decodes = SpecialCharTablesInUse() != nullptr;
    std::uint32_t used = 0;
    for (std::uint32_t i = 0; i < n && used < kOutputLimit; ++i) {
        const std::uint32_t added = AppendIsoByte(src[i], work + used, kOutputLimit - used, part, decodes);
        if (added == 0) break;
        used += added;
    }
    // Copied bytes may make the text anything but UTF-8, whose byte count the count then is: keep to dst all the same.
    const std::int32_t whole = StrBytesForChars(work, StrCharCount(work, dstSize - 1));
    std::memcpy(dst, work, std::min(static_cast<std::uint32_t>(whole), dstSize - 1));
    return true;
}

}  // namespace dorvutil
