#pragma once

#include <cstddef>
#include <cstdint>

#include "dorvutil/text/special_char_tables.h"

/// What the comparisons of compare.h are made of.
namespace dorvutil {

/// What a comparison does not look at.
enum FoldMode : std::uint32_t { FoldNothing = 0, FoldAccents = 1, FoldCase = 2, FoldCaseAndAccents = 3 };

inline constexpr std::size_t kNoLimit = static_cast<std::size_t>(-1);
inline constexpr std::uint32_t kAllChars = 0xFFFF'FFFFu;

/// The replacement of each character under `mode`.
const CodePointMap& FoldingMap(const SpecialCharTables& tables, FoldMode mode);

/// Compares at most `maxChars` characters of two texts that end at their terminator or after `aLeft` and `bLeft` bytes.
/// A null text counts as empty. 0 without the special-character manager.
std::int32_t CompareWithin(const char* a, std::size_t aLeft, const char* b, std::size_t bLeft, FoldMode mode,
                           std::uint32_t maxChars);

/// StringCompare2 with limits that are in order: a null text has the limit 0.
std::int32_t CompareThenCount(const char* a, std::size_t aLeft, const char* b, std::size_t bLeft);

/// The same on UTF-16, at most `maxUnits` units of each side.
std::int32_t CompareWideWithin(const char16_t* a, const char16_t* b, FoldMode mode, std::uint32_t maxUnits);

}  // namespace dorvutil
