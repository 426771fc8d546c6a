#include "dorvutil/messaging/progress.h"

#include <algorithm>
#include <utility>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/messaging/flat_signature.h"
#include "dorvutil/messaging/progress_info.h"
#include "dorvutil/messaging/progress_mgr.h"
#include "dorvutil/time/clock.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kNoEvent = 0xFFFFFFFFu;
constexpr std::uint64_t kMaxSeconds = 0x7FFFFFFF;

std::uint64_t TicksOf(const ORV_FILETIME& time) {
    return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

// Whole seconds; a clock that was set back gives a number beyond every limit.
std::uint64_t SecondsBetween(const ORV_FILETIME& from, const ORV_FILETIME& to) {
    constexpr std::uint64_t kPerSecond = 10'000'000;  // units of 100 nanoseconds
    return (TicksOf(to) - TicksOf(from)) / kPerSecond;
}

// The step counts are unsigned and wrap.
std::uint32_t Unsigned(int n) { return static_cast<std::uint32_t>(n); }

}  // namespace

// The manager's lock, the handle's fields as they are under it, and a reference that keeps the state until the lock is
// left, whatever observers do to the handle.
class CB_Dialog::Access {
public:
    explicit Access(const CB_Dialog& dialog)
        : m_manager(dialog.Lock()), m_info(dialog.GetProgressInfo(m_manager)), m_callback(dialog.m_callback) {
        if (m_info) m_info->AddRef();
    }
    ~Access() {
        if (m_info) m_info->DropRef();
        Unlock(m_manager);
    }
    Access(const Access&) = delete;
    Access& operator=(const Access&) = delete;

    explicit operator bool() const { return m_info != nullptr; }
    ProgressInfo* operator->() const { return m_info; }
    ProgressInfo& operator*() const { return *m_info; }
    Callback GetCallback() const { return m_callback; }

private:
    ProgressMgr* const m_manager;
    ProgressInfo* const m_info;
    const Callback m_callback;
};

ProgressMgr* CB_Dialog::Lock() const {
    ProgressMgr* const manager = GetProgressMgr();
    if (manager) manager->Enter();
    return manager;
}

void CB_Dialog::Unlock(ProgressMgr* manager) {
    if (manager) manager->Exit();
}

// A state of a manager that is gone, though another may have taken its place, is as good as none.
ProgressInfo* CB_Dialog::GetProgressInfo(const ProgressMgr* manager) const {
    return manager && m_info && m_info->Manager() == manager ? m_info : nullptr;
}

void CB_Dialog::NotifyObserver(ProgressBarMsg what) const {
    const Access state(*this);
    if (state) state->Notify(what);
}

// `apply` changes the state and answers whether the observers are told. Returns the callback, to be called by the
// caller now that the lock is left. The handle may be gone by then.
template <class F>
CB_Dialog::Callback CB_Dialog::Change(ProgressBarMsg what, F apply) {
    const Access state(*this);
    if (state && apply(*state)) NotifyObserver(what);
    return state.GetCallback();
}

template <class F>
void CB_Dialog::Change(ProgressBarMsg what, int value, const char* text, F apply) {
    if (const Callback callback = Change(what, apply)) callback(what, value, text);
}

CB_Dialog::CB_Dialog() : CB_Dialog(Callback{nullptr}) {}

CB_Dialog::CB_Dialog(Callback callback, int) : m_callback(callback) {
    ProgressMgr* const manager = Lock();
    if (manager) m_info = manager->CreateAnonymous();
    Unlock(manager);
}

CB_Dialog::CB_Dialog(const char* name) {
    ProgressMgr* const manager = Lock();
    if (manager) m_info = manager->FindOrCreate(ORVustring(name));
    Unlock(manager);
}

CB_Dialog::CB_Dialog(std::uint32_t eventId) {
    ProgressMgr* const manager = Lock();
    if (manager) m_info = manager->FindByEventId(eventId);
    Unlock(manager);
}

CB_Dialog::CB_Dialog(const CB_Dialog& other) : CB_Dialog(&other) {}

CB_Dialog::CB_Dialog(const CB_Dialog* other) {
    ProgressMgr* const manager = Lock();
    if (other) CopyFrom(*other, manager);
    if (manager && !m_info) m_info = manager->CreateAnonymous();
    Unlock(manager);
}

CB_Dialog& CB_Dialog::operator=(const CB_Dialog& other) {
    if (this == &other) return *this;
    ProgressMgr* const manager = Lock();
    Release();
    CopyFrom(other, manager);
    Unlock(manager);
    return *this;
}

CB_Dialog::~CB_Dialog() {
    ProgressMgr* const manager = Lock();
    Release();
    Unlock(manager);
}

void CB_Dialog::CopyFrom(const CB_Dialog& other, ProgressMgr* manager) {
    m_callback = other.m_callback;
    if (const ProgressInfo* const info = other.GetProgressInfo(manager)) m_info = manager->FindOrCreate(info->Name());
}

