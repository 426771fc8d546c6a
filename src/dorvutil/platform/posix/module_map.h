#pragma once

#include <cstdint>

/// Which program or library an address belongs to. May be used in a fault handler.
namespace dorvutil::platform {

struct ModuleSpan {
    const char* path;     ///< Of the file, as the loader knows it; lives as long as the module is loaded.
    std::uintptr_t bias;  ///< What the loader added to the addresses in the file.
};

/// False for an address outside them all. Where the C library has no lock-free way, takes the loader's lock.
bool FindModule(std::uintptr_t address, ModuleSpan& module);

}  // namespace dorvutil::platform
