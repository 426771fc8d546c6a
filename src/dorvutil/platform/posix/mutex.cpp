#include "dorvutil/platform/mutex.h"

#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <new>

#include "dorvutil/platform/posix/named_object.h"
#include "dorvutil/platform/thread.h"

namespace dorvutil::platform {
namespace {

// `owner` and `depth` only spare the C library releases it would refuse; who holds the mutex is for `native` to say.
struct MutexState {
    pthread_mutex_t native;
    std::atomic<std::uint32_t> owner{0};
    std::uint32_t depth = 0;  // touched by the holder only
};

bool Construct(pthread_mutex_t& mutex, bool shared) {
    pthread_mutexattr_t attributes;
    if (::pthread_mutexattr_init(&attributes) != 0) return false;
    const bool made = ::pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE) == 0 &&
                      ::pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST) == 0 &&
                      (!shared || ::pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED) == 0) &&
                      ::pthread_mutex_init(&mutex, &attributes) == 0;
    ::pthread_mutexattr_destroy(&attributes);
    return made;
}

bool Unlock(MutexState& state) {
    if (state.owner.load(std::memory_order_relaxed) != CurrentThreadId()) return false;
    if (--state.depth == 0) state.owner.store(0, std::memory_order_relaxed);
    return ::pthread_mutex_unlock(&state.native) == 0;
}

// Ends the calling thread's holds. A mutex is in a list of its holder, through its own memory, and must leave that list
// before the memory goes.
void LetGo(void* body) {
    while (Unlock(*static_cast<MutexState*>(body))) {
    }
}

bool ConstructShared(void* body, const void*) { return Construct((::new (body) MutexState)->native, true); }

constexpr NamedKind kNamedMutex{'m', sizeof(MutexState), ConstructShared, LetGo};

bool IsHeld(pthread_mutex_t& mutex) {
    if (::pthread_mutex_trylock(&mutex) == EBUSY) return true;
    ::pthread_mutex_unlock(&mutex);
    return false;
}

}  // namespace

struct MutexObject {
    MutexState own;                // of an anonymous mutex
    NamedObject* named = nullptr;  // of a named one
    MutexState* state = &own;
};

MutexObject* OpenMutex(const char16_t* name) {
    auto* const object = new (std::nothrow) MutexObject;
    if (!object) return nullptr;
    bool made = false;
    if (name && *name) {
        object->named = OpenNamed(kNamedMutex, name, nullptr);
        made = object->named != nullptr;
        if (made) object->state = static_cast<MutexState*>(BodyOf(object->named));
    } else {
        made = Construct(object->own.native, false);
    }
    if (made) return object;
    delete object;
    return nullptr;
}

void CloseMutex(MutexObject* object) {
    if (!object) return;
    if (object->named) {
        CloseNamed(object->named);
    } else {
        LetGo(&object->own);
        if (IsHeld(object->own.native)) return;  // by another thread: better to lose the memory than to break its list
        ::pthread_mutex_destroy(&object->own.native);
    }
    delete object;
}

MutexWait LockMutex(MutexObject* object, bool wait) {
    if (!object) return MutexWait::kFailed;
    MutexState& state = *object->state;
    const int result = wait ? ::pthread_mutex_lock(&state.native) : ::pthread_mutex_trylock(&state.native);
    if (result == EBUSY) return MutexWait::kTimedOut;
    if (result != 0 && result != EOWNERDEAD) return MutexWait::kFailed;
    if (result == EOWNERDEAD) {
        ::pthread_mutex_consistent(&state.native);
        state.depth = 0;
    }
    ++state.depth;
    state.owner.store(CurrentThreadId(), std::memory_order_relaxed);
    return result == 0 ? MutexWait::kAcquired : MutexWait::kAbandoned;
}

bool UnlockMutex(MutexObject* object) { return object && Unlock(*object->state); }

}  // namespace dorvutil::platform
