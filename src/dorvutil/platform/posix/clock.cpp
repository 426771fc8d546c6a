#include "dorvutil/platform/clock.h"

#include <time.h>

#include <atomic>

namespace dorvutil::platform {
namespace {

constexpr std::uint64_t kTicksPerSecond = 10'000'000;                     // of 100 nanoseconds
constexpr std::uint64_t kTicksTo1970 = 11'644'473'600 * kTicksPerSecond;  // from 1601: 369 years with 89 leap days

constinit std::atomic<std::uint32_t> g_tickShift{0};
constinit std::atomic<std::int64_t> g_fileTimeShift{0};
constinit std::atomic<bool (*)(std::uint64_t)> g_clockSetter{nullptr};

}  // namespace

std::uint32_t TickCount() {
    // The boot clock goes on while the machine sleeps, as a time since system start must.
    timespec now{};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    const std::uint64_t milliseconds =
        static_cast<std::uint64_t>(now.tv_sec) * 1000 + static_cast<std::uint64_t>(now.tv_nsec) / 1'000'000;
    return static_cast<std::uint32_t>(milliseconds) + g_tickShift.load(std::memory_order_relaxed);
}

std::uint64_t FileTimeNow() {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const std::uint64_t since1970 =
        static_cast<std::uint64_t>(now.tv_sec) * kTicksPerSecond + static_cast<std::uint64_t>(now.tv_nsec) / 100;
    return kTicksTo1970 + since1970 + static_cast<std::uint64_t>(g_fileTimeShift.load(std::memory_order_relaxed));
}

bool SetFileTimeNow(std::uint64_t fileTime) {
    if (const auto setter = g_clockSetter.load(std::memory_order_acquire)) return setter(fileTime);
    if (fileTime < kTicksTo1970) return false;
    const std::uint64_t since1970 = fileTime - kTicksTo1970;
    timespec time{};
    time.tv_sec = static_cast<time_t>(since1970 / kTicksPerSecond);
    time.tv_nsec = static_cast<decltype(time.tv_nsec)>(since1970 % kTicksPerSecond * 100);
    return ::clock_settime(CLOCK_REALTIME, &time) == 0;
}

void ReplaceClockSetter(bool (*setter)(std::uint64_t fileTime)) {
    g_clockSetter.store(setter, std::memory_order_release);
}

void ShiftTick(std::uint32_t milliseconds) { g_tickShift.store(milliseconds, std::memory_order_relaxed); }

void ShiftFileTime(std::int64_t hundredNanoseconds) {
    g_fileTimeShift.store(hundredNanoseconds, std::memory_order_relaxed);
}

}  // namespace dorvutil::platform
