#include "dorvutil/frame/dynamic_library.h"

#include <cstdlib>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/frame/library_hash.h"
#include "dorvutil/frame/message_screen.h"
#include "dorvutil/platform/library.h"
#include "dorvutil/text/string.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kErrorStyle = 0x10;

ORVustring FailureText(const char* libraryName, const char* functionName) {
    if (!functionName) return libraryName ? ORVustring("Could not locate ") += libraryName : "Internal Error";
    ORVustring text("Missing entry point \"");
    text += functionName;
    text += "\" in library ";
    if (libraryName) text += libraryName;
    return text;
}

void ReportFailure(std::uint32_t flags, const char* libraryName, const char* functionName) {
    if (flags & eDynaReport) {
        const ORVwstring text(FailureText(libraryName, functionName));
        MessageScreen(text, "Fatal Error", kErrorStyle, false, true);
    }
    if (flags & eDynaEndProcess) std::exit(0);
}

}  // namespace

HMODULE DynaLoad(const char* libraryName, std::uint32_t flags) {
    HMODULE module = nullptr;
    CLoadedLibraryHash* const libraries = GetLoadedLibraryHash();
    if (libraries && libraryName && libraries->Load(libraryName, (flags & eDynaRememberFailure) != 0, module)) {
        return module;
    }
    ReportFailure(flags, libraryName, nullptr);
    return nullptr;
}

void* DynaLink(const char* libraryName, const char* functionName, std::uint32_t flags, std::uint32_t,
               HMODULE* moduleOut) {
    void* const module = DynaLoad(libraryName, flags);
    if (moduleOut) *moduleOut = module;
    void* const address =
        module && functionName ? GetDllFunctionAddress(module, ORVwstring(ORVustring(functionName))) : nullptr;
    if (!address) ReportFailure(flags, libraryName, functionName);
    return address;
}

void* GetDllFunctionAddress(HMODULE module, const ORVwstring& functionName) {
    return platform::FindFunction(module, functionName.c_str());
}

void DynaUnload(...) {}

}  // namespace dorvutil
