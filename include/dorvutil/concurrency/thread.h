#pragma once

#include <atomic>
#include <cstdint>

#include "dorvutil/concurrency/event.h"
#include "dorvutil/concurrency/locks.h"
#include "dorvutil/frame/export.h"

/// Named, prioritised, reference-counted threads whose start can be deferred.
namespace dorvutil {

namespace platform {
struct ThreadObject;
}

/// What a thread runs: its argument in, its result out.
using ThreadFunction = std::int32_t (*)(void*);

/// Priority relative to the normal one. Other values than these leave the priority as it is, as normal does.
enum eOrvThreadPriority : std::int32_t {
    eThreadPriorityLowest = 0,
    eThreadPriorityBelowNormal = 1,
    eThreadPriorityNormal = 2,
    eThreadPriorityAboveNormal = 3,
    eThreadPriorityHighest = 4,
};

/// A thread, independent of the operating system. It lives on the heap as long as somebody holds a reference: its
/// creator is born with one, the thread holds one from Start until it ends. It destroys itself with the last one.
/// Any thread that holds a reference may call anything here, at any time. Time-outs are milliseconds; a negative one
/// means no limit.
class DORVUTIL_API MThread {
public:
    /// `name` is not copied and may be null. `stackSize` is in bytes; 0, or less than the system needs, gives the
    /// system's own. Unless `deferredStart` is set the thread runs `function(argument)` at once, otherwise from Start.
    MThread(const char* name, ThreadFunction function, void* argument, eOrvThreadPriority priority,
            std::int32_t stackSize, bool deferredStart);
    MThread(const MThread&) = delete;
    MThread& operator=(const MThread&) = delete;

    virtual bool IsRunning() { return true; }       ///< Whether the thread has not ended yet.
    virtual std::int32_t PlatformEntryPoint() = 0;  ///< Runs the thread function; its result.

protected:
    virtual ~MThread();

public:
    virtual std::int32_t PlatformCreateThread() = 0;  ///< Creates the system's thread: 1 created, 0 refused.
    /// Ends the thread at once, wherever it is: what it held stays held. The caller's reference stays; the thread's own
    /// goes with it. Whoever waits for completion is released.
    virtual void Kill() = 0;

    /// Lets a deferred thread go; later calls change nothing. Returns this.
    MThread* Start();

    MThread* ObtainRef();   ///< Adds a reference; returns this.
    MThread* ReleaseRef();  ///< Drops one; always null. A deferred thread that nobody started ends without a trace.

    /// Drops the caller's reference. With `wait` it first waits for completion; if that does not come within
    /// `timeoutMs` and `kill` is set it kills the thread instead and the caller KEEPS the reference. Always null.
    MThread* Release(bool wait, bool kill, std::int32_t timeoutMs);

    /// 1 when the function has returned or the thread is not running, 0 time-out, -1 failure.
    std::int32_t WaitForCompletion(std::int32_t timeoutMs);
    /// 1 when the thread has begun to run (it may have ended since), 0 time-out, -1 failure.
    std::int32_t WaitForStart(std::int32_t timeoutMs) const;

    const char* GetName() const { return m_name; }  ///< The pointer given at construction.

    /// What the system's thread runs: waits for Start, then runs the function. For the platform class.
    std::int32_t EntryPoint();

protected:
    friend class ThreadHolder;

    /// Release, telling the two ends apart: false when the thread was killed and the reference is still the caller's.
    bool ReleaseOrKill(bool wait, bool kill, std::int32_t timeoutMs);
    bool DropThreadReference();  ///< Takes the thread's own reference out of m_threadHolds: whether there was one.
    void ForgetThread();  ///< No thread will ever run the function, or go on running it. The caller holds a reference.
    bool CancelStart();   ///< Sends a thread that still waits for Start home: whether there was anything to send.

    const char* const m_name;
    const ThreadFunction m_function;
    void* const m_argument;
    const eOrvThreadPriority m_priority;
    const std::int32_t m_stackSize;
    const bool m_deferredStart;
    std::atomic<bool> m_started{false};  // changed under m_lock
    std::atomic<std::int32_t> m_references{1};
    event m_startEvent{true};
    event m_enteredEvent{true};
    event m_doneEvent{true};
    critSec m_lock;                        // guards m_started, m_threadHolds and the platform class's handle
    bool m_threadHolds = false;            // the thread's own reference is among m_references
    std::atomic<bool> m_cancelled{false};  // the object is going away, unstarted
};

/// The thread of the operating system. Its constructor starts the system's thread, which calls virtual operations of
/// this class at once: therefore no class derives from it. A fault of the processor inside the thread function ends the
/// process with the fault's code, after the crash reporter has written the call stack; a breakpoint goes to the
/// debugger.
class DORVUTIL_API RWinThread final : public MThread {
public:
    /// As MThread. When the system refuses, the object has no thread: IsRunning is false and waits answer 1 at once.
    RWinThread(const char* name, ThreadFunction function, void* argument, eOrvThreadPriority priority,
               std::int32_t stackSize, bool deferredStart);

    bool IsRunning() override;
    std::int32_t PlatformEntryPoint() override;
    std::int32_t PlatformCreateThread() override;  ///< Called by the constructor; 0 for a thread that exists.
    void Kill() override;
    /// Ends the process at once, without exit handlers, with the code of the recorded fault.
    virtual void HandleThreadExcept();

    /// Records a fault of this thread. 0 for a breakpoint (kBreakpointCode): whoever comes next shall have it.
    /// Otherwise the call stack is written and the answer is 1: HandleThreadExcept follows. Runs on the faulting
    /// thread, in the fault handler.
    std::int32_t ThreadExceptionFilter(std::uint32_t code, void* exceptionPointers);

    std::uint32_t GetOsThreadId() const;  ///< The system's identifier; 0xFFFFFFFF without a thread.

    static constexpr std::uint32_t kBreakpointCode = 0x80000003u;

private:
    ~RWinThread() override;

    void* m_exceptionPointers = nullptr;  // the system's machine state; valid while the fault is handled
    std::uint32_t m_exceptionCode = 0;
    std::uint32_t m_threadId = 0xFFFFFFFFu;
    platform::ThreadObject* m_handle = nullptr;  // owned
};

/// Creates an RWinThread; its creator owns one reference. Null when memory ran out.
[[nodiscard]] DORVUTIL_API MThread* CreateThread(const char* name, ThreadFunction function, void* argument,
                                                 eOrvThreadPriority priority, std::int32_t stackSize,
                                                 bool deferredStart);

/// The operating system's identifier of the calling thread.
DORVUTIL_API std::uint32_t GetThreadID();

}  // namespace dorvutil
