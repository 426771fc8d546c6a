#include "dorvutil/memory/block_io.h"

#include <limits>

#include "dorvutil/storage/file_api.h"
#include "dorvutil/storage/file_mgr.h"
#include "dorvutil/storage/transfer.h"

namespace dorvutil::block_io {
namespace {

constexpr std::size_t kMaxTransfer = std::numeric_limits<std::uint32_t>::max();

}  // namespace

std::uint32_t Length(COrvFileHandleBase* handle) {
    const std::int32_t length = IsUsable(handle) ? handle->Length() : -1;
    return length > 0 ? static_cast<std::uint32_t>(length) : 0;
}

std::uint32_t Remaining(COrvFileHandleBase* handle) {
    if (!IsUsable(handle)) return 0;
    const std::int32_t length = handle->Length();
    const std::int32_t position = handle->Tell();
    return position >= 0 && length > position ? static_cast<std::uint32_t>(length - position) : 0;
}

std::size_t Read(COrvFileHandleBase* handle, void* data, std::size_t bytes) {
    if (!IsUsable(handle) || bytes > kMaxTransfer) return 0;
    return Transferred(handle->Read(data, static_cast<std::uint32_t>(bytes), 1), bytes);
}

bool Write(COrvFileHandleBase* handle, const void* data, std::size_t bytes) {
    if (!IsUsable(handle) || bytes > kMaxTransfer) return false;
    return handle->Write(data, static_cast<std::uint32_t>(bytes), 1) == bytes;
}

COrvFileHandleBase* OpenToRead(const ORVustring& path) {
    CFileMgr* const files = GetFileMgr();
    return files ? files->OpenFileHandle(path, eAccessRead, eBinary, 0, nullptr) : nullptr;
}

void Close(COrvFileHandleBase* handle) {
    if (!handle) return;
    handle->Close();
    delete handle;
}

bool WriteFile(const ORVustring& path, const void* data, std::size_t bytes, bool append) {
    COrvFileHandleBase* handle = FileOpenBuffered(path, append ? eAccessAppend : eAccessWrite, eBinary,
                                                  kFileBufferReads | kFileBufferWrites, nullptr);
    const bool written = Write(handle, data, bytes);
    return FileClose(handle) && written;  // the last bytes may only now have met a full disk
}

}  // namespace dorvutil::block_io
