#pragma once

/// Time: calendar types, clocks, file times, formats and time zones.
#include "dorvutil/time/clock.h"
#include "dorvutil/time/file_time.h"
#include "dorvutil/time/format.h"
#include "dorvutil/time/packed.h"
#include "dorvutil/time/records.h"
#include "dorvutil/time/system_records.h"
#include "dorvutil/time/time_delta.h"
#include "dorvutil/time/time_stamp.h"
#include "dorvutil/time/time_zone.h"
#include "dorvutil/time/time_zone_util.h"
#include "dorvutil/time/utc_date.h"
#include "dorvutil/time/utc_time.h"
