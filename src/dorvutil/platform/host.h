#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// The process, its window system and its address space.
namespace dorvutil::platform {

/// Full path of the running executable with `\` between folders; empty when the system does not tell.
std::u16string ModulePath();
/// That of the loaded module which holds `address`; null: the executable.
std::u16string ModulePath(const void* address);

/// Shows a modal message box and returns the button pressed. Without a desktop: "caption: text" on standard error as
/// one line of UTF-8 (control characters become spaces; cut at 4 KiB), result 1 (OK).
std::int32_t ShowMessageBox(const char16_t* text, const char16_t* caption, std::uint32_t style);

/// Asks the host's message loop to end with `exitCode`. Windows: a quit message to the calling thread. Elsewhere: the
/// request is kept until PostedQuit takes it.
void PostQuit(std::int32_t exitCode);

/// Takes a posted quit request: true, with its code, once for each PostQuit since the last call.
bool PostedQuit(std::int32_t& exitCode);

/// Reserves `size` bytes of address space without memory behind them; null when refused. Ended by ReleaseRange.
void* ReserveRange(std::size_t size);
void ReleaseRange(void* base, std::size_t size);

}  // namespace dorvutil::platform
