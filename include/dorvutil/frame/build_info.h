#pragma once

#include "dorvutil/frame/export.h"

namespace dorvutil {

/// Two lines about this build: who built it on what machine, and the kind of build. Lives as long as the program.
DORVUTIL_API const char* GetBuildInfo();

}  // namespace dorvutil
