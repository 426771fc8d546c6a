#include "dorvutil/storage/file_mgr.h"

#include <new>

#include "dorvutil/storage/file_api.h"
#include "dorvutil/storage/file_buffer.h"
#include "dorvutil/storage/stdio_handle.h"

namespace dorvutil {
namespace {

template <class Buffer>
COrvFileHandleBase* NewBuffer(const ORVustring& path, eAccessMode access, eBinaryMode binary, std::uint32_t flags,
                              const COrvFileOptions* options) {
    COrvFileHandleBase* underlying = FileOpen(path, access, binary);
    if (!underlying) return nullptr;
    auto* const buffer = new (std::nothrow) Buffer(underlying, path, access, binary, flags, options);
    if (!buffer) FileClose(underlying);
    return buffer;
}

}  // namespace

CFileMgr::~CFileMgr() = default;

COrvFileHandleBase* CFileMgr::CreateFileHandle(const ORVustring& path, eAccessMode access, eBinaryMode binary,
                                               std::uint32_t flags, const COrvFileOptions* options) {
    return new COrvFileHandleStdio(path, access, binary, flags, options);
}

COrvFileHandleBase* CFileMgr::OpenFileHandle(const ORVustring& path, eAccessMode access, eBinaryMode binary,
                                             std::uint32_t flags, const COrvFileOptions* options) {
    using MakeHandle =
        COrvFileHandleBase* (*)(const ORVustring&, eAccessMode, eBinaryMode, std::uint32_t, const COrvFileOptions*);
    static constexpr MakeHandle kBuffers[] = {nullptr, NewBuffer<COrvReadBuffer>, NewBuffer<COrvWriteBuffer>,
                                              NewBuffer<COrvAppendBuffer>, NewBuffer<COrvReadWriteBuffer>};
    const bool buffered = (flags & (kFileBufferReads | kFileBufferWrites)) != 0;
    COrvFileHandleBase* const handle = buffered && access >= eAccessRead && access <= eAccessReadWrite
                                           ? kBuffers[access](path, access, binary, flags, options)
                                           : CreateFileHandle(path, access, binary, flags, options);
    if (handle && handle->Open() != 0) {
        delete handle;
        return nullptr;
    }
    return handle;
}

}  // namespace dorvutil
