#pragma once

#include <cstdint>
#include <string_view>

namespace roadlyn {

/// The library's match quality of a display string for an input: 6 prefix, 5 sanitized prefix, 4 start of a word,
/// 2 inside, 1 sanitized inside, 0 none.
std::uint32_t LibraryMatchQuality(std::string_view input, std::string_view display);

}  // namespace roadlyn
