#pragma once

/// The system the library runs on: its description, processes, shared memory and devices.
#include "dorvutil/system/devices.h"
#include "dorvutil/system/process.h"
#include "dorvutil/system/shared_memory.h"
#include "dorvutil/system/sys_attr.h"
#include "dorvutil/system/system_info.h"
#include "dorvutil/system/system_mgr.h"
