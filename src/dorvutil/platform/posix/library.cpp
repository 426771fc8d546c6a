#include "dorvutil/platform/library.h"

#include <dlfcn.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "dorvutil/platform/posix/path.h"

namespace dorvutil::platform {
namespace {

// Folder, prefix, name, suffix as one path; empty when it is longer than a path can be.
struct LibraryPath {
    LibraryPath(std::u16string_view folder, std::u16string_view prefix, std::u16string_view name,
                std::u16string_view suffix) {
        std::size_t size = 0;
        for (const std::u16string_view part : {folder, prefix, name, suffix}) {
            if (size + part.size() >= NativePath::kCapacity) return;
            std::copy(part.begin(), part.end(), units + size);
            size += part.size();
        }
        units[size] = u'\0';
    }
    char16_t units[NativePath::kCapacity] = {};
};

void* Open(const char16_t* path) {
    const NativePath native(path);
    // An empty path would stand for the running program.
    return *native.c_str() ? ::dlopen(native.c_str(), RTLD_NOW | RTLD_LOCAL) : nullptr;
}

}  // namespace

void* OpenLibrary(const char16_t* name) {
    if (!name) return nullptr;
    const std::u16string_view path(name);
    const std::size_t separator = path.find_last_of(u"\\/");
    const std::size_t start = separator == std::u16string_view::npos ? 0 : separator + 1;
    const std::u16string_view folder = path.substr(0, start), file = path.substr(start);
    if (file.empty()) return nullptr;
    if (void* const library = Open(name)) return library;
    if (void* const library = Open(LibraryPath(folder, u"lib", file, u".so").units)) return library;
    return Open(LibraryPath(folder, u"", file, u".so").units);
}

void CloseLibrary(void* library) {
    if (library) ::dlclose(library);
}

void* FindFunction(void* library, const char* name) {
    return library && name && *name ? ::dlsym(library, name) : nullptr;
}

}  // namespace dorvutil::platform
