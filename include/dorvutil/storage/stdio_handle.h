#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "dorvutil/storage/file_handle.h"

namespace dorvutil {

class FileStream;

/// A file on disk, with a small buffer of its own. Flush writes what is left there and, when the file was opened for
/// writing, commits it to the disk itself; bytes that a full disk refused stay for the next Flush, and Close reports
/// them as lost. Positions and lengths that do not fit 31 bits are reported as -1. Objects live in the registry's pool
/// while it is set up.
class DORVUTIL_API COrvFileHandleStdio : public COrvFileHandleBase {
public:
    COrvFileHandleStdio(const ORVustring& path, eAccessMode access, eBinaryMode binary, std::uint32_t flags,
                        const COrvFileOptions* options);
    COrvFileHandleStdio(const COrvFileHandleStdio&) = delete;
    COrvFileHandleStdio& operator=(const COrvFileHandleStdio&) = delete;
    ~COrvFileHandleStdio() override;

    bool IsOpen() override;
    std::int32_t Open() override;
    std::int32_t Close() override;
    std::uint32_t Read(void* buffer, std::uint32_t size, std::int32_t count) override;
    std::uint32_t Write(const void* buffer, std::uint32_t size, std::int32_t count) override;
    std::int32_t Seek(std::int32_t offset, eSeekMode mode) override;
    std::int32_t Flush() override;
    std::int32_t Tell() override;
    std::int32_t Length() override;
    bool LockBytes(std::uint32_t count, bool lock, bool wait) override;

    static void* operator new(std::size_t size) noexcept;
    static void operator delete(void* block);

private:
    std::unique_ptr<FileStream> m_stream;  // null when closed
};

}  // namespace dorvutil
