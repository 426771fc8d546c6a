#pragma once

#include <cstdint>

/// The seam between a crashing thread and whoever can write its call stack, which lies in a layer above.
namespace dorvutil {

/// Writes the call stack of the calling thread, which faulted with `code` in the machine state `exceptionPointers`
/// (platform::Fault::systemContext). Called in the fault handler: only what is safe there. Threads that crash together
/// are in it together: a reporter whose output must not mix takes them one after the other. Once the first thread is in
/// it the process has half a minute left.
using CrashReporter = void (*)(std::uint32_t code, void* exceptionPointers);

/// Sets the reporter of the process, null for none; returns the one before. Any thread.
CrashReporter SetCrashReporter(CrashReporter reporter);

}  // namespace dorvutil
