#pragma once

#include <cstdint>

/// The decimal numbers that dates and times of day are packed in.
namespace dorvutil::packed {

/// The two digits of `value` above `unit` (1, 100 or 10000), 0 to 99; negative numbers count down from 99.
constexpr std::int32_t TwoDigits(std::int32_t value, std::int32_t unit) {
    const std::int32_t digits = value / unit % 100;
    return digits < 0 ? digits + 100 : digits;
}

/// high × 10000 + middle × 100 + low, modulo 2^32.
constexpr std::int32_t Pack(std::int32_t high, std::int32_t middle, std::int32_t low) {
    const auto part = [](std::int32_t n) { return static_cast<std::uint32_t>(n); };
    return static_cast<std::int32_t>((part(high) * 100 + part(middle)) * 100 + part(low));
}

constexpr std::int32_t FullYear(std::int32_t twoDigits) { return twoDigits + (twoDigits > 80 ? 1900 : 2000); }

}  // namespace dorvutil::packed
