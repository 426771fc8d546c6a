#pragma once

#include <cstdint>

#include "dorvutil/storage/file_handle.h"

namespace dorvutil {

/// Makes the file handles of the process. The registry owns one; a host may derive its own. Any thread.
class DORVUTIL_API CFileMgr {
public:
    CFileMgr() = default;
    CFileMgr(const CFileMgr&) = delete;
    CFileMgr& operator=(const CFileMgr&) = delete;
    virtual ~CFileMgr();

    /// A handle on `path`, not opened yet; null when memory ran out. The caller deletes it. Null options: the defaults.
    [[nodiscard]] virtual COrvFileHandleBase* CreateFileHandle(const ORVustring& path, eAccessMode access,
                                                               eBinaryMode binary, std::uint32_t flags,
                                                               const COrvFileOptions* options);
    /// An open handle, null when it cannot be opened: with any of kFileBufferReads and kFileBufferWrites the buffer
    /// that fits the access mode (file_buffer.h) over an unbuffered handle, else the handle of CreateFileHandle.
    [[nodiscard]] virtual COrvFileHandleBase* OpenFileHandle(const ORVustring& path, eAccessMode access,
                                                             eBinaryMode binary, std::uint32_t flags,
                                                             const COrvFileOptions* options);
};

}  // namespace dorvutil
