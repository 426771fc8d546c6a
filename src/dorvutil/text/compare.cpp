#include "dorvutil/text/compare.h"

#include <algorithm>
#include <cstring>

#include "dorvutil/text/compare_engine.h"
#include "dorvutil/text/sanitize.h"
#include "dorvutil/text/utf8_step.h"

namespace dorvutil {
namespace {

constexpr std::int32_t kSanitizedSize = 127;

std::int32_t CompareTexts(const char* a, const char* b, FoldMode mode, std::uint32_t maxChars = kAllChars) {
    return CompareWithin(a, kNoLimit, b, kNoLimit, mode, maxChars);
}

// A text with its length limit, sanitized into a buffer of its own on request.
class Side {
public:
    Side(const char* text, std::int32_t length) : m_text(text), m_length(text == nullptr ? 0 : std::max(length, 0)) {}

    /// Returns the sanitized length; the limit stays.
    std::int32_t Sanitize() {
        const std::int32_t length = SanitizeString(m_buffer, kSanitizedSize, m_text, m_length);
        m_text = m_buffer;
        return length;
    }
    void Cut(std::int32_t length) { m_length = std::min(m_length, length); }
    void CutToChars(std::int32_t maxChars) {
        if (StrCharCountWithin(Text(), static_cast<std::uint32_t>(m_length)) <= maxChars) return;
        Cut(BytesForCharsWithin(Text(), static_cast<std::size_t>(m_length), maxChars));
    }

    const char* Text() const { return m_text == nullptr ? "" : m_text; }
    std::int32_t Length() const { return m_length; }

private:
    const char* m_text;
    std::int32_t m_length;
    char m_buffer[kSanitizedSize];
};

std::int32_t Compare2(const Side& a, const Side& b) {
    return CompareThenCount(a.Text(), static_cast<std::size_t>(a.Length()), b.Text(),
                            static_cast<std::size_t>(b.Length()));
}

bool IsBoundary(char c) { return c != 0 && std::strchr(" ',-.", c) != nullptr; }

// The caller's position may lie anywhere.
bool IsBoundaryAt(const char* text, std::int32_t pos) {
    if (text == nullptr || pos < 0) return false;
    const void* const end = std::memchr(text, 0, static_cast<std::size_t>(pos) + 1);
    return end == nullptr && IsBoundary(text[pos]);
}

}  // namespace

std::int32_t SpecialChar_strcmp(const char* a, const char* b) { return CompareTexts(a, b, FoldNothing); }

std::int32_t SpecialChar_stricmp(const char* a, const char* b) { return CompareTexts(a, b, FoldCase); }

std::int32_t SpecialChar_strcmp2(const char* a, const char* b) { return CompareTexts(a, b, FoldAccents); }

std::int32_t SpecialChar_stricmp2(const char* a, const char* b) { return CompareTexts(a, b, FoldCaseAndAccents); }

std::int32_t SpecialChar_strnicmp(const char* a, const char* b, std::uint32_t n) {
    return CompareTexts(a, b, FoldCase, n);
}

std::int32_t SpecialChar_strncmp2(const char* a, const char* b, std::uint32_t n) {
    return CompareTexts(a, b, FoldAccents, n);
}

std::int32_t SpecialChar_strnicmp2(const char* a, const char* b, std::uint32_t n) {
    return CompareTexts(a, b, FoldCaseAndAccents, n);
}

std::int32_t SpecialChar_stricmpSanitize(const char* a, const char* b) {
    Side x(a, StrByteCount(a));
    Side y(b, StrByteCount(b));
    x.Sanitize();
    y.Sanitize();
    return CompareTexts(x.Text(), y.Text(), FoldCaseAndAccents);
}

std::int32_t StringCompare(const char* a, std::int32_t aLen, const char* b, std::int32_t bLen) {
    const Side x(a, aLen);
    const Side y(b, bLen);
    const std::int32_t r = std::strncmp(x.Text(), y.Text(), static_cast<std::size_t>(std::min(x.Length(), y.Length())));
    if (r != 0) return r < 0 ? -1 : 1;
    return (x.Length() > y.Length()) - (x.Length() < y.Length());
}

std::int32_t StringCompare2(const char* a, std::int32_t aLen, const char* b, std::int32_t bLen) {
    const auto aLimit = static_cast<std::size_t>(a == nullptr ? 0 : std::max(aLen, 0));
    const auto bLimit = static_cast<std::size_t>(b == nullptr ? 0 : std::max(bLen, 0));
    return CompareThenCount(a, aLimit, b, bLimit);
}

std::int32_t StringCompareSanitize(const char* a, std::int32_t aLen, const char* b, std::int32_t bLen, bool sanitizeA,
                                   bool sanitizeB) {
    Side x(a, aLen);
    Side y(b, bLen);
    if (sanitizeA) x.Sanitize();
    if (sanitizeB) y.Sanitize();
    return Compare2(x, y);
}

std::int32_t StringCompareTypeAhead(const char* input, std::int32_t inputLen, const char* name, std::int32_t nameLen,
                                    std::int32_t maxChars, bool sanitize) {
    Side typed(input, inputLen);
    if (sanitize) typed.Cut(typed.Sanitize());
    typed.CutToChars(maxChars);
    return Compare2(typed, Side(name, nameLen));
}

std::int32_t StringCompareInputMinAndExact(const char* input, const char* name, std::int32_t pos, std::int32_t minChars,
                                           bool sanitize, bool& exact, bool& boundary) {
    exact = false;
    boundary = false;
    Side typed(input, StrByteCount(input));
    if (sanitize) typed.Sanitize();
    const std::int32_t chars = StrCharCount(typed.Text());
    if (chars < minChars) return chars - minChars;
    const std::uint32_t compared = minChars < 0 ? kAllChars : static_cast<std::uint32_t>(minChars);
    const std::int32_t r = CompareTexts(typed.Text(), name, FoldCaseAndAccents, compared);
    if (r != 0) return r;
    exact = chars == minChars;
    boundary = exact || (!sanitize && IsBoundaryAt(input, pos));
    return 0;
}

}  // namespace dorvutil
