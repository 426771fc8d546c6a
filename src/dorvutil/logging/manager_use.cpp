#include "dorvutil/logging/manager_use.h"

#include "dorvutil/frame/accessors.h"
#include "dorvutil/platform/thread.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kCounters = 16;
constexpr std::size_t kCacheLine = 64;

// Spread over several, so that publishers on different processors do not pass one counter to and fro. Outlives every
// manager.
struct alignas(kCacheLine) UseCounter {
    std::atomic<std::uint32_t> m_uses{0};
};
constinit UseCounter g_counters[kCounters];

std::atomic<std::uint32_t>& CounterOfThread() { return g_counters[platform::CurrentThreadId() % kCounters].m_uses; }

}  // namespace

LogManagerUse::LogManagerUse() {
    // Asked for before the use counts: this may set the registry up, and wait for a lock that a tear-down holds.
    if (!GetLogMgr()) return;
    // Either the awaiting thread reads the counter after this change, or this thread reads the slot after it has been
    // emptied: two changes of one counter are ordered, and each sees what was done before the one ahead of it.
    m_uses = &CounterOfThread();
    m_uses->fetch_add(1, std::memory_order_acq_rel);
    m_manager = LogMgrAsItIs();
}

LogManagerUse::~LogManagerUse() {
    if (m_uses) m_uses->fetch_sub(1, std::memory_order_release);
}

void AwaitLogManagerUnused() {
    for (UseCounter& counter : g_counters) {
        while (counter.m_uses.fetch_add(0, std::memory_order_acq_rel) != 0) platform::SleepMs(1);
    }
}

}  // namespace dorvutil
