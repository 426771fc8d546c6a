#include "dorvutil/text/sanitize.h"

#include <cstring>

#include "dorvutil/text/chars.h"
#include "dorvutil/text/utf8_step.h"

namespace dorvutil {
namespace {

constexpr char kSharpS[] = "\xC3\x9F";

bool IsKept(const char* p, std::uint32_t length) { return length > 1 || (length == 1 && custom_isalnum(*p)); }

// ASCII letters and digits are tested as such; everything from 0x80 on is kept.
bool IsKept(char16_t unit) { return unit >= 0x80 || custom_isalnum(static_cast<char>(unit)); }

}  // namespace

std::int32_t SanitizeString(char* dst, std::int32_t dstSize, const char* src, std::int32_t srcLen) {
    if (dst == nullptr || dstSize < 1) return 0;
    std::int32_t written = 0;
    for (std::int32_t i = 0; src != nullptr && i < srcLen && src[i] != 0;) {
        const std::uint32_t length = CharLengthAt(src + i, static_cast<std::size_t>(srcLen - i));
        const auto step = static_cast<std::int32_t>(length > 1 ? length : 1);
        if (IsKept(src + i, length)) {
            if (step > dstSize - 1 - written) break;
            std::memmove(dst + written, src + i, length);
            written += step;
        }
        i += step;
    }
    dst[written] = 0;
    return written;
}

std::int32_t SanitizeString(char16_t* dst, std::int32_t dstSize, const char16_t* src, std::int32_t srcLen) {
    if (dst == nullptr || dstSize < 1) return 0;
    std::int32_t written = 0;
    for (std::int32_t i = 0; src != nullptr && i < srcLen && src[i] != 0 && written < dstSize - 1; ++i) {
        if (IsKept(src[i])) dst[written++] = src[i];
    }
    dst[written] = 0;
    return written;
}

std::int32_t FilterString(char* dst, std::int32_t dstSize, const char* src, std::int32_t srcLen) {
    if (dst == nullptr || dstSize < 1 || src == nullptr || srcLen < 1) return 0;
    std::int32_t written = 0;
    for (std::int32_t i = 0; i < srcLen && src[i] != 0;) {
        const std::uint32_t length = CharLengthAt(src + i, static_cast<std::size_t>(srcLen - i));
        const auto step = static_cast<std::int32_t>(length > 1 ? length : 1);
        if (step > dstSize - 1 - written) break;
        const bool sharpS = step == 2 && std::memcmp(src + i, kSharpS, 2) == 0;
        std::memcpy(dst + written, sharpS ? "ss" : src + i, static_cast<std::size_t>(step));
        written += step;
        i += step;
    }
    dst[written] = 0;
    return written;
}

}  // namespace dorvutil
