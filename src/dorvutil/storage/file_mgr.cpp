#include "dorvutil/storage/file_mgr.h"

#include "dorvutil/storage/stdio_handle.h"

namespace dorvutil {

CFileMgr::~CFileMgr() = default;

COrvFileHandleBase* CFileMgr::CreateFileHandle(const ORVustring& path, eAccessMode access, eBinaryMode binary,
                                               std::uint32_t flags, const COrvFileOptions* options) {
    return new COrvFileHandleStdio(path, access, binary, flags, options);
}

COrvFileHandleBase* CFileMgr::OpenFileHandle(const ORVustring& path, eAccessMode access, eBinaryMode binary,
                                             std::uint32_t flags, const COrvFileOptions* options) {
    COrvFileHandleBase* const handle = CreateFileHandle(path, access, binary, flags, options);
    if (handle && handle->Open() != 0) {
        delete handle;
        return nullptr;
    }
    return handle;
}

}  // namespace dorvutil
