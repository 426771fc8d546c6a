#pragma once

#include <cstdint>

#include "dorvutil/concurrency/thread.h"
#include "dorvutil/frame/export.h"
#include "dorvutil/memory/vector.h"

namespace dorvutil {

/// A list of threads in the order they were added, and parallel work on them. It owns one reference to each. Not
/// synchronised: one thread at a time uses a holder. Time-outs are milliseconds; a negative one means no limit. An
/// index that holds no thread counts as a thread that has finished.
class DORVUTIL_API ThreadHolder {
public:
    ThreadHolder() = default;
    ThreadHolder(const ThreadHolder&) = delete;
    ThreadHolder& operator=(const ThreadHolder&) = delete;
    ~ThreadHolder();  ///< FlushThreads(true, true, -1): waits for every thread.

    /// Adds a new thread; parameters as those of CreateThread. Returns the number of threads now held, or -1.
    std::int32_t AddNewThread(const char* name, ThreadFunction function, void* argument, eOrvThreadPriority priority,
                              std::int32_t stackSize, bool deferredStart);

    /// Runs `function(argument)` on `count` new threads (0 or 0xFFFFFFFF: one for each processor) named `baseName`_0,
    /// `baseName`_1 … (cut to 63 bytes), and waits for them and for every thread held before. They stay in the holder.
    void Execute(const char* baseName, ThreadFunction function, void* argument, std::uint32_t count);

    void StartThread(std::uint32_t index);
    void StartAllThreads();

    /// 1 when the thread has begun to run, 0 time-out, -1 failure.
    std::int32_t WaitForThreadStart(std::uint32_t index, std::int32_t timeoutMs);
    /// Waits for each in turn, each with the full time-out: whether all have begun.
    bool WaitForAllThreadStart(std::int32_t timeoutMs);
    /// 1 when the thread has finished, 0 time-out, -1 failure.
    std::int32_t WaitForThreadCompletion(std::uint32_t index, std::int32_t timeoutMs);
    /// Waits for each in turn, each with the full time-out: whether all have finished.
    bool WaitForAllThreadCompletion(std::int32_t timeoutMs);

    bool IsThreadRunning(std::uint32_t index);

    /// Releases every thread (see MThread::Release) and empties the holder. With `wait` it first waits for all of them;
    /// what does not finish in time is killed with `kill`, otherwise left running on its own.
    void FlushThreads(bool wait, bool kill, std::int32_t timeoutMs);

    /// The number of threads that keeps every processor busy, at least 1.
    static std::int32_t GetDesiredThreadCountForCPU();

private:
    bool IsValidIndex(std::uint32_t index) const;
    std::int32_t Append(char* ownName, const char* name, ThreadFunction function, void* argument,
                        eOrvThreadPriority priority, std::int32_t stackSize, bool deferredStart);

    TVector<MThread*> m_threads;  // one reference each
    TVector<char*> m_names;       // same indexes: the names that Execute made (owned), null for the callers' own
};

}  // namespace dorvutil
