#pragma once

/// Everything the library offers.
#include "dorvutil/concurrency.h"
#include "dorvutil/frame.h"
#include "dorvutil/geometry.h"
#include "dorvutil/logging.h"
#include "dorvutil/memory.h"
#include "dorvutil/messaging.h"
#include "dorvutil/security.h"
#include "dorvutil/storage.h"
#include "dorvutil/system.h"
#include "dorvutil/text.h"
#include "dorvutil/time.h"
#include "dorvutil/typeahead.h"
