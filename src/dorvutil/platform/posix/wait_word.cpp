#include "dorvutil/platform/wait_word.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <limits>

#include "dorvutil/platform/posix/futex.h"

namespace dorvutil::platform {
namespace {

constexpr std::int32_t kEverybody = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

int Operation(int base, FutexScope scope) { return scope == FutexScope::kPrivate ? base | FUTEX_PRIVATE_FLAG : base; }

}  // namespace

timespec MonotonicDeadline(std::uint32_t milliseconds) {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    const std::int64_t nanoseconds = now.tv_nsec + std::int64_t{milliseconds % 1000} * 1'000'000;
    now.tv_sec += static_cast<time_t>(milliseconds / 1000 + nanoseconds / kNanosecondsPerSecond);
    now.tv_nsec = static_cast<decltype(now.tv_nsec)>(nanoseconds % kNanosecondsPerSecond);
    return now;
}

bool FutexWait(const void* address, std::uint32_t expected, const timespec* deadline, FutexScope scope) {
    // The bitset form takes an absolute time, so that a sleep resumed after a signal ends when the first would have.
    const int operation = Operation(FUTEX_WAIT_BITSET, scope);
    int error = 0;
    do {
        const auto result =
            ::syscall(SYS_futex, address, operation, expected, deadline, nullptr, FUTEX_BITSET_MATCH_ANY);
        error = result == 0 ? 0 : errno;
    } while (error == EINTR);
    return error != ETIMEDOUT;
}

void FutexWake(const void* address, std::int32_t count, FutexScope scope) {
    ::syscall(SYS_futex, address, Operation(FUTEX_WAKE, scope), count, nullptr, nullptr, 0);
}

bool WaitOnWord(const std::atomic<std::uint32_t>& word, std::uint32_t expected, std::uint32_t timeoutMs) {
    if (timeoutMs == kWaitForever) return FutexWait(&word, expected, nullptr, FutexScope::kPrivate);
    const timespec deadline = MonotonicDeadline(timeoutMs);
    return FutexWait(&word, expected, &deadline, FutexScope::kPrivate);
}

void WakeOneOnWord(const std::atomic<std::uint32_t>& word) { FutexWake(&word, 1, FutexScope::kPrivate); }

void WakeAllOnWord(const std::atomic<std::uint32_t>& word) { FutexWake(&word, kEverybody, FutexScope::kPrivate); }

}  // namespace dorvutil::platform
