#include "dorvutil/memory/block_io.h"

#include <limits>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/storage/file_mgr.h"

namespace dorvutil::block_io {
namespace {

constexpr std::size_t kMaxTransfer = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint32_t kBufferBoth = 3;  // reads and writes

bool Usable(const COrvFileHandleBase* handle) { return handle && GetFileMgr(); }

}  // namespace

std::uint32_t Length(COrvFileHandleBase* handle) {
    const std::int32_t length = Usable(handle) ? handle->Length() : -1;
    return length > 0 ? static_cast<std::uint32_t>(length) : 0;
}

std::uint32_t Remaining(COrvFileHandleBase* handle) {
    if (!Usable(handle)) return 0;
    const std::int32_t length = handle->Length();
    const std::int32_t position = handle->Tell();
    return position >= 0 && length > position ? static_cast<std::uint32_t>(length - position) : 0;
}

std::size_t Read(COrvFileHandleBase* handle, void* data, std::size_t bytes) {
    if (!Usable(handle) || bytes > kMaxTransfer) return 0;
    const std::uint32_t got = handle->Read(data, static_cast<std::uint32_t>(bytes), 1);
    return got <= bytes ? got : 0;  // a handle that cannot read answers all bits set
}

bool Write(COrvFileHandleBase* handle, const void* data, std::size_t bytes) {
    if (!Usable(handle) || bytes > kMaxTransfer) return false;
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
    CFileMgr* const files = GetFileMgr();
    if (!files) return false;
    COrvFileHandleBase* const handle =
        files->OpenFileHandle(path, append ? eAccessAppend : eAccessWrite, eBinary, kBufferBoth, nullptr);
    if (!handle) return false;
    const bool written = Write(handle, data, bytes);
    const bool closed = handle->Close() == 0;  // the last bytes may only now have met a full disk
    delete handle;
    return written && closed;
}

}  // namespace dorvutil::block_io
