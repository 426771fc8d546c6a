#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "dorvutil/security/sha1_kernels.h"

/// One round of SHA-1, for the forms that keep the five words in ordinary registers.
namespace dorvutil::sha1 {

/// The constant of each twenty rounds.
inline constexpr std::uint32_t kRoundConstants[4] = {0x5A827999, 0x6ED9EBA1, 0x8F1BBCDC, 0xCA62C1D6};

/// Round `t`, unrolled: instead of moving the words, each round finds them one place further. The two halves of
/// "choose" and "majority" have no bit in common, so that they are added one by one, off the longest chain of
/// operations.
template <std::size_t t>
[[gnu::always_inline]] inline void Round(State& v, std::uint32_t scheduled) {
    const std::uint32_t a = v[(80 - t) % 5];
    std::uint32_t& b = v[(81 - t) % 5];
    const std::uint32_t c = v[(82 - t) % 5];
    const std::uint32_t d = v[(83 - t) % 5];
    std::uint32_t& e = v[(84 - t) % 5];
    e += scheduled;
    if constexpr (t < 20) {
        e += b & c;
        e += ~b & d;
    } else if constexpr (t >= 40 && t < 60) {
        e += b & c;
        e += d & (b ^ c);
    } else {
        e += b ^ c ^ d;
    }
    e += std::rotl(a, 5);
    b = std::rotl(b, 30);
}

}  // namespace dorvutil::sha1
