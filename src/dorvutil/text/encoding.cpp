#include "dorvutil/text/encoding.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "dorvutil/text/utf8_step.h"
#include "dorvutil/text/utf_kernels.h"

namespace dorvutil {
namespace {

const std::uint8_t* AsBytes(const char* s) { return reinterpret_cast<const std::uint8_t*>(s); }
std::uint8_t* AsBytes(char* s) { return reinterpret_cast<std::uint8_t*>(s); }

// One unit for each byte, up to a zero byte: how text that is not UTF-8 is read.
char16_t* WidenBytes(const char* src, std::size_t n, char16_t* dst, std::size_t dstUnits) {
    const std::size_t count = LengthWithin(src, std::min(n, dstUnits));
    for (std::size_t i = 0; i < count; ++i) dst[i] = static_cast<unsigned char>(src[i]);
    return dst + count;
}

// Single bytes of well-formed UTF-8, up to `limit` of them, a zero byte, or a character above 0xFF.
void NarrowToLatin1(const std::uint8_t* src, const std::uint8_t* end, std::uint8_t* dst, std::size_t limit) {
    for (std::size_t i = 0; i < limit && src != end && *src != 0; ++i) {
        if (*src < 0x80) {
            dst[i] = *src++;
        } else if (*src <= 0xC3) {
            dst[i] = static_cast<std::uint8_t>((src[0] & 3) << 6 | (src[1] & 0x3F));
            src += 2;
        } else {
            return;
        }
    }
}

}  // namespace

bool ORVConvertUTF16toUTF8(const char16_t* src, std::uint32_t n, char* dst, std::uint32_t dstSize) {
    if (dst == nullptr || dstSize == 0) return false;
    if (src == nullptr) {
        *dst = 0;
        return false;
    }
    utf::EncodeCursor c{src, src + n, AsBytes(dst), AsBytes(dst) + dstSize};
    const utf::Ending ending = utf::Encode(c);
    if (c.dst != c.dstEnd) *c.dst = 0;
    return ending == utf::Ending::complete;
}

bool ORVConvertUTF8toUTF16(const char* src, std::uint32_t n, char16_t* dst, std::uint32_t dstUnits) {
    if (dst == nullptr || dstUnits == 0) return false;
    if (src == nullptr) {
        *dst = 0;
        return false;
    }
    utf::DecodeCursor c{AsBytes(src), AsBytes(src) + n, dst, dst + dstUnits};
    if (utf::Decode(c) != utf::Ending::complete) c.dst = WidenBytes(src, n, dst, dstUnits);
    if (c.dst != c.dstEnd) *c.dst = 0;
    return true;
}

bool ORVConvertLatin1toUTF8(const char* src, std::uint32_t n, char* dst, std::uint32_t dstSize) {
    if (dst == nullptr || dstSize == 0) return false;
    *dst = 0;
    if (src == nullptr) return false;
    constexpr std::size_t kChunk = 512;
    char16_t units[kChunk];
    std::uint8_t* out = AsBytes(dst);
    std::uint8_t* const outEnd = out + dstSize;
    utf::Ending ending = utf::Ending::complete;
    for (std::size_t i = 0; i < n && ending == utf::Ending::complete; i += kChunk) {
        const std::size_t count = std::min<std::size_t>(kChunk, n - i);
        for (std::size_t k = 0; k < count; ++k) units[k] = static_cast<unsigned char>(src[i + k]);
        utf::EncodeCursor c{units, units + count, out, outEnd};
        ending = utf::Encode(c);
        out = c.dst;
    }
    if (out != outEnd) *out = 0;
    return ending == utf::Ending::complete;
}

bool ORVConvertUTF8toLatin1(const char* src, std::uint32_t n, char* dst, std::uint32_t dstSize) {
    if (dst == nullptr || dstSize == 0) return false;
    std::memset(dst, 0, dstSize);
    if (src == nullptr) return false;
    if (utf::CountUnits(AsBytes(src), n).ending == utf::Ending::complete) {
        NarrowToLatin1(AsBytes(src), AsBytes(src) + n, AsBytes(dst), dstSize - 1);
    } else {
        std::memcpy(dst, src, LengthWithin(src, std::min(n, dstSize - 1)));
    }
    return true;
}

std::int32_t GetNumBytesNeededForUTF8(const char16_t* src, std::int32_t n) {
    if (src == nullptr) return 0;
    const std::size_t units = n < 0 ? std::char_traits<char16_t>::length(src) : static_cast<std::size_t>(n);
    const utf::Count count = utf::CountBytes(src, units);
    const std::size_t terminator = count.ending == utf::Ending::complete ? 1 : 0;
    return static_cast<std::int32_t>(count.value + terminator);
}

std::uint32_t GetNumBytesConvertedToUTF8(const char16_t* src, std::uint32_t n) {
    return src == nullptr ? 0 : static_cast<std::uint32_t>(utf::CountBytes(src, n).value);
}

std::uint32_t GetNumUnitsNeededForUTF16(const char* src, std::uint32_t n) {
    if (src == nullptr) return 0;
    const utf::Count count = utf::CountUnits(AsBytes(src), n);
    const bool utf8 = count.ending == utf::Ending::complete;
    return static_cast<std::uint32_t>(utf8 ? count.value : LengthWithin(src, n));
}

}  // namespace dorvutil
