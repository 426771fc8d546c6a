#pragma once

#include <cstdint>

/// Hours, minutes and seconds that carry into one another, modulo 2^32 each.
namespace dorvutil {

struct ClockFields {
    std::uint32_t hours;
    std::uint32_t minutes;
    std::uint32_t seconds;

    /// Brings minutes and seconds below 60; the hours take what is carried and are not limited.
    constexpr void Carry() {
        minutes += seconds / 60;
        hours += minutes / 60;
        seconds %= 60;
        minutes %= 60;
    }

    /// Brings the hours below 24 as well; returns the days carried.
    constexpr std::uint32_t CarryDays() {
        Carry();
        const std::uint32_t days = hours / 24;
        hours %= 24;
        return days;
    }

    /// Takes `other` away, both within their limits, around midnight when it is later; returns the days borrowed, 0
    /// or 1.
    constexpr std::uint32_t Subtract(const ClockFields& other) {
        constexpr std::uint32_t kDay = 86'400;  // seconds
        const std::uint32_t ours = Seconds(), theirs = other.Seconds();
        const std::uint32_t borrowed = ours < theirs ? 1 : 0;
        *this = {0, 0, ours + borrowed * kDay - theirs};
        Carry();
        return borrowed;
    }

    constexpr std::uint32_t Seconds() const { return (hours * 60 + minutes) * 60 + seconds; }
};

}  // namespace dorvutil
