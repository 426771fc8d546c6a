#include "dorvutil/concurrency/thread_holder.h"

#include <cstdio>
#include <new>

#include "dorvutil/platform/thread.h"

namespace dorvutil {
namespace {

constexpr std::int32_t kParallelStackSize = 8192;
constexpr std::uint32_t kLongestName = 63;
constexpr std::uint32_t kEveryProcessor = 0xFFFFFFFFu;
constexpr std::int32_t kNoTimeout = -1;

}  // namespace

ThreadHolder::~ThreadHolder() { FlushThreads(true, true, kNoTimeout); }

std::int32_t ThreadHolder::AddNewThread(const char* name, ThreadFunction function, void* argument,
                                        eOrvThreadPriority priority, std::int32_t stackSize, bool deferredStart) {
    return Append(nullptr, name, function, argument, priority, stackSize, deferredStart);
}

// The places come first: a thread that has begun to run cannot be taken back.
std::int32_t ThreadHolder::Append(char* ownName, const char* name, ThreadFunction function, void* argument,
                                  eOrvThreadPriority priority, std::int32_t stackSize, bool deferredStart) {
    MThread* thread = nullptr;
    if (m_threads.Add(&thread, 1) >= 0) {
        const std::uint32_t index = m_threads.Count() - 1;
        const bool named = m_names.Add(&ownName, 1) >= 0;
        if (named) thread = CreateThread(name, function, argument, priority, stackSize, deferredStart);
        if (thread) {
            m_threads[index] = thread;
            return static_cast<std::int32_t>(m_threads.Count());
        }
        if (named) m_names.DeleteAt(index);
        m_threads.DeleteAt(index);
    }
    delete[] ownName;
    return -1;
}

void ThreadHolder::Execute(const char* baseName, ThreadFunction function, void* argument, std::uint32_t count) {
    const bool chosen = count != 0 && count != kEveryProcessor;
    const auto threads = chosen ? count : static_cast<std::uint32_t>(GetDesiredThreadCountForCPU());
    for (std::uint32_t i = 0; i < threads; ++i) {
        char* const name = new (std::nothrow) char[kLongestName + 1];
        if (!name) continue;
        std::snprintf(name, kLongestName + 1, "%s_%d", baseName ? baseName : "", static_cast<std::int32_t>(i));
        Append(name, name, function, argument, eThreadPriorityNormal, kParallelStackSize, false);
    }
    WaitForAllThreadCompletion(kNoTimeout);
}

void ThreadHolder::StartThread(std::uint32_t index) {
    if (IsValidIndex(index)) m_threads[index]->Start();
}

void ThreadHolder::StartAllThreads() {
    for (std::uint32_t i = 0; i < m_threads.Count(); ++i) StartThread(i);
}

std::int32_t ThreadHolder::WaitForThreadStart(std::uint32_t index, std::int32_t timeoutMs) {
    return IsValidIndex(index) ? m_threads[index]->WaitForStart(timeoutMs) : 1;
}

bool ThreadHolder::WaitForAllThreadStart(std::int32_t timeoutMs) {
    bool all = true;
    for (std::uint32_t i = 0; i < m_threads.Count(); ++i) all = WaitForThreadStart(i, timeoutMs) == 1 && all;
    return all;
}

std::int32_t ThreadHolder::WaitForThreadCompletion(std::uint32_t index, std::int32_t timeoutMs) {
    return IsValidIndex(index) ? m_threads[index]->WaitForCompletion(timeoutMs) : 1;
}

bool ThreadHolder::WaitForAllThreadCompletion(std::int32_t timeoutMs) {
    bool all = true;
    for (std::uint32_t i = 0; i < m_threads.Count(); ++i) all = WaitForThreadCompletion(i, timeoutMs) == 1 && all;
    return all;
}

bool ThreadHolder::IsThreadRunning(std::uint32_t index) { return IsValidIndex(index) && m_threads[index]->IsRunning(); }

void ThreadHolder::FlushThreads(bool wait, bool kill, std::int32_t timeoutMs) {
    if (wait) WaitForAllThreadCompletion(timeoutMs);
    for (std::uint32_t i = m_threads.Count(); i-- > 0;) {
        MThread* const thread = m_threads[i];
        // The entry goes in any case, and with it its reference, which a kill leaves to the caller.
        if (thread && !thread->ReleaseOrKill(wait, kill, timeoutMs)) thread->ReleaseRef();
        m_threads.DeleteAt(i);
        // A thread still running does not read its name: the system has its own copy.
        delete[] m_names[i];
        m_names.DeleteAt(i);
    }
}

std::int32_t ThreadHolder::GetDesiredThreadCountForCPU() {
    return static_cast<std::int32_t>(platform::ProcessorCount());
}

bool ThreadHolder::IsValidIndex(std::uint32_t index) const {
    return index < m_threads.Count() && m_threads[index] != nullptr;
}

}  // namespace dorvutil
