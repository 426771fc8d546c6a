#include "dorvutil/messaging/activity.h"

#include "dorvutil/frame/accessors.h"
#include "dorvutil/messaging/callback_mgr.h"
#include "dorvutil/messaging/ui_message.h"

namespace dorvutil {

COrvActivity::COrvActivity(std::int32_t references) : TLockable(references) {}

COrvActivity::~COrvActivity() = default;

void COrvActivity::Completed(bool) { m_completed.SignalEvent(); }

std::int32_t COrvActivity::WaitForCompletion(std::uint32_t milliseconds) {
    return m_completed.WaitForEvent(milliseconds);
}

std::int32_t ScheduleUIActivity(COrvUIActivity* activity, bool wait, std::uint32_t timeoutMs) {
    if (!activity) return -1;
    CallbackMgr* const manager = GetCallbackMgr();
    const CallbackMgr::UIActivityCallback schedule = manager ? manager->GetUIActivityCallback() : nullptr;
    std::int32_t result = -1;
    if (schedule && !wait) {
        schedule(activity);
        return 1;  // the host has the caller's reference
    }
    if (schedule) {
        activity->Ref();  // the host's
        schedule(activity);
        result = activity->WaitForCompletion(timeoutMs);
    }
    activity->Unref();
    return result;
}

}  // namespace dorvutil
