#pragma once

/// The publish/subscribe log: publishers, subscribers, the delivery thread and the log files.
#include "dorvutil/logging/categories.h"
#include "dorvutil/logging/file_logger.h"
#include "dorvutil/logging/log.h"
#include "dorvutil/logging/log_message.h"
#include "dorvutil/logging/log_mgr.h"
#include "dorvutil/logging/publisher.h"
#include "dorvutil/logging/subscriber.h"
