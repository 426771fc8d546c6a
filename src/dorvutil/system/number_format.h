#pragma once

#include <cstdint>
#include <string_view>

namespace dorvutil {

/// How a locale writes numbers; groups are of three digits.
struct NumberFormat {
    std::u16string_view decimal;
    std::u16string_view thousands;
    std::int32_t digits;         ///< Decimals to write, 0 to 9.
    std::int32_t negativeOrder;  ///< 0 "(1)", 1 "-1", 2 "- 1", 3 "1-", 4 "1 -".
};

/// Whether a digit stands behind the point of `number`.
bool HasFraction(std::u16string_view number);

/// Formats a decimal number (an optional '-', digits, at most one '.', at least one digit). A number that rounds to
/// zero has no sign. The result is that of CopyWhole; 0 also for what is no number, a wrong format, and without memory.
std::int32_t FormatNumber(std::u16string_view number, const NumberFormat& format, char16_t* out, std::int32_t size);

}  // namespace dorvutil
