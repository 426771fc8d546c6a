#pragma once

/// Locks, events, semaphores, reference counting, threads and timers.
#include "dorvutil/concurrency/backlight.h"
#include "dorvutil/concurrency/event.h"
#include "dorvutil/concurrency/lockable.h"
#include "dorvutil/concurrency/locks.h"
#include "dorvutil/concurrency/low_res_timer_mgr.h"
#include "dorvutil/concurrency/reader_writer.h"
#include "dorvutil/concurrency/semaphore.h"
#include "dorvutil/concurrency/sync.h"
#include "dorvutil/concurrency/thread.h"
#include "dorvutil/concurrency/thread_holder.h"
#include "dorvutil/concurrency/timer.h"
#include "dorvutil/concurrency/worker.h"
