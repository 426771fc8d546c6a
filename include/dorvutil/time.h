#pragma once

/// Time: the clocks and their records.
#include "dorvutil/time/clock.h"
#include "dorvutil/time/records.h"
