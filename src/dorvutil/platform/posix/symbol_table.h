#pragma once

#include <cstddef>
#include <cstdint>

/// Names of functions. May be used in a fault handler.
namespace dorvutil::platform {

/// The symbol of the function that holds `address` (as the file counts) by the symbol tables of an ELF file, the full
/// one before that of what it exports. False, with an empty text, when there is none or the file is none of this
/// machine; a damaged one is read as far as it goes. What does not fit is cut.
bool ReadFunctionSymbol(const char* path, std::uintptr_t address, char* out, std::size_t size);

/// A C++ symbol as the source has it, cut when it does not fit; false for other symbols, and always in builds whose
/// compiler has no demangler that works without the heap.
bool Demangle(const char* symbol, char* out, std::size_t size);

}  // namespace dorvutil::platform
