#pragma once

#include <cstdint>

/// Operating-system mutexes that survive the death of their holder, anonymous or shared by name between processes.
namespace dorvutil::platform {

struct MutexObject;

enum class MutexWait {
    kAcquired,   ///< The caller holds the mutex.
    kTimedOut,   ///< Another thread holds it.
    kAbandoned,  ///< Its holder ended without releasing it; the caller now holds it, in good order again.
    kFailed,     ///< No such object, or the operating system refused.
};

/// Creates a mutex, or opens the one of that name (UTF-16, any characters; null or empty: anonymous). Recursive for the
/// holding thread. Null when the operating system refuses. The caller ends it with CloseMutex. A name lives as long as
/// some process has it open; a killed process counts as having closed it.
MutexObject* OpenMutex(const char16_t* name);
void CloseMutex(MutexObject* object);

/// Takes the mutex; with `wait` false answers kTimedOut instead of blocking. A null object gives kFailed.
MutexWait LockMutex(MutexObject* object, bool wait);

/// Drops one hold of the calling thread; false when the caller holds none.
bool UnlockMutex(MutexObject* object);

}  // namespace dorvutil::platform
