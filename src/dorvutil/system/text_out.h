#pragma once

#include <cstdint>
#include <string_view>

namespace dorvutil {

/// Writes `text` into `size` units with the end mark, cut in front of the character that does not fit. False when there
/// is no room at all.
bool CopyOut(std::u16string_view text, char16_t* out, std::int32_t size);

/// Writes `text` as the calls of the operating system do: returns the units written with the end mark, with `size` 0
/// the units needed, and 0 with nothing written when it does not fit.
std::int32_t CopyWhole(std::u16string_view text, char16_t* out, std::int32_t size);

}  // namespace dorvutil
