#pragma once

#include <cstdint>

#include "dorvutil/time/records.h"

namespace dorvutil {

inline constexpr std::uint64_t kFileTimePerSecond = 10'000'000;
inline constexpr std::uint64_t kFileTimePerMillisecond = 10'000;

/// Local date and time of a moment in whole seconds since 1 January 1601 UTC.
ORV_SYSTEMTIME LocalTimeOfSecond(std::uint64_t secondsSince1601);

}  // namespace dorvutil
