#pragma once

#include <time.h>

#include <atomic>
#include <cstdint>

/// Futex system calls, shared by the word waits and the events.
namespace dorvutil::platform {

/// Whether the word lies in memory of this process alone or in a mapping shared with others.
enum class FutexScope { kPrivate, kShared };

/// The point of CLOCK_MONOTONIC that lies `milliseconds` ahead.
timespec MonotonicDeadline(std::uint32_t milliseconds);

/// Sleeps while the word at `address` holds `expected`, until `deadline` (null: no limit). Returns false only when the
/// time ran out; true means "look again". Interrupting signals do not end the sleep.
bool FutexWait(const void* address, std::uint32_t expected, const timespec* deadline, FutexScope scope);

/// Wakes at most `count` sleepers. The address is never read, so that the object around it may be gone by now.
void FutexWake(const void* address, std::int32_t count, FutexScope scope);

}  // namespace dorvutil::platform
