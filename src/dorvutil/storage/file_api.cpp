#include "dorvutil/storage/file_api.h"

#include <cstring>
#include <new>

#include "dorvutil/memory/heap.h"
#include "dorvutil/storage/file_mgr.h"
#include "dorvutil/storage/file_name.h"
#include "dorvutil/storage/file_system.h"
#include "dorvutil/storage/memory_handle.h"
#include "dorvutil/storage/path_parts.h"
#include "dorvutil/storage/transfer.h"

namespace dorvutil {
namespace {

constexpr char kUtf8Mark[] = {'\xEF', '\xBB', '\xBF'};

std::uint32_t UsefulFlags(eAccessMode access) {
    switch (access) {
        case eAccessRead:
            return kFileBufferReads;
        case eAccessWrite:
        case eAccessAppend:
            return kFileBufferWrites;
        case eAccessReadWrite:
            return kFileBufferReads | kFileBufferWrites;
        default:
            return 0;
    }
}

bool CreateFolderOf(const ORVustring& path) {
    const std::int32_t separator = path.find_last_of(kSeparators);
    return separator > 0 && FileCreateDir(path.substr(0, separator));
}

// Opens a fresh memory handle; null when it could not get all its bytes.
COrvFileHandleBase* OpenMemory(COrvFileHandleMemory* handle, std::uint32_t size) {
    if (handle && handle->Open() == 0 && handle->ByteArray().Count() == size) return handle;
    delete handle;
    return nullptr;
}

}  // namespace

COrvFileHandleBase* FileOpen(const ORVustring& path, eAccessMode access, eBinaryMode binary) {
    CFileMgr* const files = GetFileMgr();
    if (!files) return nullptr;
    COrvFileHandleBase* const handle = files->OpenFileHandle(path, access, binary, 0, nullptr);
    const bool creates = access == eAccessWrite || access == eAccessAppend;
    if (handle || !creates || FileDoesDirExist(path) || !CreateFolderOf(path)) return handle;
    return files->OpenFileHandle(path, access, binary, 0, nullptr);
}

COrvFileHandleBase* FileOpen(const OrvFileName& name, eAccessMode access, eBinaryMode binary) {
    return FileOpen(name.GetFullPath(true), access, binary);
}

COrvFileHandleBase* FileOpenBuffered(const ORVustring& path, eAccessMode access, eBinaryMode binary,
                                     std::uint32_t flags, const COrvFileOptions* options) {
    CFileMgr* const files = GetFileMgr();
    return files ? files->OpenFileHandle(path, access, binary, flags & UsefulFlags(access), options) : nullptr;
}

COrvFileHandleBase* FileOpenMemory(TVector<char>& bytes, bool copy, eAccessMode access) {
    if (!GetFileMgr()) return nullptr;
    return OpenMemory(new (std::nothrow) COrvFileHandleMemory(bytes, copy, access), bytes.Count());
}

COrvFileHandleBase* FileOpenMemory(const char* data, std::uint32_t size, eAccessMode access) {
    if (!GetFileMgr()) return nullptr;
    return OpenMemory(new (std::nothrow) COrvFileHandleMemory(data, size, true, access), data ? size : 0);
}

COrvFileHandleBase* FileOpenForRead(const ORVustring& folder, const ORVustring& name) {
    return FileOpen(JoinPath(folder, name), eAccessRead, eBinary);
}

COrvFileHandleBase* FileOpenUTF8(const ORVustring& path) {
    COrvFileHandleBase* handle = FileOpenBuffered(path, eAccessWrite, eBinary, kFileBufferWrites, nullptr);
    if (handle && FileWrite(handle, kUtf8Mark, sizeof(kUtf8Mark)) != sizeof(kUtf8Mark)) FileClose(handle);
    return handle;
}

bool FileClose(COrvFileHandleBase*& handle) {
    if (!IsUsable(handle)) return false;
    const bool closed = handle->Close() == 0;
    delete handle;
    handle = nullptr;
    return closed;
}

std::uint32_t FileRead(COrvFileHandleBase* handle, void* buffer, std::uint32_t size, std::int32_t count) {
    return IsUsable(handle) ? Transferred(handle->Read(buffer, size, count), ByteCount(size, count)) : 0;
}

std::uint32_t FileWrite(COrvFileHandleBase* handle, const void* buffer, std::uint32_t size) {
    return IsUsable(handle) ? Transferred(handle->Write(buffer, size, 1), size) : 0;
}

std::int32_t FileSeek(COrvFileHandleBase* handle, std::int32_t offset, eSeekMode mode) {
    return IsUsable(handle) ? handle->Seek(offset, mode) : -1;
}

std::int32_t FileTell(COrvFileHandleBase* handle) { return IsUsable(handle) ? handle->Tell() : -1; }

std::int32_t FileFlush(COrvFileHandleBase* handle) { return IsUsable(handle) ? handle->Flush() : -1; }

std::int32_t FileLength(COrvFileHandleBase* handle) {
    if (!GetFileMgr()) return 0;
    return handle ? handle->Length() : -1;
}

bool FileLockBytes(COrvFileHandleBase* handle, std::uint32_t count, bool lock, bool wait) {
    return IsUsable(handle) && handle->LockBytes(count, lock, wait);
}

char* FileReadNextLine(COrvFileHandleBase* handle, char* buffer, std::uint32_t size) {
    return IsUsable(handle) ? handle->ReadLine(buffer, size) : nullptr;
}

char16_t* FileReadNextLineW_DEPRECATED(COrvFileHandleBase* handle, char16_t* buffer, std::uint32_t size) {
    return IsUsable(handle) ? handle->ReadLine(buffer, size) : nullptr;
}

void FileResetReadLineBuffer(COrvFileHandleBase* handle) {
    if (IsUsable(handle)) handle->ResetReadLineBuffer();
}

std::uint32_t LoadFile(const ORVustring& path, void** data) {
    if (data) *data = nullptr;
    COrvFileHandleBase* handle = FileOpen(path, eAccessRead, eBinary);
    if (!handle) return 0;
    const std::int32_t length = handle->Length();
    auto size = length > 0 ? static_cast<std::uint32_t>(length) : 0;
    if (data && size != 0) {
        void* const block = Mem_Malloc(std::size_t{size} + 1);
        if (block) {
            // A file that shrank meanwhile must not hand out what the heap held before.
            const std::uint32_t got = Transferred(handle->Read(block, size, 1), size);
            std::memset(static_cast<char*>(block) + got, 0, size - got);
        } else {
            size = 0;
        }
        *data = block;
    }
    FileClose(handle);
    return size;
}

}  // namespace dorvutil
