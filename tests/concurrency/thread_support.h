#pragma once

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <list>
#include <string>
#include <thread>
#include <utility>

#include "dorvutil/concurrency/event.h"
#include "dorvutil/concurrency/thread.h"
#include "dorvutil/platform/thread.h"

extern "C" [[gnu::weak]] void __tsan_init();
extern "C" [[gnu::weak]] void __asan_init();

namespace dorvutil::test {

// A sanitizer keeps its own account of threads and faults, which some tests would upset.
inline const bool kThreadSanitizer = __tsan_init != nullptr;
inline const bool kAnySanitizer = kThreadSanitizer || __asan_init != nullptr;
inline constexpr std::int32_t kSoonMs = 20'000;  // long enough for any machine, short enough to report a hang

/// A name of this run alone, so that two runs of the suite do not meet.
inline std::string UniqueName(const std::string& topic) {
    return "dorvutil test/" + std::to_string(::getpid()) + " " + topic;
}

/// A thread that runs `work`, which is expected to block.
class SleepingThread {
public:
    template <class F>
    explicit SleepingThread(F work)
        : m_thread([this, work = std::move(work)] {
              m_id = platform::CurrentThreadId();
              work();
              m_done = true;
          }) {}
    ~SleepingThread() { Join(); }

    /// Returns once the system shows the thread asleep, or its work is done.
    void WaitUntilAsleep() const {
        while (m_id == 0) std::this_thread::yield();
        const std::string path = "/proc/self/task/" + std::to_string(m_id) + "/stat";
        for (std::string stat; !m_done && stat.find(") S") == std::string::npos; std::this_thread::yield()) {
            std::getline(std::ifstream(path), stat);
        }
    }

    bool Done() const { return m_done; }
    void Join() {
        if (m_thread.joinable()) m_thread.join();
    }
    std::thread::native_handle_type Handle() { return m_thread.native_handle(); }

private:
    std::atomic<std::uint32_t> m_id{0};
    std::atomic<bool> m_done{false};
    std::thread m_thread;
};

using Sleepers = std::list<SleepingThread>;

/// A library thread of normal priority; the caller has its reference.
inline MThread* Create(ThreadFunction function, void* argument, bool deferred, const char* name = "tested",
                       std::int32_t stackSize = 8192) {
    return CreateThread(name, function, argument, eThreadPriorityNormal, stackSize, deferred);
}

/// A thread that says it is there, waits at the gate, and says that it went through.
struct GateKeeper {
    event inside;
    event open;
    event through;

    static std::int32_t Run(void* self) {
        auto& gate = *static_cast<GateKeeper*>(self);
        gate.inside.SignalEvent();
        gate.open.WaitForEvent(kWaitForever);
        gate.through.SignalEvent();
        return 0;
    }
    bool Entered() const { return inside.WaitForEvent(kSoonMs) == 1; }
    bool Through() const { return through.WaitForEvent(kSoonMs) == 1; }
};

}  // namespace dorvutil::test
