#pragma once

#include <cstdint>

#include "dorvutil/storage/file_handle.h"

namespace dorvutil {

/// A byte array behind the file interface: its own, or the caller's memory, which it then writes in place but cannot
/// grow (and which must outlive it). Reading needs access mode 1, 3 or 4, writing 2, 3 or 4. Each Open rewinds.
class DORVUTIL_API COrvFileHandleMemory : public COrvFileHandleBase {
public:
    explicit COrvFileHandleMemory(eAccessMode access);
    /// Over `bytes`: a copy of them, or with `copy` false the same memory.
    COrvFileHandleMemory(TVector<char>& bytes, bool copy, eAccessMode access);
    COrvFileHandleMemory(const void* data, std::uint32_t size, bool copy, eAccessMode access);
    COrvFileHandleMemory(const COrvFileHandleMemory&) = delete;
    COrvFileHandleMemory& operator=(const COrvFileHandleMemory&) = delete;
    ~COrvFileHandleMemory() override;

    bool IsOpen() override;
    std::int32_t Open() override;
    std::int32_t Close() override;
    std::uint32_t Read(void* buffer, std::uint32_t size, std::int32_t count) override;
    /// All bytes or none; a gap between the end and the position is filled with zero bytes.
    std::uint32_t Write(const void* buffer, std::uint32_t size, std::int32_t count) override;
    /// May go past the end, not before the start (-1, position unchanged).
    std::int32_t Seek(std::int32_t offset, eSeekMode mode) override;
    std::int32_t Flush() override;
    std::int32_t Tell() override;
    std::int32_t Length() override;

    const TVector<char>& ByteArray() const { return m_bytes; }
    TVector<char>& ByteArray() { return m_bytes; }

private:
    TVector<char> m_bytes;
    std::uint32_t m_position = 0;
    bool m_open = false;
};

}  // namespace dorvutil
