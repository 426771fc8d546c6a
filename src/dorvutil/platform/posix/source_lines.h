#pragma once

#include <cstdint>

/// Source lines by the debugging information of the running program and its libraries, through the compiler's own
/// library where the build found it; elsewhere none is known.
namespace dorvutil::platform {

/// To be called once before FindSourcePlace is called in a fault handler.
void PrepareSourceLines();

struct SourcePlace {
    char file[2048];
    std::int32_t line;
    char function[2048];  ///< The function as the linker has it; empty when only the line is known.
};

/// What the instruction at `address` was made of: the file and the line (of inlined code, the place itself and not the
/// one it is inlined at) and the function the code is part of. False, with empty texts, when that is not known; what
/// does not fit is cut. Allocates, but not from the heap. Libraries loaded after the first question are not known.
bool FindSourcePlace(std::uintptr_t address, SourcePlace& place);

}  // namespace dorvutil::platform