void CB_Dialog::Release() {
    if (ProgressInfo* const info = std::exchange(m_info, nullptr)) info->DropRef();
}

void CB_Dialog::SetNumSteps(int n) {
    if (n <= 0) return;
    const Callback callback = Change(kProgressSetNumSteps, [n](ProgressInfo& info) {
        info.m_numSteps = Unsigned(n);
        info.RestartTiming(0);
        return true;
    });
    if (!callback) return;
    callback(kProgressResetPosition, 0, nullptr);
    callback(kProgressSetNumSteps, n, nullptr);
}

void CB_Dialog::IncNumSteps(int n) {
    Change(kProgressIncNumSteps, n, nullptr, [n](ProgressInfo& info) {
        info.m_numSteps += Unsigned(n);
        return true;
    });
}

void CB_Dialog::DecNumSteps(int n) {
    Change(kProgressDecNumSteps, n, nullptr, [n](ProgressInfo& info) {
        info.m_numSteps -= Unsigned(n);
        info.m_currStep = std::min(info.m_currStep, info.m_numSteps);
        return true;
    });
}

void CB_Dialog::Step(std::uint32_t n) {
    Change(kProgressStep, static_cast<int>(n), nullptr, [n](ProgressInfo& info) {
        const std::uint64_t step = std::uint64_t{info.m_currStep} + n;
        info.m_currStep = static_cast<std::uint32_t>(std::min<std::uint64_t>(step, info.m_numSteps));
        return true;
    });
}

void CB_Dialog::ResetPosition(std::uint32_t position) {
    Change(kProgressResetPosition, static_cast<int>(position), nullptr, [position](ProgressInfo& info) {
        if (position > info.m_numSteps) return false;
        info.RestartTiming(position);
        return true;
    });
}

// The observers are told first: they still see the step the operation got to.
void CB_Dialog::Close() {
    Callback callback = nullptr;
    int steps = 0;
    {
        const Access state(*this);
        callback = state.GetCallback();
        if (state) {
            NotifyObserver(kProgressClose);
            state->m_currStep = state->m_numSteps;
            steps = static_cast<int>(state->m_numSteps);
        }
    }
    if (callback) callback(kProgressClose, steps, nullptr);
}

int CB_Dialog::GetNumSteps() const {
    const Access state(*this);
    return state ? static_cast<int>(state->m_numSteps) : 0;
}

int CB_Dialog::GetCurrStep() const {
    const Access state(*this);
    return state ? static_cast<int>(state->m_currStep) : 0;
}

std::uint32_t CB_Dialog::GetPercentComplete() const {
    const Access state(*this);
    return state ? state->PercentComplete() : 0;
}

void CB_Dialog::SetMessageLine(int index, const ORVustring& text) {
    const auto what = static_cast<ProgressBarMsg>(kProgressMessageLine1 + index);
    Change(what, 0, text.c_str(), [index, &text](ProgressInfo& info) {
        info.m_messageLines[index] = PrivateCopy(text);
        return true;
    });
}

ORVustring CB_Dialog::GetMessageLine(int index) const {
    const Access state(*this);
    return state ? PrivateCopy(state->m_messageLines[index]) : ORVustring();
}

void CB_Dialog::MessageLine1(const ORVustring& text) { SetMessageLine(0, text); }
void CB_Dialog::MessageLine1(const ORVwstring& text) { SetMessageLine(0, ORVustring(text)); }
void CB_Dialog::MessageLine1() { SetMessageLine(0, ORVustring()); }
void CB_Dialog::MessageLine2(const ORVustring& text) { SetMessageLine(1, text); }
void CB_Dialog::MessageLine2(const ORVwstring& text) { SetMessageLine(1, ORVustring(text)); }
void CB_Dialog::MessageLine2() { SetMessageLine(1, ORVustring()); }
void CB_Dialog::MessageLine3(const ORVustring& text) { SetMessageLine(2, text); }
void CB_Dialog::MessageLine3(const ORVwstring& text) { SetMessageLine(2, ORVustring(text)); }
void CB_Dialog::MessageLine3() { SetMessageLine(2, ORVustring()); }
ORVustring CB_Dialog::GetMessageLine1() const { return GetMessageLine(0); }
ORVustring CB_Dialog::GetMessageLine2() const { return GetMessageLine(1); }
ORVustring CB_Dialog::GetMessageLine3() const { return GetMessageLine(2); }

void CB_Dialog::SetValue1(int value) {
    Change(kProgressSetValue1, value, nullptr, [value](ProgressInfo& info) {
        info.m_value1 = value;
        return true;
    });
}

void CB_Dialog::SetValue2(int value) {
    Change(kProgressSetValue2, value, nullptr, [value](ProgressInfo& info) {
        info.m_value2 = value;
        return true;
    });
}

int CB_Dialog::GetValue1() const {
    const Access state(*this);
    return state ? state->m_value1 : 0;
}

int CB_Dialog::GetValue2() const {
    const Access state(*this);
    return state ? state->m_value2 : 0;
}

