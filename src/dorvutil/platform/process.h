#pragma once

#include <cstdint>

/// Processes, and the desktop they meet on. Texts are UTF-16. Any thread.
namespace dorvutil::platform {

std::uint32_t ProcessId();

/// Runs a command line: the words of `arguments`, then those of `file`, whose `\` separate folders. The first word of
/// all names the program, sought along PATH unless it has a folder. Words are separated by blanks; double quotes keep
/// blanks together and are dropped. The process starts in `folder` (null or empty: the caller's) and is on its own.
/// False when it could not be started, also for 64 words and more and for a folder that is not there.
bool StartProcess(const char16_t* arguments, const char16_t* file, const char16_t* folder);

/// Opens a file or a URL with the desktop's program for it; true when that could be started, false without a desktop.
bool OpenWithDesktop(const char16_t* target);

/// The window of that class; null when there is none, or no desktop that could tell.
void* FindWindowOfClass(const char16_t* windowClass);

/// Asks a window to close; false when the request could not be posted.
bool PostCloseToWindow(void* window);

}  // namespace dorvutil::platform
