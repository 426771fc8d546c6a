#pragma once

/// The system the library runs on: its description, processes, shared memory, devices and serial ports; the position in
/// a photo; forms of what users type.
#include "dorvutil/system/comm_ports.h"
#include "dorvutil/system/devices.h"
#include "dorvutil/system/jpeg_exif.h"
#include "dorvutil/system/process.h"
#include "dorvutil/system/shared_memory.h"
#include "dorvutil/system/stack_walker.h"
#include "dorvutil/system/sys_attr.h"
#include "dorvutil/system/system_info.h"
#include "dorvutil/system/system_mgr.h"
#include "dorvutil/system/validators.h"
