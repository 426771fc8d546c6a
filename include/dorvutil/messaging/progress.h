#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/messaging/progress_observer.h"
#include "dorvutil/text/string.h"
#include "dorvutil/time/records.h"

namespace dorvutil {

class COrvFileHandleBase;
class ProgressInfo;
class ProgressMgr;

/// A handle on the progress of a long operation: the one who works reports through it and asks whether to go on, the
/// one who watches reads, pauses and cancels. Handles of the same name share one state; a state lives as long as a
/// handle or a parent state refers to it.
///
/// Every change tells the state's observers, then, with no lock held, the handle's own old-style callback (code, value,
/// text; see ProgressBarMsg). A handle without a state (no such event, no memory, no progress manager) ignores changes,
/// but for the callback, and answers 0, empty or false.
///
/// Any thread may use any handle, several threads the same one; it must not be destroyed meanwhile.
class DORVUTIL_API CB_Dialog {
public:
    /// A non-zero answer to kProgressAskCancelled means cancelled; other answers are not used. Text is UTF-8, or null.
    using Callback = std::int32_t (*)(int code, int value, const char* text);

    CB_Dialog();                                     ///< A new state of its own.
    explicit CB_Dialog(Callback callback, int = 0);  ///< A new state of its own; the number is not used.
    explicit CB_Dialog(const char* name);            ///< The state of that name (UTF-8), created when there is none.
    explicit CB_Dialog(std::uint32_t eventId);       ///< The state with that event identifier, or none.
    /// The other's callback, and the state found by the name of the other's; a new one when the other has none.
    CB_Dialog(const CB_Dialog& other);
    explicit CB_Dialog(const CB_Dialog* other);    ///< Likewise; null: no callback, a new state.
    CB_Dialog& operator=(const CB_Dialog& other);  ///< Likewise, but left without a state when the other has none.
    ~CB_Dialog();

    /// Starts an operation of `n` steps at step 0: starts the timing, takes a cancellation back. Nothing for n below 1.
    void SetNumSteps(int n);
    void IncNumSteps(int n);
    void DecNumSteps(int n);     ///< Pulls the current step down with it.
    void Step(std::uint32_t n);  ///< Stops at the number of steps.
    /// Goes to step `position` when there are that many: restarts the timing there, takes a cancellation back.
    void ResetPosition(std::uint32_t position);
    void Close();  ///< Finishes: the current step becomes the number of steps.
    int GetNumSteps() const;
    int GetCurrStep() const;
    /// Steps done of this state and its direct children, in per cent of all of theirs, cut to a whole number.
    std::uint32_t GetPercentComplete() const;

    void MessageLine1(const ORVustring& text);
    void MessageLine1(const ORVwstring& text);
    void MessageLine1();
    void MessageLine2(const ORVustring& text);
    void MessageLine2(const ORVwstring& text);
    void MessageLine2();
    void MessageLine3(const ORVustring& text);
    void MessageLine3(const ORVwstring& text);
    void MessageLine3();
    ORVustring GetMessageLine1() const;
    ORVustring GetMessageLine2() const;
    ORVustring GetMessageLine3() const;

    void SetValue1(int value);
    void SetValue2(int value);
    int GetValue1() const;
    int GetValue2() const;

    void Cancel();  ///< Also wakes a paused operation, to see it.
    void ClearCancelFlag();
    bool Is_Cancelled() const;  ///< The callback's answer; without a callback the state's.
    void Pause();
    void Unpause();
    bool Is_Paused() const;
    /// Whether the operation may go on: false when cancelled, and for 0 milliseconds when paused. Otherwise waits while
    /// paused, but for at most `milliseconds` (0xFFFFFFFF: no limit), holding no lock.
    bool CanRun(std::uint32_t milliseconds) const;

    /// Works out the seconds remaining anew when at least 2 seconds have passed since the last time.
    void UpdateTimeStats();
    std::uint32_t GetSecondsRemaining() const;
    ORV_FILETIME GetEventStartTime() const;
    std::uint32_t GetCurrEventStartMarker() const;  ///< The step at which timing started.

    std::uint32_t GetEventID() const;  ///< 0xFFFFFFFF without a state.
    /// Counts the child's steps into this state's percentage and its progress into the notices to this state's
    /// observers; this state keeps the child's. Nothing when that would make a state its own descendant.
    void AddChild(CB_Dialog& child);
    /// Observers are not owned: they are removed before they go. One added twice is told twice.
    void AddObserver(ProgressObserver* observer);
    void RemoveObserver(ProgressObserver* observer);
    void ForceUpdate();

    /// The handle in a file: the signature record, then the name of the state (16-bit little-endian length and bytes).
    void WriteMySig(COrvFileHandleBase* file) const;
    bool CheckMySig(COrvFileHandleBase* file) const;
    void FlattenMe(COrvFileHandleBase* file) const;
    /// Takes the state of the name read, created when needed; an empty or unreadable name changes nothing.
    void UnflattenMe(COrvFileHandleBase* file);

private:
    class Access;

    ProgressMgr* Lock() const;
    static void Unlock(ProgressMgr* manager);
    ProgressInfo* GetProgressInfo(const ProgressMgr* manager) const;
    void NotifyObserver(ProgressBarMsg what) const;
    template <class F>
    Callback Change(ProgressBarMsg what, F apply);
    template <class F>
    void Change(ProgressBarMsg what, int value, const char* text, F apply);
    void SetMessageLine(int index, const ORVustring& text);
    ORVustring GetMessageLine(int index) const;
    void CopyFrom(const CB_Dialog& other, ProgressMgr* manager);
    void Release();
    bool GetTimeLeftForAction(const ORV_FILETIME& now);

    Callback m_callback = nullptr;
    ProgressInfo* m_info = nullptr;  // one reference; both fields guarded by the manager's lock
};

}  // namespace dorvutil
