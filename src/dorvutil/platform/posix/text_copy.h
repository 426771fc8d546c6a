#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace dorvutil::platform {

/// Copies a text with its end mark, cut where it does not fit.
template <std::size_t kSize>
void CopyText(const char* from, char (&to)[kSize]) {
    const std::size_t length = std::min(std::strlen(from), kSize - 1);
    std::memcpy(to, from, length);
    to[length] = '\0';
}

}  // namespace dorvutil::platform
