#pragma once

#include <fstream>
#include <sstream>
#include <string>

#include "dorvutil/concurrency/event.h"
#include "dorvutil/concurrency/thread.h"

/// What the thread tests share. A sanitizer keeps its own account of threads and faults, which some tests would upset.
#if defined(__SANITIZE_THREAD__)
#define DORVUTIL_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define DORVUTIL_TSAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define DORVUTIL_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define DORVUTIL_ASAN 1
#endif
#endif
#ifndef DORVUTIL_TSAN
#define DORVUTIL_TSAN 0
#endif
#ifndef DORVUTIL_ASAN
#define DORVUTIL_ASAN 0
#endif

namespace dorvutil::test {

inline constexpr bool kThreadSanitizer = DORVUTIL_TSAN != 0;
inline constexpr bool kAnySanitizer = DORVUTIL_TSAN != 0 || DORVUTIL_ASAN != 0;
inline constexpr std::int32_t kSoonMs = 20'000;  // long enough for any machine, short enough to report a hang

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

/// The name the system keeps for the calling thread.
inline std::string SystemThreadName() {
    std::ifstream file("/proc/thread-self/comm");
    std::string name;
    std::getline(file, name);
    return name;
}

/// The calling thread's nice value.
inline int SystemNiceValue() {
    std::ifstream file("/proc/thread-self/stat");
    std::string text;
    std::getline(file, text);
    std::istringstream fields(text.substr(text.rfind(')') + 1));
    std::string skipped;
    for (int i = 0; i < 16; ++i) fields >> skipped;  // state … priority
    int nice = 99;
    fields >> nice;
    return nice;
}

}  // namespace dorvutil::test
