#pragma once

#include <atomic>
#include <fstream>
#include <string>
#include <thread>
#include <utility>

#include "dorvutil/platform/thread.h"

namespace dorvutil {

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
        while (!m_done) {
            std::string stat;
            std::getline(std::ifstream(path), stat);
            const auto name = stat.rfind(") ");
            if (name != std::string::npos && stat[name + 2] == 'S') return;
            std::this_thread::yield();
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

}  // namespace dorvutil
