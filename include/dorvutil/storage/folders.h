#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// Where the program's folders are. `out` has room for `size` bytes; the text is UTF-8, cut to fit and terminated. A
/// null `out` or a size below 1 is left alone. Folder paths end in `\`.
namespace dorvutil {

/// The folder of a loaded module, given by any address inside it, or of the executable for null. Empty when the system
/// does not tell. Paths are cut to 260 characters.
DORVUTIL_API void GetRuntimeDirectory(const void* module, char* out, std::int32_t size);
/// The folder of the executable.
DORVUTIL_API void GetThisDirectory(char* out, std::int32_t size);
/// The folder for log files: the one the host chose, else that of the executable.
DORVUTIL_API void GetLoggingDirectory(char* out, std::int32_t size);
/// Where log files opened from now on lie; null: beside the executable again, as at the start. False, with nothing
/// changed, for a text of more than 254 bytes. Any thread.
DORVUTIL_API bool SetLoggingDirectory(const char* directory);
/// The relative folder of the program's data, "roadlyn".
DORVUTIL_API void GetDataRootDirectory(char* out, std::int32_t size);
/// The first folder of the file system's root that holds the data folder, as `\` and its name; false when there is
/// none.
DORVUTIL_API bool GetStoragePath(char* out, std::int32_t size);

}  // namespace dorvutil
