#pragma once

/// The system the library runs on: its description, processes, shared memory and devices; forms of what users type.
#include "dorvutil/system/devices.h"
#include "dorvutil/system/process.h"
#include "dorvutil/system/shared_memory.h"
#include "dorvutil/system/sys_attr.h"
#include "dorvutil/system/system_info.h"
#include "dorvutil/system/system_mgr.h"
#include "dorvutil/system/validators.h"
