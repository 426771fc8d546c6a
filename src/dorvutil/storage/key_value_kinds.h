#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "dorvutil/storage/key_value_file.h"

/// What readers and writers of key/value files share.
namespace dorvutil::fpc {

/// Whether rows of this kind hold text.
template <class C>
constexpr bool IsText(std::int8_t kind) {
    return kind == kFpcText || (sizeof(C) == 2 && kind == kFpcWideText);
}

/// Replaces each pair of characters `from` by `to`, from left to right, in place. No character of `to` is in `from`.
template <class C>
void Replace(C* text, std::size_t length, const char* from, const char* to) {
    C* const end = text + length;
    const C first = static_cast<C>(from[0]), second = static_cast<C>(from[1]);
    while (end - text >= 2) {
        const C* const found = std::char_traits<C>::find(text, static_cast<std::size_t>(end - text) - 1, first);
        if (!found) return;
        text += found - text;
        if (text[1] == second) {
            text[0] = static_cast<C>(to[0]);
            text[1] = static_cast<C>(to[1]);
        }
        ++text;
    }
}

}  // namespace dorvutil::fpc
