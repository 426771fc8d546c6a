#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/messaging/message_ids.h"

/// Raising messages, and functions that listen to them. Everything here may be called from any thread, also from a
/// listener, and does nothing while there is no callback manager.
namespace dorvutil {

class CBDataBase;

/// Raises a message: calls every listener of `id` on this thread, lower priority numbers first, with no lock held, and
/// returns when all have run. kUIMessage goes to the host's UI-message callback instead. The listeners are those at the
/// moment of the call, less those that unregister before their turn. `data` may be null. Allocates nothing.
DORVUTIL_API void DORV_InvokeCallback(EMsgID id, const CBDataBase* data);

/// Registers a function, at priority 0, for one identifier or for `count` of them. A function registered twice runs
/// twice for each message.
DORVUTIL_API void DORV_RegisterCallbackListener(void (*function)(EMsgID, const CBDataBase*), EMsgID id);
DORVUTIL_API void DORV_RegisterCallbackListener(void (*function)(EMsgID, const CBDataBase*), const EMsgID* ids,
                                                std::int32_t count);

/// Takes back the most recent of the function's registrations that is left. A call that another thread has started may
/// still be running on return.
DORVUTIL_API void DORV_UnRegisterCallbackListener(void (*function)(EMsgID, const CBDataBase*));

}  // namespace dorvutil
