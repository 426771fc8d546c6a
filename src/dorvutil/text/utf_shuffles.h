#pragma once

#include <array>
#include <cstdint>

/// Byte shuffles that close the gaps in a register of 16 bytes, indexed by which lanes to keep; 0x80 clears a byte.
namespace dorvutil::utf {

struct alignas(16) Shuffle {
    std::array<std::uint8_t, 16> from;
};
using ShuffleTable = std::array<Shuffle, 256>;

/// Builds one table: `bytesOf(index, lane)` tells how many leading bytes of lane `lane` entry `index` keeps.
template <class BytesOf>
constexpr ShuffleTable MakeShuffles(std::uint32_t laneBytes, BytesOf bytesOf) {
    ShuffleTable table{};
    for (std::uint32_t index = 0; index < table.size(); ++index) {
        std::uint32_t out = 0;
        for (std::uint32_t lane = 0; lane < 16 / laneBytes; ++lane) {
            const std::uint32_t kept = bytesOf(index, lane);
            for (std::uint32_t i = 0; i < kept; ++i) {
                table[index].from[out++] = static_cast<std::uint8_t>(lane * laneBytes + i);
            }
        }
        while (out < 16) table[index].from[out++] = 0x80;
    }
    return table;
}

/// Eight units; bit k of the index: keep unit k.
inline constexpr ShuffleTable kKeepUnits =
    MakeShuffles(2, [](std::uint32_t index, std::uint32_t lane) { return (index >> lane & 1u) * 2u; });

/// Eight lanes of two bytes; bit k of the index: lane k has one byte only.
inline constexpr ShuffleTable kOneOrTwoBytes =
    MakeShuffles(2, [](std::uint32_t index, std::uint32_t lane) { return 2u - (index >> lane & 1u); });

/// Four lanes of up to three bytes; bit k of the index: lane k has at least two; bit k + 4: it has three.
inline constexpr ShuffleTable kUpToThreeBytes = MakeShuffles(
    4, [](std::uint32_t index, std::uint32_t lane) { return 1u + (index >> lane & 1u) + (index >> (lane + 4) & 1u); });

}  // namespace dorvutil::utf
