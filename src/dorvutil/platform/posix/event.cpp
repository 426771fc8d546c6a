#include "dorvutil/platform/event.h"

#include <atomic>
#include <bit>
#include <limits>
#include <new>

#include "dorvutil/platform/posix/futex.h"
#include "dorvutil/platform/posix/named_object.h"
#include "dorvutil/platform/wait_word.h"

namespace dorvutil::platform {
namespace {

// The whole state is one word, changed by single atomic operations: nothing is half done when a process is killed, and
// the last thing a setter touches is the operation that lets a waiter go (who may then destroy the event).
//   bit 0        set
//   bits 1..31   manual reset: how often the event was set, so that a waiter who sleeps through "set, reset" is
//   released
//                all the same. Automatic reset: releases handed to sleepers who have not run yet, so that two settings
//                release two sleepers
//   bits 32..63  threads asleep or about to be. Not kept for a named event: a killed sleeper would stay counted
// Threads sleep on the low half.
constexpr std::uint64_t kSet = 1;
constexpr std::uint64_t kTurn = 2;
constexpr std::uint64_t kSleeper = std::uint64_t{1} << 32;
constexpr std::int32_t kEverybody = std::numeric_limits<std::int32_t>::max();

static_assert(std::endian::native == std::endian::little, "the low half lies at the word's own address");
static_assert(std::atomic<std::uint64_t>::is_always_lock_free, "a lock would be held for ever by a killed process");

struct EventState {
    std::atomic<std::uint64_t> word{0};
    bool manualReset = true;  // constant once the event is there
};

constexpr std::uint32_t Low(std::uint64_t word) { return static_cast<std::uint32_t>(word); }
constexpr std::uint32_t Turns(std::uint64_t word) { return Low(word) >> 1; }
constexpr std::uint32_t Sleepers(std::uint64_t word) { return static_cast<std::uint32_t>(word >> 32); }

// One turn more; the manual event's count wraps within its 31 bits.
constexpr std::uint64_t AddTurn(std::uint64_t word) { return (word & ~std::uint64_t{0xFFFFFFFFu}) | Low(word + kTurn); }

bool ConstructShared(void* body, const void* setting) {
    auto* const state = ::new (body) EventState;
    state->manualReset = *static_cast<const bool*>(setting);
    return true;
}

constexpr NamedKind kNamedEvent{'e', sizeof(EventState), ConstructShared, nullptr};

}  // namespace

struct EventObject {
    EventState own;                // of an anonymous event
    NamedObject* named = nullptr;  // of a named one
    EventState* state = &own;

