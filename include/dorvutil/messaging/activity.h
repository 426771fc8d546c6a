#pragma once

#include <cstdint>

#include "dorvutil/concurrency/event.h"
#include "dorvutil/concurrency/lockable.h"
#include "dorvutil/frame/export.h"

namespace dorvutil {

class COrvUIActivity;

/// Work that another thread does, and the event that says it is done. Reference counted, on the heap. Any thread.
class DORVUTIL_API COrvActivity : public TLockable<critSec> {
public:
    explicit COrvActivity(std::int32_t references = 1);
    COrvActivity(const COrvActivity&) = delete;
    COrvActivity& operator=(const COrvActivity&) = delete;
    ~COrvActivity() override;

    /// Tells that the work is done. Each call releases one WaitForCompletion, now or later.
    virtual void Completed(bool handled);
    /// Waits for at most `milliseconds` (kWaitForever: no limit): 1 completed, 0 time-out, -1 failure.
    virtual std::int32_t WaitForCompletion(std::uint32_t milliseconds);
    virtual void DoActivity() = 0;  ///< Does the work.

private:
    event m_completed{false};
};

/// Hands `activity` to the host's UI-activity callback and takes over the caller's reference in any case. The host
/// calls DoActivity on its interface thread, then Completed, then Unref.
///
/// Without `wait`: 1 as soon as the callback returns. With it: 1 completed, 0 not within `timeoutMs` (the activity goes
/// on, and may complete later), -1 the wait failed. -1 also for a null activity and without a callback or a callback
/// manager: the activity is then released without having run. Not to be waited for on the thread that would do the work
/// (COrvUIActivity::AllowSynchronous). Any thread.
DORVUTIL_API std::int32_t ScheduleUIActivity(COrvUIActivity* activity, bool wait, std::uint32_t timeoutMs);

}  // namespace dorvutil
