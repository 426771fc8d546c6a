#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "dorvutil/platform/thread.h"
#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

namespace dorvutil::platform {

constinit thread_local std::uint32_t t_threadId = 0;

namespace {

pthread_once_t g_forkWatched = PTHREAD_ONCE_INIT;

// The thread that goes on in a forked child has another identifier there.
void ForgetThreadId() { t_threadId = 0; }
void WatchForks() { ::pthread_atfork(nullptr, nullptr, ForgetThreadId); }

}  // namespace

std::uint32_t LearnThreadId() {
    ::pthread_once(&g_forkWatched, WatchForks);
    t_threadId = static_cast<std::uint32_t>(::syscall(SYS_gettid));
    return t_threadId;
}

#if __has_include(<sys/single_threaded.h>)
constinit const char* const g_onlyThreadFlag = &::__libc_single_threaded;
#else
namespace {
constexpr char kNotTold = 0;
}
constinit const char* const g_onlyThreadFlag = &kNotTold;
#endif

}  // namespace dorvutil::platform
