#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"

/// Files and folders as a whole. Every function asks the registry for the file manager and fails without one. Paths are
/// UTF-8 with `\` or `/`. Any thread.
namespace dorvutil {

class OrvFileName;

/// Exists and is no folder.
DORVUTIL_API bool FileExists(const ORVustring& path);
DORVUTIL_API bool FileExists(const OrvFileName& name);
/// Exists and is a folder.
DORVUTIL_API bool FileDoesDirExist(const ORVustring& path);
/// Deletes a file; false for a folder.
DORVUTIL_API bool FileErase(const ORVustring& path);
DORVUTIL_API bool FileErase(const OrvFileName& name);
/// Renames or moves a file or folder; non-zero on success. Nothing that exists is replaced. A file may move to another
/// volume.
DORVUTIL_API std::int32_t FileMove(const ORVustring& from, const ORVustring& to);
/// Size in bytes (the low 32 bits of it); 0 when it cannot be had.
DORVUTIL_API std::int32_t FileLength(const ORVustring& path);
/// True when the file exists or could be created, empty.
DORVUTIL_API bool FileEnsureExistence(const ORVustring& path);
DORVUTIL_API bool FileEnsureExistence(const OrvFileName& name);
/// Creates a folder with every folder above it that is missing. White-space at the ends is dropped, and what exceeds
/// 260 bytes is cut. True when the whole path exists afterwards.
DORVUTIL_API bool FileCreateDir(const ORVustring& path);
/// Removes a folder, which must be empty; with `emptyFirst` its files are deleted, with `recurse` its folders too.
DORVUTIL_API bool FileRemoveDir(const ORVustring& dir, bool emptyFirst, bool recurse);
/// Deletes the files of `dir` (read-only ones too) whose names match `pattern`: `*` stands for any run of characters,
/// `?` for any one, and ".*" at the end also for nothing. With `recurse` the matching folders are treated the same way
/// and removed when that leaves them empty; a link to a folder is deleted like a file, never followed. True when the
/// last deletion of a file succeeded; false when none matched, or for an empty `dir`.
DORVUTIL_API bool FileDeleteMultipleFiles(const ORVustring& dir, const ORVustring& pattern, bool recurse);
/// Attributes are not supported: -1.
DORVUTIL_API std::int32_t FileAttributes(const ORVustring& path);

}  // namespace dorvutil
