#pragma once

#include <cstddef>

#include "dorvutil/platform/network.h"

namespace dorvutil {

inline constexpr std::size_t kMacTextSize = 13;  ///< With the end mark.

/// Writes the first of `count` addresses that belongs to a device, as 12 lower-case hexadecimal digits: not all zero,
/// and not the "DEST" that dial-up adapters without an address of their own show. False when there is none.
bool FirstMacText(const platform::EthernetAddress* addresses, std::size_t count, char (&text)[kMacTextSize]);

}  // namespace dorvutil