    FutexScope Scope() const { return named ? FutexScope::kShared : FutexScope::kPrivate; }
    bool Take(std::uint64_t& seen) const;
    bool TakeAfterSleep(std::uint64_t& seen, std::uint32_t turnsBefore, bool leave) const;
    std::uint64_t AfterSet(std::uint64_t seen) const;
};

// Takes the event if it is set; `seen` is its word, brought up to date.
bool EventObject::Take(std::uint64_t& seen) const {
    while (seen & kSet) {
        if (state->manualReset) return true;
        if (state->word.compare_exchange_weak(seen, seen & ~kSet, std::memory_order_acq_rel, std::memory_order_acquire))
            return true;
    }
    return false;
}

// For a counted sleeper: takes what it was released for and leaves the count of sleepers. Otherwise false, and it has
// left the count only when `leave` is set.
bool EventObject::TakeAfterSleep(std::uint64_t& seen, std::uint32_t turnsBefore, bool leave) const {
    for (;;) {
        const bool released = state->manualReset ? (seen & kSet) != 0 || Turns(seen) != turnsBefore : Turns(seen) != 0;
        if (!released && !leave) return false;
        const std::uint64_t taken = released && !state->manualReset ? kTurn : 0;
        if (state->word.compare_exchange_weak(seen, seen - kSleeper - taken, std::memory_order_acq_rel,
                                              std::memory_order_acquire))
            return released;
    }
}

std::uint64_t EventObject::AfterSet(std::uint64_t seen) const {
    if (state->manualReset) return seen & kSet ? seen : AddTurn(seen | kSet);
    return !named && Sleepers(seen) > Turns(seen) ? AddTurn(seen) : seen | kSet;
}

namespace {

// Named events have no count of sleepers; everything else is the same.
int SleepNamed(const EventObject& object, std::uint64_t seen, const timespec* deadline) {
    const std::uint32_t turnsBefore = Turns(seen);
    const EventState& state = *object.state;
    for (;;) {
        const bool inTime = FutexWait(&state.word, Low(seen), deadline, FutexScope::kShared);
        seen = state.word.load(std::memory_order_acquire);
        if (object.Take(seen) || (state.manualReset && Turns(seen) != turnsBefore)) return 1;
        if (!inTime) return 0;
    }
}

int SleepCounted(const EventObject& object, std::uint64_t seen, const timespec* deadline) {
    EventState& state = *object.state;
    while (!state.word.compare_exchange_weak(seen, seen + kSleeper, std::memory_order_acq_rel,
                                             std::memory_order_acquire)) {
        if (object.Take(seen)) return 1;
    }
    seen += kSleeper;
    const std::uint32_t turnsBefore = Turns(seen);
    for (;;) {
        // Nobody may sleep on a word with a release in it, be it meant for another: once that is taken and the next one
        // handed out, the word looks the same again, and the call that wakes has passed.
        if (object.TakeAfterSleep(seen, turnsBefore, false)) return 1;
        const bool inTime = FutexWait(&state.word, Low(seen), deadline, FutexScope::kPrivate);
        seen = state.word.load(std::memory_order_acquire);
        if (inTime) continue;
        return object.TakeAfterSleep(seen, turnsBefore, true) ? 1 : 0;
    }
}

}  // namespace

EventObject* OpenEvent(bool manualReset, const char16_t* name) {
    auto* const object = new (std::nothrow) EventObject;
    if (!object) return nullptr;
    object->own.manualReset = manualReset;
    if (!name || !*name) return object;
    object->named = OpenNamed(kNamedEvent, name, &manualReset);
    if (!object->named) {
        delete object;
        return nullptr;
    }
    object->state = static_cast<EventState*>(BodyOf(object->named));
    return object;
}

void CloseEvent(EventObject* object) {
    if (object && object->named) CloseNamed(object->named);
    delete object;
}

int WaitForEvent(EventObject* object, std::uint32_t timeoutMs) {
    if (!object) return -1;
    std::uint64_t seen = object->state->word.load(std::memory_order_acquire);
    if (object->Take(seen)) return 1;
    if (timeoutMs == 0) return 0;
    timespec deadline{};
    if (timeoutMs != kWaitForever) deadline = MonotonicDeadline(timeoutMs);
    const timespec* const limit = timeoutMs != kWaitForever ? &deadline : nullptr;
    return object->named ? SleepNamed(*object, seen, limit) : SleepCounted(*object, seen, limit);
}

void SetEvent(EventObject* object) {
    if (!object) return;
    const FutexScope scope = object->Scope();
    std::atomic<std::uint64_t>& word = object->state->word;
    const bool manualReset = object->state->manualReset;
    std::uint64_t seen = word.load(std::memory_order_relaxed);
    // Written even when nothing changes: who takes the event sees what this thread did before it set it.
    while (!word.compare_exchange_weak(seen, object->AfterSet(seen), std::memory_order_acq_rel,
                                       std::memory_order_relaxed)) {
    }
    // From here on an anonymous event may be gone; its address alone is used.
    const bool somebodySleeps = scope == FutexScope::kShared || Sleepers(seen) != 0;
    if (somebodySleeps) FutexWake(&word, manualReset ? kEverybody : 1, scope);
}

void ResetEvent(EventObject* object) {
    if (object) object->state->word.fetch_and(~kSet, std::memory_order_acq_rel);
}

}  // namespace dorvutil::platform
