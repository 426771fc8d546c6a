#pragma once

/// Shared libraries, loaded at run time.
namespace dorvutil::platform {

/// Loads a library and runs its initialisation; null when there is none or it cannot be loaded. `name` is UTF-16,
/// without the system's prefix and suffix, and may have a folder before it. Windows: name.DLL. POSIX: the first of
/// `name` as it stands, libname.so and name.so that can be loaded. Each success is balanced by one CloseLibrary.
void* OpenLibrary(const char16_t* name);
void CloseLibrary(void* library);

/// Address of an exported function (UTF-8 name); null when there is none, for null arguments and for an empty name.
void* FindFunction(void* library, const char* name);

}  // namespace dorvutil::platform
