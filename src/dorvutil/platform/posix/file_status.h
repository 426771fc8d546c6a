#pragma once

#include "dorvutil/platform/file.h"

namespace dorvutil::platform {

/// Status of `name` (native bytes), relative to the folder `descriptor` when it is no full path. False when there is
/// nothing of that name; a link that leads nowhere is described itself when `danglingToo` is set, else false.
bool StatusAt(int descriptor, const char* name, bool danglingToo, FileStatus& status);

}  // namespace dorvutil::platform
