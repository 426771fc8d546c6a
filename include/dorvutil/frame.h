#pragma once

/// Library frame: the registry of managers, static data with ordered tear-down, libraries loaded at run time, and small
/// library-wide functions.
#include "dorvutil/frame/accessors.h"
#include "dorvutil/frame/build_info.h"
#include "dorvutil/frame/byte_order.h"
#include "dorvutil/frame/dynamic_library.h"
#include "dorvutil/frame/library_hash.h"
#include "dorvutil/frame/message_screen.h"
#include "dorvutil/frame/random.h"
#include "dorvutil/frame/registry.h"
#include "dorvutil/frame/static_data.h"
#include "dorvutil/frame/unit_test.h"
