#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// Libraries that may be missing on a machine, loaded by name at run time. Each is loaded once, however often and by
/// whomever it is asked for, and stays until the registry is torn down: one that exports a function `<name>_cleanup`
/// (the name as first asked for) has it called, without arguments, before it is unloaded. Any thread.
namespace dorvutil {

class ORVwstring;

/// The operating system's handle of a loaded library.
using HMODULE = void*;

/// What DynaLoad and DynaLink do about a failure, as bits.
enum eDynaFlags : std::uint32_t {
    eDynaReport = 1,           ///< Show a message screen.
    eDynaEndProcess = 2,       ///< End the process, with exit code 0 and its exit handlers.
    eDynaRememberFailure = 4,  ///< Look for the library this once: later requests give null at once and in silence.
};

/// Loads `libraryName`, UTF-8, without prefix and extension; null when it cannot be had, which `flags` tells how to
/// take. Names that differ in case only are one library. Windows looks for NAME.DLL; the others for `name` as it
/// stands, libname.so and name.so, and then for the same in capitals and in small letters. The name may have a folder
/// before it.
DORVUTIL_API HMODULE DynaLoad(const char* libraryName, std::uint32_t flags);

/// The address of a function of a library, loaded as by DynaLoad; null when there is no such library or function, which
/// is a failure that `flags` tells how to take. `moduleOut`, unless null, receives the library. The fourth argument is
/// not used.
[[nodiscard]] DORVUTIL_API void* DynaLink(const char* libraryName, const char* functionName, std::uint32_t flags,
                                          std::uint32_t unused, HMODULE* moduleOut);

/// The address of a function of a loaded library; null when there is none, or no library.
[[nodiscard]] DORVUTIL_API void* GetDllFunctionAddress(HMODULE module, const ORVwstring& functionName);

/// Does nothing, whatever it is given: libraries stay until the registry is torn down.
DORVUTIL_API void DynaUnload(...);

}  // namespace dorvutil
