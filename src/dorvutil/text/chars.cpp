#include "dorvutil/text/chars.h"

#include <cstring>

#include "dorvutil/text/compare_engine.h"
#include "dorvutil/text/utf8_step.h"

namespace dorvutil {
namespace {

constexpr char AsciiUpper(char c) { return custom_islower(c) ? static_cast<char>(c - 'a' + 'A') : c; }

bool StartsWithIgnoringAsciiCase(const char* h, const char* s) {
    for (; *s != 0; ++h, ++s) {
        if (AsciiUpper(*h) != AsciiUpper(*s)) return false;  // also at the end of h
    }
    return true;
}

}  // namespace

const char* custom_stristr(const char* h, const char* s) {
    if (h == nullptr || s == nullptr) return nullptr;
    do {
        if (StartsWithIgnoringAsciiCase(h, s)) return h;
    } while (*h++ != 0);
    return nullptr;
}

const char* custom_strnistr(const char* h, const char* s, std::int32_t n) {
    if (h == nullptr || s == nullptr || *s == 0) return h;
    const std::size_t sought = std::strlen(s);
    if (n < -1) return nullptr;
    const std::size_t searched = n < 0 ? std::strlen(h) : LengthWithin(h, static_cast<std::size_t>(n));
    if (sought > searched) return nullptr;
    const auto chars = static_cast<std::uint32_t>(StrCharCount(s));
    for (std::size_t i = 0; i < searched; ++i) {
        if (CompareWithin(h + i, searched - i, s, sought, FoldCase, chars) == 0) return h + i;
    }
    return nullptr;
}

}  // namespace dorvutil
