#pragma once

#include <cstddef>
#include <cstdint>

/// The user's locale, from the system's own tables; the process locale is neither asked nor set. Texts are bytes:
/// UTF-8, or Latin-1 where they are not. Any thread.
namespace dorvutil::platform {

struct LocaleNumbers {
    char decimal[16];            ///< Mark before the fraction, not empty.
    char thousands[16];          ///< Between groups of three digits; empty: no groups.
    std::int32_t digits;         ///< Usual number of decimals.
    std::int32_t negativeOrder;  ///< 0 "(1)", 1 "-1", 2 "- 1", 3 "1-", 4 "1 -".
};
void QueryLocaleNumbers(LocaleNumbers& numbers);

/// Writes the text with Windows' number `type` (a locale type), of the invariant locale or the user's, with its end
/// mark. False, with nothing written, for one that is not known or does not fit.
bool QueryLocaleText(bool invariant, std::uint32_t type, char* out, std::size_t size);

}  // namespace dorvutil::platform
