#pragma once

#include <cstdint>

/// The two clocks of the library. Both can be shifted by a test, so that wrap and time-out are tested without waiting.
namespace dorvutil::platform {

/// Milliseconds since system start, modulo 2^32 (wraps after 49.7 days).
std::uint32_t TickCount();

/// Now, in 100-nanosecond units since 1 January 1601 UTC.
std::uint64_t FileTimeNow();

/// Sets the system's clock to a time in those units; false when the system refuses. Any thread.
bool SetFileTimeNow(std::uint64_t fileTime);

/// What SetFileTimeNow calls instead of the system from now on (tests only; null restores the system).
void ReplaceClockSetter(bool (*setter)(std::uint64_t fileTime));

/// Adds to what TickCount and FileTimeNow answer from now on (tests only; 0 restores the real clocks). Waits are not
/// affected. Any thread.
void ShiftTick(std::uint32_t milliseconds);
void ShiftFileTime(std::int64_t hundredNanoseconds);

}  // namespace dorvutil::platform
