#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/time/records.h"

namespace dorvutil {

/// Now, as a file time (UTC). Any thread.
DORVUTIL_API void TIME_GetCurrentFileTime(ORV_FILETIME& now);

/// Milliseconds since system start, modulo 2^32: compare ticks by signed difference. Any thread.
DORVUTIL_API std::uint32_t TIME_GetTickCount();

}  // namespace dorvutil
