#pragma once

#include "dorvutil/platform/system_facts.h"

/// The files in which the kernel describes displays and input devices, named by the caller.
namespace dorvutil::platform {

/// QueryDisplay by a folder of connectors (/sys/class/drm) and a file with the depth of the console.
bool DisplayIn(const char* connectors, const char* depthFile, DisplayFacts& display);

/// HasTouchscreen by a list of devices (/proc/bus/input/devices).
bool HasTouchscreenIn(const char* devices);

}  // namespace dorvutil::platform
