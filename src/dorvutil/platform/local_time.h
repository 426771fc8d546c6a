#pragma once

#include <cstdint>

/// The time zone of the machine.
namespace dorvutil::platform {

/// Seconds by which local time is ahead of UTC at a moment given in seconds since 1970 UTC; 0 when the system does not
/// tell. Any thread.
std::int32_t LocalOffsetSeconds(std::int64_t secondsSince1970);

}  // namespace dorvutil::platform
