#pragma once

#include <cstdint>

/// Byte order: both names reverse the bytes of the value.
namespace dorvutil {

constexpr std::uint32_t ConvBig2Little(std::uint32_t value) {
    return (value >> 24) | ((value >> 8) & 0x0000FF00u) | ((value << 8) & 0x00FF0000u) | (value << 24);
}
constexpr std::uint16_t ConvBig2Little(std::uint16_t value) {
    return static_cast<std::uint16_t>((value >> 8) | (value << 8));
}
constexpr std::uint32_t ConvLittle2Big(std::uint32_t value) { return ConvBig2Little(value); }
constexpr std::uint16_t ConvLittle2Big(std::uint16_t value) { return ConvBig2Little(value); }

}  // namespace dorvutil
