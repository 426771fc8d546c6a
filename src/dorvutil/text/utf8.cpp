#include "dorvutil/text/utf8.h"

#include <algorithm>
#include <cstring>

#include "dorvutil/text/utf8_step.h"
#include "dorvutil/text/utf_kernels.h"

namespace dorvutil {
namespace {

// Characters of the `length` bytes at `s`, behind which stands the terminator or, at `maxBytes`, the limit; -1 for
// single-byte text. A sequence that reaches beyond the limit ends the count, one that does not fails at the terminator.
std::int32_t CountStructure(const char* s, std::size_t length, std::size_t maxBytes) {
    const utf::Count count = utf::CountChars(reinterpret_cast<const std::uint8_t*>(s), length);
    if (count.ending == utf::Ending::illegal) return -1;
    if (count.ending == utf::Ending::sourceExhausted) {
        const std::size_t start = length - count.left;
        if (static_cast<std::size_t>(CharByteCount(s[start])) <= maxBytes - start) return -1;
    }
    return static_cast<std::int32_t>(count.value);
}

}  // namespace

std::int32_t StrCharCount(const char* s, std::uint32_t maxBytes) {
    if (s == nullptr) return 0;
    constexpr std::uint32_t kNoLimit = 0xFFFF'FFFFu;
    const std::size_t length = maxBytes == kNoLimit ? std::strlen(s) : LengthWithin(s, maxBytes);
    const std::int32_t count = CountStructure(s, length, maxBytes);
    return count >= 0 ? count : StrByteCount(s);
}

std::int32_t StrCharCountWithin(const char* s, std::uint32_t maxBytes) {
    if (s == nullptr) return 0;
    const std::size_t length = LengthWithin(s, maxBytes);
    const std::int32_t count = CountStructure(s, length, maxBytes);
    return count >= 0 ? count : static_cast<std::int32_t>(length);
}

std::int32_t StrByteCount(const char* s) { return s == nullptr ? 0 : static_cast<std::int32_t>(std::strlen(s)); }

std::int32_t StrBytesForChars(const char* s, std::int32_t nChars) {
    return s == nullptr ? 0 : BytesForCharsWithin(s, static_cast<std::size_t>(-1), nChars);
}

std::int32_t StrBytesForBytesChars(const char* s, std::int32_t nBytes, std::int32_t nChars) {
    const auto limit = static_cast<std::uint32_t>(std::max(nBytes, 0));
    if (s == nullptr) return 0;
    return nChars >= StrCharCount(s, limit) ? nBytes : BytesForCharsWithin(s, limit, nChars);
}

const char* StrPrevChar(const char* s, std::int32_t pos) {
    if (s == nullptr) return nullptr;
    while (--pos >= 0) {
        if (CharByteCount(s[pos]) != 0) return s + pos;
    }
    return nullptr;
}

bool IsValidUTF8String(const char* s, std::int32_t maxBytes, bool allowControl) {
    if (s == nullptr) return false;
    for (std::int32_t i = 0; i < maxBytes && s[i] != 0;) {
        const std::int32_t length = CharByteCount(s[i]);
        if (length == 0) return false;
        if (length > maxBytes - i) return true;
        if (length == 1 && !allowControl && static_cast<unsigned char>(s[i]) < 0x20) return false;
        for (std::int32_t k = 1; k < length; ++k) {
            if (!IsContinuationByte(s[i + k])) return false;
        }
        i += length;
    }
    return true;
}

}  // namespace dorvutil
