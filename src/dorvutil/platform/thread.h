#pragma once

#include <cstdint>

/// Threads of the operating system.
namespace dorvutil::platform {

struct ThreadObject;

/// Starts a thread that runs `entry(argument)`. `stackSize` is the least stack in bytes (0: the system's default;
/// values below what the system and its C library need are raised to 1 MiB of reserved, untouched address space).
/// `name` (narrow, may be null) is shown by debuggers, cut to what the system keeps. Null when the system refuses.
/// The caller ends the object with CloseThread; the thread goes on. Any thread may use the object until then.
ThreadObject* StartThread(const char* name, std::int32_t (*entry)(void*), void* argument, std::uint32_t stackSize);

/// Forgets the thread; never blocks. May be called by the thread itself.
void CloseThread(ThreadObject* object);

/// True until the operating system's thread has ended, in whichever way; false for null.
bool IsThreadRunning(ThreadObject* object);

/// Waits until the system's thread has ended (0xFFFFFFFF: no limit); false when the time ran out. Not on itself.
bool WaitForThreadEnd(ThreadObject* object, std::uint32_t timeoutMs);

/// The system's identifier of the thread; 0xFFFFFFFF for null.
std::uint32_t ThreadIdOf(const ThreadObject* object);

/// Sets the priority relative to normal, from -2 (lowest) to +2 (highest). False when the system refuses (raising needs
/// a privilege on some systems) or the thread has ended.
bool SetThreadPriority(ThreadObject* object, int relative);

/// Ends the thread at once, wherever it is, without unwinding its stack: what it held stays held, the allocator's locks
/// included. Returns after it is gone; one that the system cannot interrupt just now (about a second) goes when it next
/// can. Does not return when the thread names itself.
void TerminateThread(ThreadObject* object);

/// The calling thread's identifier, 0 until it first asks; and the slow path that finds it out. Both belong to
/// CurrentThreadId alone (thread_id.cpp).
[[gnu::tls_model("initial-exec")]] extern constinit thread_local std::uint32_t t_threadId;
std::uint32_t LearnThreadId();

/// Identifier of the calling thread, never 0, below 2^31; cached, so it costs a load.
inline std::uint32_t CurrentThreadId() {
    const std::uint32_t id = t_threadId;
    return id != 0 ? id : LearnThreadId();
}

/// Points to a byte that the system keeps: not 0 while the calling thread is the only one of the process, so that
/// atomic operations may be left out. Where the system does not tell, the byte is always 0.
extern const char* const g_onlyThreadFlag;

/// True while no other thread of this process exists.
inline bool IsOnlyThread() { return *g_onlyThreadFlag != 0; }

/// Processors this process may run on, at least 1.
std::uint32_t ProcessorCount();

void SleepMs(std::uint32_t milliseconds);

/// Gives the rest of the time slice away.
void YieldThread();

}  // namespace dorvutil::platform
