#include "dorvutil/text/tokenize.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "dorvutil/text/number_text.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kMaxTokens = 128;
constexpr std::uint32_t kMaxNumberLength = 31;  // characters of a token that are looked at

/// Calls `take` with each token of `text`; it returns false to stop.
template <class S, class Take>
void TokenizeString_Internal(const S& text, const S& separator, Take take) {
    if (text.empty()) return;
    const auto* const pattern = separator.empty() ? &S::m_NULL : &separator[0];
    std::int32_t start = 0;
    for (std::uint32_t tokens = 0; tokens < kMaxTokens; ++tokens) {
        const std::int32_t found = text.find(pattern, static_cast<std::uint32_t>(start));
        if (!take(text.substr(start, found < 0 ? -1 : found - start)) || found < 0) return;
        start = found + 1;
    }
}

template <class S>
void ToList(const S& text, const S& separator, ListMgr<S>& out) {
    TokenizeString_Internal(text, separator, [&out](S&& token) {
        if (out.OwnsItems()) return out.Add(&token) >= 0;  // the list takes a copy, which shares the text
        S* const held = new S(std::move(token));
        if (held != nullptr && out.Add(held) >= 0) return true;
        delete held;
        return false;
    });
}

template <class S>
void ToLongs(const S& text, const S& separator, TVector<std::int32_t>& out) {
    TokenizeString_Internal(text, separator, [&out](const S& token) {
        const std::int32_t value = token.to_long(10);
        return out.Add(&value, 1) >= 0;
    });
}

template <class T>
bool IsAnyOf(T c, const T* set) {
    for (; *set != 0; ++set) {
        if (*set == c) return true;
    }
    return false;
}

/// Splits at any of the separators, without empty tokens: `take(start, length)` until it returns false.
template <class T, class Take>
void SplitAtAny(const T* text, const T* end, const T* separators, Take take) {
    while (text != end) {
        const T* const stop = std::find_if(text, end, [=](T c) { return IsAnyOf(c, separators); });
        if (stop != text && !take(text, static_cast<std::size_t>(stop - text))) return;
        if (stop == end) return;
        text = stop + 1;
    }
}

template <class T>
std::uint32_t ObjectToLongs(const T* text, std::uint32_t length, const T* separators, std::int32_t* out,
                            std::uint32_t max) {
    if (separators == nullptr || out == nullptr || max == 0) return 0;
    std::uint32_t count = 0;
    SplitAtAny(text, text + length, separators, [&](const T* token, std::size_t n) {
        T number[kMaxNumberLength + 1] = {};
        std::copy(token, token + std::min<std::size_t>(n, kMaxNumberLength), number);
        const bool hexadecimal = std::find(number, number + kMaxNumberLength, T{'x'}) != number + kMaxNumberLength;
        out[count++] = ToSigned32(ParseInteger(number, hexadecimal ? 16 : 10));
        return count < max;
    });
    return count;
}

}  // namespace

void TokenizeString(const ORVustring& text, const ORVustring& separator, ListMgr<ORVustring>& out) {
    ToList(text, separator, out);
}

void TokenizeString(const ORVwstring& text, const ORVwstring& separator, ListMgr<ORVwstring>& out) {
    ToList(text, separator, out);
}

void TokenizeStringToLongs(const ORVustring& text, const ORVustring& separator, TVector<std::int32_t>& out) {
    ToLongs(text, separator, out);
}

void TokenizeStringToLongs(const ORVwstring& text, const ORVwstring& separator, TVector<std::int32_t>& out) {
    ToLongs(text, separator, out);
}

// A number ends at the separator by itself, unless the separator could belong to it: then a copy is cut there.
std::uint32_t TokenizeStringToLongs(const char* text, const char* separators, std::int32_t* out, std::uint32_t max) {
    if (text == nullptr || separators == nullptr || out == nullptr || max == 0) return 0;
    std::uint32_t count = 0;
    SplitAtAny(text, text + std::strlen(text), separators, [&](const char* token, std::size_t n) {
        const ORVustring number(token, static_cast<std::int32_t>(std::min<std::size_t>(n, INT32_MAX)));
        const bool hexadecimal = number.find_first_of('x') >= 0;
        const ParsedInteger value = ParseInteger(number.c_str(false), hexadecimal ? 16 : 10);
        out[count++] = hexadecimal ? static_cast<std::int32_t>(ToUnsigned32(value)) : ToSigned32(value);
        return count < max;
    });
    return count;
}

std::uint32_t TokenizeStringToLongs(const ORVustring& text, const char* separators, std::int32_t* out,
                                    std::uint32_t max) {
    return ObjectToLongs(text.c_str(false), text.length(), separators, out, max);
}

std::uint32_t TokenizeStringToLongs(const ORVwstring& text, const char16_t* separators, std::int32_t* out,
                                    std::uint32_t max) {
    return ObjectToLongs(text.T_str(false), text.length(), separators, out, max);
}

std::uint32_t TokenizeString(char* text, std::int32_t separator, TVector<const char*>& out) {
    if (text == nullptr || *text == '\0') return out.Count();
    for (;;) {
        const char* const piece = text;
        char* const found = separator == 0 ? nullptr : std::strchr(text, separator);
        if (out.Add(&piece, 1) < 0 || found == nullptr) return out.Count();
        *found = '\0';
        text = found + 1;
    }
}

}  // namespace dorvutil
