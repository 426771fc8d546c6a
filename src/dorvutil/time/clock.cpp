#include "dorvutil/time/clock.h"

#include "dorvutil/platform/clock.h"

namespace dorvutil {

void TIME_GetCurrentFileTime(ORV_FILETIME& now) {
    const std::uint64_t ticks = platform::FileTimeNow();
    now.dwLowDateTime = static_cast<std::uint32_t>(ticks);
    now.dwHighDateTime = static_cast<std::uint32_t>(ticks >> 32);
}

std::uint32_t TIME_GetTickCount() { return platform::TickCount(); }

}  // namespace dorvutil
