#pragma once

#include "dorvutil/text/string.h"

namespace dorvutil {

/// What a log file says about the system: all its attributes. Defined with them, above the log. Any thread, until the
/// system manager goes, which outlives the log manager.
ORVustring SystemText();

}  // namespace dorvutil
