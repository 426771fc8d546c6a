#include "dorvutil/messaging/callback_mgr.h"

#include <new>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/messaging/callback.h"
#include "dorvutil/messaging/mediator_list.h"

namespace dorvutil {

template <class L, class Msg>
TCallbackMgr<L, Msg>::~TCallbackMgr() {
    for (List* const list : m_lists) {
        if (list) list->Drop();
    }
}

template <class L, class Msg>
void TCallbackMgr<L, Msg>::AddToLists(const TVector<EMsgID>& ids, Mediator* mediator) {
    const TScopedLock<TCompactSync<critSec>> lock(*this);
    for (std::uint32_t i = ids.Count(); i-- > 0;) {
        if (ids[i] < kMessageCount) AddToList(m_lists[ids[i]], mediator);
    }
}

template <class L, class Msg>
void TCallbackMgr<L, Msg>::RemoveFromLists(const TVector<EMsgID>& ids, Mediator* mediator) {
    const TScopedLock<TCompactSync<critSec>> lock(*this);
    // Under the lock, so that no sort sees it happen.
    mediator->SetListener(nullptr);
    for (std::uint32_t i = ids.Count(); i-- > 0;) {
        if (ids[i] < kMessageCount) RemoveFromList(m_lists[ids[i]], mediator);
    }
}

template <class L, class Msg>
void TCallbackMgr<L, Msg>::AddToList(List*& list, Mediator* mediator) {
    List* target = list;
    if (!target) {
        target = new (std::nothrow) List;
    } else if (target->IsInUse()) {
        target = target->CopyWithout(nullptr);
    }
    if (!target) return;
    if (target->Append(mediator) && target->Count() > 1) target->QSort(&L::CompareCallbackPriorities);
    if (target == list) return;
    if (list) list->Drop();
    list = target;
}

// Without memory for a copy the mediator stays in the list: nobody is called through it any more.
template <class L, class Msg>
void TCallbackMgr<L, Msg>::RemoveFromList(List*& list, const Mediator* mediator) {
    if (!list || list->FindR(mediator) == kVectorNotFound) return;
    if (!list->IsInUse()) {
        for (std::uint32_t i = list->Count(); i-- > 0;) {
            if ((*list)[i] == mediator) list->DeleteAt(i);
        }
        return;
    }
    List* const rest = list->CopyWithout(mediator);
    if (!rest) return;
    list->Drop();
    list = rest;
}

template <class L, class Msg>
void TCallbackMgr<L, Msg>::Dispatch(EMsgID id, const Msg& message) {
    TCompactSync<critSec>::Enter();
    List* const list = m_lists[id];
    if (list) list->Hold();
    TCompactSync<critSec>::Exit();
    if (!list) return;
    Mediator* const* const end = list->Data() + list->Count();
    for (Mediator* const* mediator = list->Data(); mediator != end; ++mediator) {
        if (L* const listener = (*mediator)->Listener()) listener->DoCallback(message);
    }
    list->Drop();
}

template class TCallbackMgr<CallbackListener, CBMsgPlusData>;

CallbackMgr::~CallbackMgr() { m_simpleListeners.Flush(); }

void CallbackMgr::Invoke(EMsgID id, const CBDataBase* data) {
    if (id >= kMessageCount) return;
    if (id == kUIMessage) {
        if (const UIMsgCallback callback = GetUIMsgCallback()) callback(id, data);
        return;
    }
    Dispatch(id, CBMsgPlusData{id, data});
}

void CallbackMgr::RegisterFunction(SimpleCallbackListener::Function function, const TVector<EMsgID>& ids) {
    auto* const listener = new (std::nothrow) SimpleCallbackListener(function, ids);
    if (!listener) return;
    const TScopedLock<TCompactSync<critSec>> lock(*this);
    if (m_simpleListeners.Add(listener) < 0) SimpleCallbackListener::Retire(listener);
}

void CallbackMgr::UnregisterFunction(SimpleCallbackListener::Function function) {
    const TScopedLock<TCompactSync<critSec>> lock(*this);
    for (std::uint32_t i = m_simpleListeners.Count(); i-- > 0;) {
        if (m_simpleListeners[i]->GetFunction() == function) {
            m_simpleListeners.DeleteAt(i);
            return;
        }
    }
}

void DORV_InvokeCallback(EMsgID id, const CBDataBase* data) {
    if (CallbackMgr* const manager = GetCallbackMgr()) manager->Invoke(id, data);
}

void DORV_RegisterCallbackListener(void (*function)(EMsgID, const CBDataBase*), EMsgID id) {
    DORV_RegisterCallbackListener(function, &id, 1);
}

void DORV_RegisterCallbackListener(void (*function)(EMsgID, const CBDataBase*), const EMsgID* ids, std::int32_t count) {
    CallbackMgr* const manager = GetCallbackMgr();
    if (!manager) return;
    TVector<EMsgID> all;
    if (ids && count > 0) all.Add(ids, static_cast<std::uint32_t>(count));
    manager->RegisterFunction(function, all);
}

void DORV_UnRegisterCallbackListener(void (*function)(EMsgID, const CBDataBase*)) {
    if (CallbackMgr* const manager = GetCallbackMgr()) manager->UnregisterFunction(function);
}

}  // namespace dorvutil
