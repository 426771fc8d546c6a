#pragma once

#include <cstdint>

/// Operating-system events, anonymous or shared by name between processes.
namespace dorvutil::platform {

struct EventObject;

/// Creates a cleared event, or opens the one of that name, whose kind then stays what its creator chose (UTF-16, any
/// characters; null or empty: anonymous). A manual-reset event stays set until it is reset and releases every waiter;
/// an auto-reset event releases one waiter and clears itself. Null when the operating system refuses. The caller ends
/// it with CloseEvent. A name lives as long as some process has it open; a killed process counts as having closed it.
EventObject* OpenEvent(bool manualReset, const char16_t* name);
void CloseEvent(EventObject* object);

/// Waits for at most `timeoutMs` (0xFFFFFFFF: no limit): 1 signalled, 0 time-out, -1 failure (null object).
int WaitForEvent(EventObject* object, std::uint32_t timeoutMs);

void SetEvent(EventObject* object);
void ResetEvent(EventObject* object);

}  // namespace dorvutil::platform
