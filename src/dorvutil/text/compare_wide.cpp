#include <array>
#include <cstring>

#include "dorvutil/text/compare.h"
#include "dorvutil/text/compare_engine.h"
#include "dorvutil/text/sanitize.h"

namespace dorvutil {
namespace {

constexpr std::size_t kSanitizedUnits = 127;

struct WideCharacter {
    std::uint32_t codePoint;  // the order of code points is the order of their UTF-8 forms
    std::uint32_t length;
};

WideCharacter ReadWide(const CodePointMap& map, const char16_t* p, std::uint32_t left) {
    const std::uint32_t unit = p[0];
    if (unit < kTableEnd) return {map[unit], 1};
    if ((unit & 0xFC00) != 0xD800 || left < 2 || (p[1] & 0xFC00) != 0xDC00) return {unit, 1};
    return {0x10000 + ((unit & 0x3FF) << 10 | (p[1] & 0x3FFu)), 2};
}

constexpr std::int32_t Sign(std::int64_t value) { return value > 0 ? 1 : value < 0 ? -1 : 0; }

// Compares over the shorter length; the longer text is greater.
std::int32_t CompareThenLength(const char16_t* a, std::int32_t aLen, const char16_t* b, std::int32_t bLen,
                               FoldMode mode) {
    if (a == nullptr || aLen < 0) aLen = 0;
    if (b == nullptr || bLen < 0) bLen = 0;
    const auto shorter = static_cast<std::uint32_t>(aLen < bLen ? aLen : bLen);
    const std::int32_t r = CompareWideWithin(a, b, mode, shorter);
    return r != 0 ? Sign(r) : Sign(std::int64_t{aLen} - bLen);
}

}  // namespace

// Equal characters have equally many units on both sides, as no character with an entry needs two: one index serves
// both.
std::int32_t CompareWideWithin(const char16_t* a, const char16_t* b, FoldMode mode, std::uint32_t maxUnits) {
    const SpecialCharTables* const tables = SpecialCharTablesInUse();
    if (tables == nullptr) return 0;
    const CodePointMap& map = FoldingMap(*tables, mode);
    constexpr char16_t kEmpty[] = u"";
    if (a == nullptr) a = kEmpty;
    if (b == nullptr) b = kEmpty;
    for (std::uint32_t i = 0; i < maxUnits;) {
        if (a[i] == 0 || b[i] == 0) return a[i] - b[i];
        const WideCharacter x = ReadWide(map, a + i, maxUnits - i);
        const WideCharacter y = ReadWide(map, b + i, maxUnits - i);
        if (x.codePoint != y.codePoint) return static_cast<std::int32_t>(x.codePoint - y.codePoint);
        i += x.length;
    }
    return 0;
}

std::int32_t SpecialChar_wcsicmp(const char16_t* a, const char16_t* b) {
    return CompareWideWithin(a, b, FoldCase, kAllChars);
}

std::int32_t SpecialChar_wcsnicmp(const char16_t* a, const char16_t* b, std::uint32_t n) {
    return CompareWideWithin(a, b, FoldCase, n);
}

std::int32_t SpecialChar_wcsnicmp2(const char16_t* a, const char16_t* b, std::uint32_t n) {
    return CompareWideWithin(a, b, FoldCaseAndAccents, n);
}

std::int32_t StringCompareW(const char16_t* a, std::int32_t aLen, const char16_t* b, std::int32_t bLen) {
    return CompareThenLength(a, aLen, b, bLen, FoldCase);
}

std::int32_t StringCompareW2(const char16_t* a, std::int32_t aLen, const char16_t* b, std::int32_t bLen) {
    return CompareThenLength(a, aLen, b, bLen, FoldCaseAndAccents);
}

std::int32_t StringCompareSanitizeW(const char16_t* a, std::int32_t aLen, const char16_t* b, std::int32_t bLen,
                                    bool sanitizeA, bool sanitizeB) {
    char16_t aBuffer[kSanitizedUnits];
    char16_t bBuffer[kSanitizedUnits];
    if (sanitizeA) {
        aLen = SanitizeString(aBuffer, kSanitizedUnits, a, aLen);
        a = aBuffer;
    }
    if (sanitizeB) {
        bLen = SanitizeString(bBuffer, kSanitizedUnits, b, bLen);
        b = bBuffer;
    }
    return CompareThenLength(a, aLen, b, bLen, FoldCaseAndAccents);
}

}  // namespace dorvutil
