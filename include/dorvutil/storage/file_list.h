#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/memory/list.h"
#include "dorvutil/text/string.h"

/// Listing folders. Names come as the system gives them, in its order, without "." and ".."; an empty `dir` is the
/// current folder. A name that the path functions are given back means the same file, whatever bytes it has.
namespace dorvutil {

/// What is listed and how.
enum eFileListFlags : std::uint32_t {
    eListFiles = 1,        ///< Files whose size (its low 32 bits) is not 0.
    eListDirectories = 2,  ///< Folders.
    eListFullPaths = 4,    ///< `dir`, `\` and the name instead of the bare name.
    eListAllFiles = 8,     ///< Files of any size; looked at only without eListFiles.
};

/// Adds the non-empty files of `dir` to `out`, which owns its items.
DORVUTIL_API void FileList(ListMgr<ORVustring>& out, const ORVustring& dir);
/// Those whose names end with `pattern`, which may hold `*` (any run of characters) and `?` (any one).
DORVUTIL_API void FileList(ListMgr<ORVustring>& out, const ORVustring& dir, const ORVustring& pattern);
/// Those that eFileListFlags choose, except the name `exclude` (empty: none). `dates`, when given, gets the time of the
/// last change of each, in UTC: "month/day/year", or "year/month/day-hour:minute:second" when `withTime` points to
/// true; numbers without leading zeroes. True when `out` holds anything.
DORVUTIL_API bool FileList(ListMgr<ORVustring>& out, const ORVustring& dir, const ORVustring& pattern,
                           const ORVustring& exclude, ListMgr<ORVustring>* dates, std::uint32_t flags, bool* withTime);
/// The non-empty files of all folders below `dir` with full paths, then what `flags` choose of `dir` itself. Links to
/// folders are not followed. True when `out` holds anything.
DORVUTIL_API bool FileListRecursive(ListMgr<ORVustring>& out, const ORVustring& dir, std::uint32_t flags);
/// Whether every name of the list exists as a file in `dir`.
DORVUTIL_API bool AreFilesInDir(const ORVustring& dir, ListMgr<ORVustring>& names);

}  // namespace dorvutil