void CB_Dialog::Cancel() {
    Change(kProgressCancel, 0, nullptr, [](ProgressInfo& info) {
        info.m_cancelled = true;
        info.m_runEvent.SignalEvent();
        return true;
    });
}

void CB_Dialog::ClearCancelFlag() {
    const Access state(*this);
    if (state) state->m_cancelled = false;
}

bool CB_Dialog::Is_Cancelled() const {
    Callback callback = nullptr;
    {
        const Access state(*this);
        callback = state.GetCallback();
        if (!callback) return state && state->m_cancelled;
    }
    return callback(kProgressAskCancelled, 0, nullptr) != 0;
}

void CB_Dialog::Pause() {
    const Access state(*this);
    if (state) state->m_runEvent.ClearEvent();
}

void CB_Dialog::Unpause() {
    const Access state(*this);
    if (state) state->m_runEvent.SignalEvent();
}

bool CB_Dialog::Is_Paused() const {
    const Access state(*this);
    return state && state->m_runEvent.WaitForEvent(0) == 0;
}

bool CB_Dialog::CanRun(std::uint32_t milliseconds) const {
    if (Is_Cancelled()) return false;
    if (milliseconds == 0) return !Is_Paused() && !Is_Cancelled();
    ProgressMgr* const manager = Lock();
    ProgressInfo* const info = GetProgressInfo(manager);
    if (info) info->AddRef();
    Unlock(manager);
    if (info) {
        // Without the lock, or nobody could unpause; the handle may let the state go meanwhile.
        info->m_runEvent.WaitForEvent(milliseconds);
        ProgressMgr* const now = Lock();
        info->DropRef();
        Unlock(now);
    }
    return !Is_Cancelled();
}

void CB_Dialog::UpdateTimeStats() {
    const Access state(*this);
    if (!state) return;
    ORV_FILETIME now;
    TIME_GetCurrentFileTime(now);
    const std::uint64_t seconds = SecondsBetween(state->m_lastUpdate, now);
    if (seconds <= 1 || seconds > kMaxSeconds) return;
    state->m_lastUpdate = now;
    GetTimeLeftForAction(now);
}

bool CB_Dialog::GetTimeLeftForAction(const ORV_FILETIME& now) {
    const Access state(*this);
    if (!state) return false;
    const std::uint32_t done = state->m_currStep - state->m_startMarker;
    const std::uint64_t elapsed = SecondsBetween(state->m_startTime, now);
    if (done == 0 || elapsed < 1 || elapsed > kMaxSeconds) return false;
    const std::uint32_t left = state->m_numSteps - state->m_currStep;
    const double ratio = static_cast<double>(left) / static_cast<double>(done);
    state->m_secondsRemaining = Truncate(static_cast<double>(elapsed) * ratio);
    return true;
}

std::uint32_t CB_Dialog::GetSecondsRemaining() const {
    const Access state(*this);
    return state ? state->m_secondsRemaining : 0;
}

ORV_FILETIME CB_Dialog::GetEventStartTime() const {
    const Access state(*this);
    return state ? state->m_startTime : ORV_FILETIME{};
}

std::uint32_t CB_Dialog::GetCurrEventStartMarker() const {
    const Access state(*this);
    return state ? state->m_startMarker : 0;
}

std::uint32_t CB_Dialog::GetEventID() const {
    const Access state(*this);
    return state ? state->EventId() : kNoEvent;
}

void CB_Dialog::AddChild(CB_Dialog& child) {
    const Access parentState(*this);
    const Access childState(child);
    // A circle would tell itself of every change for ever, and keep itself alive.
    if (parentState && childState && !childState->IsSelfOrDescendant(&*parentState))
        parentState->AddChild(&*childState);
}

void CB_Dialog::AddObserver(ProgressObserver* observer) {
    const Access state(*this);
    if (state && observer) state->AddObserver(observer);
}

void CB_Dialog::RemoveObserver(ProgressObserver* observer) {
    const Access state(*this);
    if (state) state->RemoveObserver(observer);
}

void CB_Dialog::ForceUpdate() {
    const Access state(*this);
    if (state) state->ForceUpdate();
}

void CB_Dialog::WriteMySig(COrvFileHandleBase* file) const { CB_Dialog_Sig.Write(file); }

bool CB_Dialog::CheckMySig(COrvFileHandleBase* file) const { return CB_Dialog_Sig.Check(file); }

void CB_Dialog::FlattenMe(COrvFileHandleBase* file) const {
    ORVustring name;
    {
        const Access state(*this);
        if (state) name = PrivateCopy(state->Name());
    }
    name.FlattenMe(file);
}

void CB_Dialog::UnflattenMe(COrvFileHandleBase* file) {
    ORVustring name;
    if (!name.UnflattenMe(file) || name.empty()) return;
    ProgressMgr* const manager = Lock();
    if (manager) {
        Release();
        m_info = manager->FindOrCreate(name);
    }
    Unlock(manager);
}

}  // namespace dorvutil
