#pragma once

#include <atomic>
#include <cstdint>

#include "dorvutil/concurrency/lockable.h"
#include "dorvutil/frame/export.h"
#include "dorvutil/memory/vector.h"
#include "dorvutil/messaging/message_ids.h"

/// The receiving end of messages.
namespace dorvutil {

class CallbackMgr;
class CBDataBase;

/// What a listener is handed: identifier and payload (the sender's; may be null).
struct CBMsgPlusData {
    EMsgID m_id;
    const CBDataBase* m_data;
};

/// The go-between of a listener and the lists that refer to it: a list or a dispatch under way keeps the mediator,
/// never the listener, which may go at any time. Any thread.
template <class L>
class TCallbackMediator : public TLockable<critSec> {
public:
    explicit TCallbackMediator(L* listener) : m_listener(listener) {}
    TCallbackMediator(const TCallbackMediator&) = delete;
    TCallbackMediator& operator=(const TCallbackMediator&) = delete;
    ~TCallbackMediator() override { delete m_adopted; }

    /// Null once the listener has unregistered or died.
    L* Listener() const { return m_listener.load(std::memory_order_acquire); }
    void SetListener(L* listener) { m_listener.store(listener, std::memory_order_release); }
    /// Takes `listener`, which nothing can reach any more but a call under way, to delete it together with itself.
    void Adopt(L* listener) { m_adopted = listener; }

private:
    std::atomic<L*> m_listener;
    L* m_adopted = nullptr;
};

/// Base of listeners: holds one reference to the current mediator, created with it.
template <class Msg>
class TCallbackListener : protected TLocker<CBaseLockable> {
public:
    TCallbackListener();
    TCallbackListener(const TCallbackListener&) = delete;
    TCallbackListener& operator=(const TCallbackListener&) = delete;
    ~TCallbackListener() override = default;

    virtual void Register() = 0;
    virtual void Unregister() = 0;
    virtual void DoCallback(const Msg&) {}
};

extern template class DORVUTIL_API TCallbackListener<CBMsgPlusData>;

/// A listener for one or more identifiers; registered by its constructor, unregistered by its destructor. It is called
/// on the thread that raises the message, with no lock held, and may register, unregister and raise messages itself.
/// Lower priority numbers are called first, equal ones in any order. A listener named twice for an identifier, or
/// registered twice, is called twice. Identifiers from kMessageCount on are ignored.
///
/// Threads: Register and Unregister may be called from any thread. Unregister does not wait for a call that another
/// thread has started: a derived class whose messages are raised elsewhere calls it, and sees to it that no such call
/// is left, before its own part is destroyed. Likewise a message raised elsewhere may reach a listener before the
/// derived constructor has run; a class that must not see that registers itself (DeferRegistration).
class DORVUTIL_API CallbackListener : public TCallbackListener<CBMsgPlusData> {
public:
    using Mediator = TCallbackMediator<CallbackListener>;

    CallbackListener(EMsgID id, int priority);
    /// Copies the identifiers; null or a count below 1 means none.
    CallbackListener(const EMsgID* ids, std::int32_t count, int priority);
    CallbackListener(const TVector<EMsgID>& ids, int priority);
    ~CallbackListener() override;

    /// Joins the list of every identifier. Nothing when there is no manager or memory ran out. After Unregister it
    /// takes its places again, but is not called any more.
    void Register() override;
    /// Leaves every list, for good: no call of this listener starts after this returns, not even by a dispatch under
    /// way.
    void Unregister() override;
    /// Calls OnCallback.
    void DoCallback(const CBMsgPlusData& message) override;
    /// The message arrives here.
    virtual void OnCallback(EMsgID id, const CBDataBase* data);

    int Priority() const { return m_priority; }

    /// Order of the lists: by priority, mediators that have lost their listener last.
    static int CompareCallbackPriorities(Mediator* const* a, Mediator* const* b);

protected:
    struct DeferRegistration {};
    /// For derived classes that call Register at the end of their own constructor.
    CallbackListener(const TVector<EMsgID>& ids, int priority, DeferRegistration);

    Mediator* GetMediator() const { return static_cast<Mediator*>(GetLockable()); }

private:
    void TakeIds(const EMsgID* ids, std::uint32_t count);
    void CreateMediator();

    TVector<EMsgID> m_ids;
    const int m_priority;
};

/// A function as a listener.
class DORVUTIL_API SimpleCallbackListener : public CallbackListener {
public:
    using Function = void (*)(EMsgID, const CBDataBase*);

    SimpleCallbackListener(Function function, const TVector<EMsgID>& ids, int priority = 0);
    ~SimpleCallbackListener() override = default;

    void OnCallback(EMsgID id, const CBDataBase* data) override;
    Function GetFunction() const { return m_function; }

    /// Unregisters `listener` and deletes it as soon as no dispatch can be inside it, at the latest when the last one
    /// under way ends: nobody can wait for the calls of a plain function.
    static void Retire(SimpleCallbackListener* listener);

private:
    const Function m_function;
};

}  // namespace dorvutil
