#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/storage/file_handle.h"

/// Text files and their byte-order marks.
namespace dorvutil {

/// What a text file starts with.
enum eFileType : std::int32_t {
    eFileTypeNone = 0,   ///< There is no handle.
    eFileTypePlain = 1,  ///< No byte-order mark.
    eFileTypeUTF8 = 2,   ///< EF BB BF.
    eFileTypeUTF16 = 3,  ///< FF FE: little-endian units.
};

/// Goes to the start and, when the mark is there, behind it: true. Otherwise at the start: false. False without a file
/// manager or handle.
DORVUTIL_API bool StripUTF8Start(COrvFileHandleBase* handle);
DORVUTIL_API bool StripUTF16Start(COrvFileHandleBase* handle);
/// Finds out the type and goes behind the mark.
DORVUTIL_API eFileType StripFileStart(COrvFileHandleBase* handle);

/// Reads the next line as UTF-8 into `buffer` of `size` bytes, which is zeroed first and always terminated. A file of
/// UTF-16 is converted: false when the line does not fit or is not well-formed, with what came before in `buffer`.
/// False at the end, for a null buffer and a size of 0.
DORVUTIL_API bool ReadStringFromFile(COrvFileHandleBase* handle, eFileType type, char* buffer, std::uint32_t size);

/// Converts a file of narrow text (UTF-8; what is not, byte by byte as Latin-1) to UTF-16 with a byte-order mark. False
/// when `from` cannot be read or has that mark already (nothing is written then), when `to` is the same file, and when
/// anything could not be written.
DORVUTIL_API bool FileANSI2UniCode(const ORVustring& from, const ORVustring& to);

}  // namespace dorvutil
