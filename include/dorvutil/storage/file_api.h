#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/storage/file_handle.h"

/// Opening, using and closing file handles. Every function asks the registry for the file manager and, like for a null
/// handle, does nothing without one: null, false, 0 or -1 as stated. Paths are UTF-8 with `\` or `/`; bytes that are
/// not UTF-8 are passed to the system as they are.
namespace dorvutil {

class OrvFileName;

/// Opens a file unbuffered; null on failure. A file to be written or appended to gets the folders of its path that are
/// missing. The caller ends the handle with FileClose.
[[nodiscard]] DORVUTIL_API COrvFileHandleBase* FileOpen(const ORVustring& path, eAccessMode access, eBinaryMode binary);
[[nodiscard]] DORVUTIL_API COrvFileHandleBase* FileOpen(const OrvFileName& name, eAccessMode access,
                                                        eBinaryMode binary);
/// The same with buffers: kFileBufferReads, kFileBufferWrites, as far as the access mode reads and writes. Null
/// options: the defaults.
[[nodiscard]] DORVUTIL_API COrvFileHandleBase* FileOpenBuffered(const ORVustring& path, eAccessMode access,
                                                                eBinaryMode binary, std::uint32_t flags,
                                                                const COrvFileOptions* options);
/// A handle over bytes in memory, open: a copy, or the vector's own memory, which must outlive the handle and does not
/// grow. Null when memory ran out.
[[nodiscard]] DORVUTIL_API COrvFileHandleBase* FileOpenMemory(TVector<char>& bytes, bool copy, eAccessMode access);
[[nodiscard]] DORVUTIL_API COrvFileHandleBase* FileOpenMemory(const char* data, std::uint32_t size, eAccessMode access);
/// Opens `name` in `folder` (the current one when empty) for reading.
[[nodiscard]] DORVUTIL_API COrvFileHandleBase* FileOpenForRead(const ORVustring& folder, const ORVustring& name);
/// Creates or empties a file, with buffered writes, and writes the byte-order mark of UTF-8.
[[nodiscard]] DORVUTIL_API COrvFileHandleBase* FileOpenUTF8(const ORVustring& path);
/// Closes and destroys the handle and nulls the pointer; true when closing succeeded, so that all bytes are written.
DORVUTIL_API bool FileClose(COrvFileHandleBase*& handle);

/// The handle's operation; amounts in bytes, 0 on failure. FileRead reads `size` × `count` bytes.
DORVUTIL_API std::uint32_t FileRead(COrvFileHandleBase* handle, void* buffer, std::uint32_t size,
                                    std::int32_t count = 1);
DORVUTIL_API std::uint32_t FileWrite(COrvFileHandleBase* handle, const void* buffer, std::uint32_t size);
/// -1 on failure.
DORVUTIL_API std::int32_t FileSeek(COrvFileHandleBase* handle, std::int32_t offset, eSeekMode mode);
DORVUTIL_API std::int32_t FileTell(COrvFileHandleBase* handle);
DORVUTIL_API std::int32_t FileFlush(COrvFileHandleBase* handle);
/// 0 without a file manager, -1 for a null handle.
DORVUTIL_API std::int32_t FileLength(COrvFileHandleBase* handle);
/// Locks or unlocks `count` bytes from the position on against other processes.
DORVUTIL_API bool FileLockBytes(COrvFileHandleBase* handle, std::uint32_t count, bool lock, bool wait);

/// The handle's ReadLine: null at the end. `size` is in characters, the terminator included.
DORVUTIL_API char* FileReadNextLine(COrvFileHandleBase* handle, char* buffer, std::uint32_t size);
DORVUTIL_API char16_t* FileReadNextLineW_DEPRECATED(COrvFileHandleBase* handle, char16_t* buffer, std::uint32_t size);
/// Forgets what was read ahead, in both widths: needed after seeking a handle that is read by lines.
DORVUTIL_API void FileResetReadLineBuffer(COrvFileHandleBase* handle);

/// Reads the whole file into a block from the heap, stored in `data` and ended by the caller with Mem_Free; returns its
/// length in bytes. 0, with null in `data`, when the file cannot be opened, is empty, or memory ran out. With a null
/// `data` only the length.
DORVUTIL_API std::uint32_t LoadFile(const ORVustring& path, void** data);

}  // namespace dorvutil
