#pragma once

#include <cstdint>

namespace dorvutil {

/// Hash of `n` units of `s`, from its first, last and two inner units: quick, and the same for ASCII in both widths.
/// Units of char count as signed. 0 for a null `s` or n = 0.
template <class T>
constexpr std::uint32_t StrHashValue(const T* s, std::uint32_t n) {
    if (s == nullptr || n == 0) return 0;
    const auto unit = [s](std::uint64_t i) {
        if constexpr (sizeof(T) == 1)
            return static_cast<std::uint32_t>(static_cast<signed char>(s[i]));
        else
            return static_cast<std::uint32_t>(s[i]);
    };
    std::uint32_t h = unit(std::uint64_t{n} * 2 / 3) << 8;
    h = ((h ^ unit(n / 3)) << 8) ^ unit(0) ^ n;
    if (n >= 2) h ^= unit(n - 1) << 24;
    return h;
}

}  // namespace dorvutil
