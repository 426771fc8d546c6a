#pragma once

/// Messages between the engine and its host, activities for its interface thread, and the progress of long operations.
#include "dorvutil/messaging/activity.h"
#include "dorvutil/messaging/callback.h"
#include "dorvutil/messaging/callback_mgr.h"
#include "dorvutil/messaging/event_timer.h"
#include "dorvutil/messaging/flat_signature.h"
#include "dorvutil/messaging/listener.h"
#include "dorvutil/messaging/message_ids.h"
#include "dorvutil/messaging/payload.h"
#include "dorvutil/messaging/printf_observer.h"
#include "dorvutil/messaging/progress.h"
#include "dorvutil/messaging/progress_observer.h"
#include "dorvutil/messaging/ui_message.h"
