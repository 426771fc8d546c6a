#pragma once

#include <cstdint>

/// Faults of the processor or the C runtime, delivered to the library for the threads it runs itself.
namespace dorvutil::platform {

/// What a fault is called in the library's vocabulary.
struct Fault {
    std::uint32_t code;   ///< POSIX: the signal number. Windows: the exception code.
    bool breakpoint;      ///< A debugger trap.
    void* systemContext;  ///< The system's own record of the machine state; lives as long as the handler runs.
};

/// Called on the faulting thread, on a stack of its own; may use only what is safe in a signal handler. True takes the
/// fault (the handler normally does not return at all); false leaves it to whoever handled it before.
using FaultHandler = bool (*)(const Fault& fault);

/// Arms the calling thread: its faults go to `handler` until DisarmThreadFaults, which the same thread calls before it
/// ends. Calls do not nest. Faults of threads that are not armed, and signals that another process sends, go where they
/// went before; so does a fault inside the handler. The first call installs the process-wide hook, for good.
void ArmThreadFaults(FaultHandler handler);
void DisarmThreadFaults();

/// Ends the process at once, without exit handlers. POSIX: the exit status is 128 + `code` for a signal number (what a
/// shell reports for a death by that signal), or the low eight bits of any other code.
[[noreturn]] void EndProcess(std::uint32_t code);

/// Has the process ended in that way when it still lives after that time, at least 1 (POSIX: takes the alarm signal and
/// its timer for good). Safe in a fault handler: for what may hang there. The first call counts.
void EndProcessIn(std::uint32_t milliseconds, std::uint32_t code);

}  // namespace dorvutil::platform
