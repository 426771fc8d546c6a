#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// Processes, the application's window, and whether the network answers. Texts are UTF-8. Any thread.
namespace dorvutil {

inline constexpr std::int32_t kProcessNotStarted = -2003;
inline constexpr std::int32_t kProcessWithoutName = -2012;

extern "C" {

/// The application's main window, found by its class "Roadlyn WndCls"; null when there is none, or no desktop.
[[nodiscard]] DORVUTIL_API void* PM_GetRoadlynWindow();

/// Asks that window to close: 0, or -1 when there is none or it cannot be asked.
DORVUTIL_API std::int32_t PM_TerminateProcess();

/// Runs the command line `args`, a space, `exe`: its first word names the program, sought along PATH unless it is a
/// path; words are separated by blanks, and double quotes keep blanks together. The process starts in `folder` (null or
/// empty: the caller's), is not waited for and outlives the caller. 0, kProcessWithoutName for a null `exe`, or
/// kProcessNotStarted.
DORVUTIL_API std::int32_t PM_CreateProcess(const char* exe, const char* folder, const char* args);

/// Tries to connect to the address the host has set, for five seconds at most beside the look-up of its name: 1 when
/// connected, otherwise the system's error code, never 0 or 1. Fails at once while no address is set.
DORVUTIL_API std::uint32_t CheckIntConn();

/// Sets what CheckIntConn asks, "host:port" ("[::1]:80" for IPv6); null or empty: nothing. False, with the address
/// unchanged, for any other form and while there is no system manager. A new set of managers starts without one.
DORVUTIL_API bool SetIntConnAddress(const char* address);

}  // extern "C"

}  // namespace dorvutil
