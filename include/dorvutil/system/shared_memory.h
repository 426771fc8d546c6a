#pragma once

#include <cstdint>

#include "dorvutil/concurrency/locks.h"
#include "dorvutil/frame/export.h"
#include "dorvutil/system/system_mgr.h"

namespace dorvutil {

/// A block of memory that processes of one user share by name. It holds one piece of data: its size (32 bits,
/// little-endian), then its bytes. Each operation holds the named mutex: no process sees half of another's write, and a
/// process that dies inside one leaves the mutex to the others (and its write half done). Any thread.
class DORVUTIL_API SharedMemory {
public:
    /// Opens the mutex (null or empty name: threads of this process only) and allocates the block.
    SharedMemory(const char* name, const char* mutexName, std::uint32_t size, MemoryMap_Protection protection);
    ~SharedMemory();
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    /// Creates or opens the block `name` of `size` bytes, the four of the size included, in place of the present one;
    /// the first opener finds it zero. False, without a block, when that fails (see CreateSharedMemMapping).
    bool AllocateMemory(const char* name, std::uint32_t size, MemoryMap_Protection protection);

    /// The size that the last writer, of whatever process, stored; 0 without a block.
    std::uint32_t ReadDataSize() const;
    /// Copies the first `n` data bytes; false when the block has no room for so many.
    bool ReadData(void* buffer, std::uint32_t n) const;
    /// Stores `n` and the `n` bytes; false when the block has no room for them or is read-only.
    bool WriteData(const void* data, std::uint32_t n);

    explicit operator bool() const;  ///< Whether there is a block.

private:
    void Release();
    bool HasRoomFor(std::uint32_t n) const { return m_view != nullptr && n <= m_usableSize; }

    mutex m_mutex;  // guards the block and all below
    MemoryMapHandle m_mapping = nullptr;
    unsigned char* m_view = nullptr;
    std::uint32_t m_usableSize = 0;  // bytes behind the stored size
    MemoryMap_Protection m_protection = eMemoryMapReadWrite;
};

}  // namespace dorvutil
