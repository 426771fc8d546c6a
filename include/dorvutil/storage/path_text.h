#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"

/// Small functions on the text of paths and names. No file is looked at. Any thread.
namespace dorvutil {

/// Appends `\` unless the path ends with a separator; trailing spaces go first. `size` is that of the buffer in bytes:
/// what would not fit with the terminator is not appended; negative means that there is room. Null is ignored.
DORVUTIL_API void FileAppendSlash(char* path, std::int32_t size);
/// Turns a text into a file name in place: of its first `maxLength` bytes, those of '\/:*?"<>|&.- are removed and
/// spaces become '_'.
DORVUTIL_API void FileNameCleanup(char* name, std::uint32_t maxLength);
/// Removes white-space at both ends in place; returns the new length, 0 for null.
DORVUTIL_API std::int32_t FileStripName(char* text);
/// A size for people: "1.5 KB", "1024.0 KB", "1.0 GB"; one decimal, the next unit only above 1024 of the one before.
/// Empty for 0.
DORVUTIL_API ORVustring GetFileSizeStr(std::uint32_t bytes);
/// Cuts the path behind the last separator among its units 0 to `length`, which must all be readable; empty when there
/// is none.
DORVUTIL_API void TruncatePathToLastSlash(char16_t* path, std::int32_t length);

}  // namespace dorvutil
