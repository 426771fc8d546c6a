#pragma once

#include <cstddef>
#include <cstdint>

#include "dorvutil/frame/export.h"

namespace dorvutil {

class COrvFileHandleBase;
class ORVustring;

/// How vectors and strings reach files: declared here, below the text and storage layers, and defined in the storage
/// layer. Every function first asks for the file manager; without one, as with a null handle, it transfers nothing and
/// gives 0, false or null.
namespace block_io {

/// The handle's length in bytes; 0 when it cannot tell.
DORVUTIL_API std::uint32_t Length(COrvFileHandleBase* handle);

/// Bytes from the handle's position to its end; 0 when it cannot tell.
DORVUTIL_API std::uint32_t Remaining(COrvFileHandleBase* handle);

/// Reads one block; returns the bytes read, at most `bytes`. Sizes above 0xFFFFFFFF read nothing.
DORVUTIL_API std::size_t Read(COrvFileHandleBase* handle, void* data, std::size_t bytes);

/// Writes one block; true when the handle reports all bytes written. Sizes above 0xFFFFFFFF give false.
DORVUTIL_API bool Write(COrvFileHandleBase* handle, const void* data, std::size_t bytes);

/// Opens a binary file through the file manager; null when it cannot be opened. Ended with Close.
[[nodiscard]] DORVUTIL_API COrvFileHandleBase* OpenToRead(const ORVustring& path);

/// Closes and destroys a handle that OpenToRead gave; null is ignored.
DORVUTIL_API void Close(COrvFileHandleBase* handle);

/// Opens `path` buffered (append mode, or created and emptied), binary, writes one block, closes. True when the file
/// opened and all bytes were written.
DORVUTIL_API bool WriteFile(const ORVustring& path, const void* data, std::size_t bytes, bool append);

}  // namespace block_io
}  // namespace dorvutil
