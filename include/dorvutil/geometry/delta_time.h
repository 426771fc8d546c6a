#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

namespace dorvutil {

/// Hours from instant 1 to instant 2, negative when it lies before. Any thread.
///
/// A date is Y * 10000 + month * 100 + day, a time of day hour * 10000 + minute * 100 + second. The instants pass
/// through the date format of MS-DOS: the year is 1920 + Y within the 128 years from 1980 on (others are taken modulo
/// 128 years) and the seconds are cut to even ones. What is no date or no time of day counts as 1 January 1601.
DORVUTIL_API double GetDeltaTime(std::int32_t date1, std::int32_t time1, std::int32_t date2, std::int32_t time2);

}  // namespace dorvutil
