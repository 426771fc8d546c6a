#pragma once

#include <atomic>
#include <cstdint>

#include "dorvutil/concurrency/sync.h"
#include "dorvutil/frame/export.h"
#include "dorvutil/memory/list.h"
#include "dorvutil/messaging/listener.h"
#include "dorvutil/messaging/message_ids.h"

namespace dorvutil {

class COrvUIActivity;
class RoadlynUIMsg;

template <class M>
class TMediatorList;

/// The listeners of every identifier. The lock guards the lists; it is never held while a listener runs. A list that a
/// dispatch is going through is not changed but replaced, so a dispatch costs one short hold of the lock however many
/// listeners there are.
template <class L, class Msg>
class TCallbackMgr : protected TCompactSync<critSec> {
public:
    using Mediator = TCallbackMediator<L>;

    TCallbackMgr() = default;
    ~TCallbackMgr() override;

    /// Puts the mediator into the list of each identifier, from the last to the first.
    void AddToLists(const TVector<EMsgID>& ids, Mediator* mediator);
    /// Takes the listener off the mediator, and the mediator out of the lists.
    void RemoveFromLists(const TVector<EMsgID>& ids, Mediator* mediator);
    /// Calls the listeners of `id`, which must be below kMessageCount.
    void Dispatch(EMsgID id, const Msg& message);

private:
    using List = TMediatorList<Mediator>;
    void AddToList(List*& list, Mediator* mediator);
    void RemoveFromList(List*& list, const Mediator* mediator);

    List* m_lists[kMessageCount] = {};  // sorted by priority; null: no listener; one hold on each
};

extern template class DORVUTIL_API TCallbackMgr<CallbackListener, CBMsgPlusData>;

/// The hub of all messages. There is one, owned by the registry: GetCallbackMgr. Any thread.
class DORVUTIL_API CallbackMgr : public TCallbackMgr<CallbackListener, CBMsgPlusData> {
public:
    using UIMsgCallback = void (*)(EMsgID, const CBDataBase*);
    using UIActivityCallback = void (*)(COrvUIActivity*);
    using MsgHandler = int (*)(const RoadlynUIMsg&);

    CallbackMgr() = default;
    ~CallbackMgr() override;

    /// Install the host's hooks; null removes one. A hook that another thread is calling may still be running on
    /// return.
    void SetUIMsgCallback(UIMsgCallback callback) { m_uiMsgCallback.store(callback, std::memory_order_release); }
    void SetUIActivityCallback(UIActivityCallback callback) {
        m_uiActivityCallback.store(callback, std::memory_order_release);
    }
    void SetUserMsgHandler(MsgHandler handler) { m_userMsgHandler.store(handler, std::memory_order_release); }
    void SetPostMsgHandler(MsgHandler handler) { m_postMsgHandler.store(handler, std::memory_order_release); }
    UIMsgCallback GetUIMsgCallback() const { return m_uiMsgCallback.load(std::memory_order_acquire); }
    UIActivityCallback GetUIActivityCallback() const { return m_uiActivityCallback.load(std::memory_order_acquire); }
    MsgHandler GetUserMsgHandler() const { return m_userMsgHandler.load(std::memory_order_acquire); }
    MsgHandler GetPostMsgHandler() const { return m_postMsgHandler.load(std::memory_order_acquire); }

    /// The work of the free functions in messaging/callback.h.
    void Invoke(EMsgID id, const CBDataBase* data);
    void RegisterFunction(SimpleCallbackListener::Function function, const TVector<EMsgID>& ids);
    void UnregisterFunction(SimpleCallbackListener::Function function);

private:
    /// Owns its listeners, in order of registration.
    class SimpleListeners : public ListMgr<SimpleCallbackListener> {
    public:
        SimpleListeners() { SetChunkSize(20); }
        ~SimpleListeners() override { Flush(); }
        void DeleteItem(SimpleCallbackListener* listener) override { SimpleCallbackListener::Retire(listener); }
    };

    std::atomic<UIMsgCallback> m_uiMsgCallback{nullptr};
    std::atomic<UIActivityCallback> m_uiActivityCallback{nullptr};
    std::atomic<MsgHandler> m_userMsgHandler{nullptr};
    std::atomic<MsgHandler> m_postMsgHandler{nullptr};
    SimpleListeners m_simpleListeners;  // guarded by the manager lock
};

}  // namespace dorvutil
