#pragma once

#include <cstdint>

namespace dorvutil {

class COrvFileHandleBase;

/// The file operations of the string classes. Files are little-endian. Null files, and all files while there is no file
/// manager, take and give nothing.

/// Writes `n` units; false when the file took less.
bool WriteUnits(COrvFileHandleBase* file, const char* units, std::uint32_t n);
bool WriteUnits(COrvFileHandleBase* file, const char16_t* units, std::uint32_t n);

/// Reads at most `n` units; returns how many whole ones came.
std::uint32_t ReadUnits(COrvFileHandleBase* file, char* units, std::uint32_t n);
std::uint32_t ReadUnits(COrvFileHandleBase* file, char16_t* units, std::uint32_t n);

}  // namespace dorvutil
