#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"

/// Copying. A target that exists is replaced with `force`; otherwise only when its size differs, and one of the same
/// size counts as copied. A source that is missing, or the target itself, is never cause to delete the target.
namespace dorvutil {

class CB_Dialog;

/// What copying a file results in.
enum eFileCopyResult : std::int32_t {
    eFileCopyFailed = 0,  ///< A partial target may be left.
    eFileCopyDone = 1,
    eFileCopyCancelled = 2,  ///< Through the dialog; a partial target is left.
};

/// Copies in blocks of 8192 bytes; an eFileCopyResult. A dialog gets a step for every 100th block and one at the end,
/// also when there was nothing to do, and is asked after every block whether the user cancelled.
DORVUTIL_API std::int32_t FileCopy(const ORVustring& from, const ORVustring& to, bool force, CB_Dialog* dialog);
/// Copies `name` from one folder to another.
DORVUTIL_API std::int32_t FileCopy(const ORVustring& name, const ORVustring& fromDir, const ORVustring& toDir,
                                   bool force, CB_Dialog* dialog);
/// The same with a block size of the caller's (0: 8192); the dialog gets a step for every block.
DORVUTIL_API std::int32_t FileCopySetBufSize(const ORVustring& from, const ORVustring& to, bool force,
                                             std::uint32_t blockSize, CB_Dialog* dialog);
/// Whether a copy is needed; a target that is to be replaced is deleted at once. `size` (may be null) receives the
/// source's size in bytes (low 32 bits), 0 when it cannot be had.
DORVUTIL_API bool FileCopyPreCheck(const ORVustring& from, const ORVustring& to, std::uint32_t* size, bool force);
/// Copies the folders and then the non-empty files of `from`. With `createTarget` the target folder is created first.
/// True when every step succeeded; what fails does not stop the rest. False for a target inside `from`. Links to
/// folders are not followed.
DORVUTIL_API bool FileCopyDir(const ORVustring& from, const ORVustring& to, bool force, bool createTarget);
/// Copies every non-empty file below `from`, replacing, and creates the folders for them. The result of the last copy;
/// 0 when there was no file.
DORVUTIL_API std::int32_t FileCopyRecursive(const ORVustring& from, const ORVustring& to);

}  // namespace dorvutil
