#pragma once

#include <atomic>
#include <cstdint>

/// Blocking on a 32-bit word of this process: the primitive under the library's own critical sections and events.
namespace dorvutil::platform {

/// A wait with no time-out.
inline constexpr std::uint32_t kWaitForever = 0xFFFFFFFFu;

/// Blocks while `word` holds `expected`, for at most `timeoutMs`. Returns false only when the time ran out; true means
/// "look again": the word may or may not have changed.
bool WaitOnWord(const std::atomic<std::uint32_t>& word, std::uint32_t expected, std::uint32_t timeoutMs);

/// Wakes one, respectively every, thread of this process that waits on `word`.
void WakeOneOnWord(const std::atomic<std::uint32_t>& word);
void WakeAllOnWord(const std::atomic<std::uint32_t>& word);

/// Tells the processor that the caller looks at a word again and again.
inline void SpinPause() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

}  // namespace dorvutil::platform
