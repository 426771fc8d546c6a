#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "dorvutil/frame/byte_order.h"

/// Words of 32 bits with the most significant byte first, at any address.
namespace dorvutil {

constexpr std::uint32_t SwapUnlessBig(std::uint32_t value) {
    return std::endian::native == std::endian::little ? ConvBig2Little(value) : value;
}

inline std::uint32_t LoadBig(const std::uint8_t* p) {
    std::uint32_t value;
    std::memcpy(&value, p, sizeof value);
    return SwapUnlessBig(value);
}

inline void StoreBig(std::uint8_t* p, std::uint32_t value) {
    value = SwapUnlessBig(value);
    std::memcpy(p, &value, sizeof value);
}

}  // namespace dorvutil
