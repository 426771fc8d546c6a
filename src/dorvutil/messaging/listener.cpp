#include "dorvutil/messaging/listener.h"

#include <algorithm>
#include <limits>
#include <new>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/messaging/callback_mgr.h"

namespace dorvutil {

// Of the kind that can take a place in a list: it stays the listener's own when there is no memory for another.
template <class Msg>
TCallbackListener<Msg>::TCallbackListener()
    : TLocker<CBaseLockable>(new (std::nothrow) TCallbackMediator<CallbackListener>(nullptr)) {}

template class TCallbackListener<CBMsgPlusData>;

CallbackListener::CallbackListener(EMsgID id, int priority) : m_priority(priority) {
    TakeIds(&id, 1);
    CreateMediator();
    CallbackListener::Register();
}

CallbackListener::CallbackListener(const EMsgID* ids, std::int32_t count, int priority) : m_priority(priority) {
    TakeIds(ids, ids && count > 0 ? static_cast<std::uint32_t>(count) : 0);
    CreateMediator();
    CallbackListener::Register();
}

CallbackListener::CallbackListener(const TVector<EMsgID>& ids, int priority)
    : CallbackListener(ids, priority, DeferRegistration{}) {
    CallbackListener::Register();
}

CallbackListener::CallbackListener(const TVector<EMsgID>& ids, int priority, DeferRegistration) : m_priority(priority) {
    TakeIds(ids.Data(), ids.Count());
    CreateMediator();
}

CallbackListener::~CallbackListener() { CallbackListener::Unregister(); }

void CallbackListener::TakeIds(const EMsgID* ids, std::uint32_t count) {
    m_ids.SetChunkSize(count != 0 ? count : 8);
    m_ids.Add(ids, count);
}

void CallbackListener::CreateMediator() {
    if (Mediator* const mediator = new (std::nothrow) Mediator(this)) {
        SetLockable(mediator);
    } else if (GetMediator()) {
        GetMediator()->SetListener(this);
    }
}

void CallbackListener::Register() {
    CallbackMgr* const manager = GetCallbackMgr();
    if (manager && GetMediator()) manager->AddToLists(m_ids, GetMediator());
}

void CallbackListener::Unregister() {
    Mediator* const mediator = GetMediator();
    if (!mediator) return;
    if (CallbackMgr* const manager = GetCallbackMgr()) manager->RemoveFromLists(m_ids, mediator);
    mediator->SetListener(nullptr);
}

void CallbackListener::DoCallback(const CBMsgPlusData& message) { OnCallback(message.m_id, message.m_data); }

void CallbackListener::OnCallback(EMsgID, const CBDataBase*) {}

int CallbackListener::CompareCallbackPriorities(Mediator* const* a, Mediator* const* b) {
    const CallbackListener* const first = (*a)->Listener();
    const CallbackListener* const second = (*b)->Listener();
    if (!first || !second) return static_cast<int>(!first) - static_cast<int>(!second);
    const std::int64_t difference = std::int64_t{first->m_priority} - second->m_priority;
    return static_cast<int>(
        std::clamp<std::int64_t>(difference, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

SimpleCallbackListener::SimpleCallbackListener(Function function, const TVector<EMsgID>& ids, int priority)
    : CallbackListener(ids, priority, DeferRegistration{}), m_function(function) {
    // Last: from here on another thread may call.
    CallbackListener::Register();
}

void SimpleCallbackListener::OnCallback(EMsgID id, const CBDataBase* data) {
    if (m_function) m_function(id, data);
}

void SimpleCallbackListener::Retire(SimpleCallbackListener* listener) {
    listener->Unregister();
    Mediator* const mediator = listener->GetMediator();
    if (!mediator) {
        delete listener;
        return;
    }
    // Each keeps the other alive until the listener lets go; then the mediator's last holder deletes both.
    mediator->Adopt(listener);
    listener->SetLockable(nullptr);
}

}  // namespace dorvutil
