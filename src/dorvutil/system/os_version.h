#pragma once

#include <cstdint>

#include "dorvutil/platform/system_facts.h"

namespace dorvutil {

inline constexpr std::int32_t kOsTextSize = 1023;  ///< Units with the end mark.

/// Writes what a system is called and returns its platform code; 0 with an empty text for an unknown kind.
std::int32_t DescribeOs(const platform::OsVersion& version, char16_t (&text)[kOsTextSize]);

}  // namespace dorvutil
