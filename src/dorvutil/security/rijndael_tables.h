#pragma once

#include <array>
#include <bit>
#include <cstdint>

/// The tables of the Rijndael cipher, worked out at compile time from its field: polynomials over two elements modulo
/// x^8 + x^4 + x^3 + x + 1.
namespace dorvutil::rijndael {

constexpr std::uint32_t Double(std::uint32_t a) { return (a << 1 ^ (a >> 7) * 0x11Bu) & 0xFFu; }

constexpr std::uint32_t Multiply(std::uint32_t a, std::uint32_t b) {
    std::uint32_t product = 0;
    for (; b != 0; b >>= 1, a = Double(a)) product ^= (b & 1) * a;
    return product;
}

using Bytes = std::array<std::uint8_t, 256>;
using WordTables = std::array<std::array<std::uint32_t, 256>, 4>;

// Goes through the field by powers of 3 and, beside them, of its inverse 0xF6.
constexpr Bytes MakeSBox() {
    Bytes box{};
    box[0] = 0x63;
    std::uint32_t element = 1;
    std::uint32_t inverse = 1;
    for (int i = 0; i < 255; ++i) {
        std::uint8_t mixed = 0x63;
        for (int turn = 0; turn < 5; ++turn) {
            mixed = static_cast<std::uint8_t>(mixed ^ std::rotl(static_cast<std::uint8_t>(inverse), turn));
        }
        box[element] = mixed;
        element = Multiply(element, 0x03);
        inverse = Multiply(inverse, 0xF6);
    }
    return box;
}

constexpr Bytes Inverted(const Bytes& box) {
    Bytes inverse{};
    for (std::uint32_t i = 0; i < 256; ++i) inverse[box[i]] = static_cast<std::uint8_t>(i);
    return inverse;
}

// For each row the column that a byte there turns into: substituted, then multiplied by the column `mix` of the matrix
// (its factors from row 0 on, the lowest byte first).
constexpr WordTables MakeTables(const Bytes& box, std::uint32_t mix) {
    WordTables tables{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t column = 0;
        for (int row = 0; row < 4; ++row) column |= Multiply(box[i], mix >> 8 * row & 0xFFu) << 8 * row;
        for (int row = 0; row < 4; ++row) tables[static_cast<std::size_t>(row)][i] = std::rotl(column, 8 * row);
    }
    return tables;
}

inline constexpr Bytes kSBox = MakeSBox();
inline constexpr Bytes kInverseSBox = Inverted(kSBox);
inline constexpr WordTables kForward = MakeTables(kSBox, 0x03010102);
inline constexpr WordTables kBackward = MakeTables(kInverseSBox, 0x0B0D090E);

}  // namespace dorvutil::rijndael
