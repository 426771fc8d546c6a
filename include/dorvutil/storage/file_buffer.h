#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/storage/file_handle.h"

/// Buffers in front of another handle, as CFileMgr::OpenFileHandle builds them. Each owns the handle beneath it and
/// destroys it on Close and on destruction; null beneath makes a buffer that is not open. Not synchronised.
///
/// Bytes that a Write has reported stay in the buffer until the handle beneath took them: a flush that fails or falls
/// short keeps what is left for the next one.
namespace dorvutil {

/// What all buffers share: one run of bytes of the file and a position in it.
class DORVUTIL_API COrvFileBuffer : public COrvFileHandleBase, private TVector<unsigned char> {
public:
    COrvFileBuffer(const COrvFileBuffer&) = delete;
    COrvFileBuffer& operator=(const COrvFileBuffer&) = delete;
    ~COrvFileBuffer() override;

    bool IsOpen() override;
    std::int32_t Open() override;
    /// Writes what is left, then closes and destroys the handle beneath. 0 when both succeeded, else 1.
    std::int32_t Close() override;
    /// The target counts from 0, Tell or Length of this handle. Within the buffered bytes only the position moves;
    /// otherwise what is left is written first. -1, and still at the old place, for a target before 0 or beyond 31
    /// bits and when writing or seeking fails.
    std::int32_t Seek(std::int32_t offset, eSeekMode mode) override;
    std::int32_t Tell() override;
    std::int32_t Length() override;

protected:
    /// Takes over `underlying`. Without memory for `bufferSize` bytes everything goes through unbuffered.
    COrvFileBuffer(COrvFileHandleBase* underlying, const ORVustring& path, eAccessMode access, eBinaryMode binary,
                   std::uint32_t flags, const COrvFileOptions* options, std::uint32_t bufferSize);

    /// Writes the changed bytes, if any; what the handle beneath did not take stays. False when some did.
    virtual bool WriteOut();
    virtual bool IsDirty() const;  ///< Whether there are changed bytes.

    /// Writes out, empties the buffer and puts the handle beneath at this handle's position.
    bool Settle();
    /// The buffer is empty and starts where the handle beneath stands.
    void Restart();
    bool Refill();  ///< Of a buffer just settled; false at the end of the file.
    /// Puts the handle beneath at byte `index` of the buffer.
    bool MoveBelow(std::uint32_t index);
    std::uint32_t TakeBuffered(unsigned char* to, std::uint32_t n);  ///< Copies what there is, at most `n` bytes.
    void PutBuffered(const unsigned char* from, std::uint32_t n) {
        Replace(from, m_position, n);
        m_position += n;
    }
    void DropFront(std::uint32_t n);
    std::uint32_t Buffered() const { return Count(); }
    std::uint32_t Unread() const { return Count() - m_position; }
    const unsigned char* Bytes() const { return Data(); }
    std::int64_t BufferEnd() const { return std::int64_t{m_start} + Count(); }

    static constexpr std::uint32_t kUnknownStart = 0xFFFFFFFFu;  // beyond 31 bits

    std::uint32_t m_position = 0;                // of the next byte inside the buffer
    std::uint32_t m_bufferSize;                  // 0 when there is no memory
    std::uint32_t m_start = 0;                   // file offset of the buffer's first byte
    COrvFileHandleBase* m_underlying = nullptr;  // owned
    std::uint32_t m_below = 0;                   // byte of the buffer where the handle beneath stands
};

/// Reads ahead. Write gives -1 (all bits set).
class DORVUTIL_API COrvReadBuffer : public virtual COrvFileBuffer {
public:
    COrvReadBuffer(COrvFileHandleBase* underlying, const ORVustring& path, eAccessMode access, eBinaryMode binary,
                   std::uint32_t flags, const COrvFileOptions* options);

    /// Requests of at least a whole buffer go straight to the caller's memory once the buffer is used up.
    std::uint32_t Read(void* buffer, std::uint32_t size, std::int32_t count) override;
    std::uint32_t Write(const void* buffer, std::uint32_t size, std::int32_t count) override;
    std::int32_t Flush() override;  ///< Nothing to do: 0.
};

/// Collects writes. Read gives -1 (all bits set).
class DORVUTIL_API COrvWriteBuffer : public virtual COrvFileBuffer {
public:
    COrvWriteBuffer(COrvFileHandleBase* underlying, const ORVustring& path, eAccessMode access, eBinaryMode binary,
                    std::uint32_t flags, const COrvFileOptions* options);
    ~COrvWriteBuffer() override;  ///< Closes.

    std::uint32_t Read(void* buffer, std::uint32_t size, std::int32_t count) override;
    /// How many bytes were taken, into the buffer or to the handle beneath; short when a flush on the way failed.
    std::uint32_t Write(const void* buffer, std::uint32_t size, std::int32_t count) override;
    /// Writes what is left and flushes the handle beneath; the position stays. -1 when either fails.
    std::int32_t Flush() override;
    std::int32_t Length() override;  ///< Counts the bytes not yet written.

protected:
    bool WriteOut() override;
    bool IsDirty() const override;

private:
    bool m_dirty = false;  // the buffer holds bytes not yet written
};

/// Writes at the end: starts at the file's length, and Seek does nothing and gives 0.
class DORVUTIL_API COrvAppendBuffer : public COrvWriteBuffer {
public:
    COrvAppendBuffer(COrvFileHandleBase* underlying, const ORVustring& path, eAccessMode access, eBinaryMode binary,
                     std::uint32_t flags, const COrvFileOptions* options);

    std::int32_t Seek(std::int32_t offset, eSeekMode mode) override;
};

/// Reads and writes through one buffer; reading on writes out first what the buffer still holds.
class DORVUTIL_API COrvReadWriteBuffer : public COrvReadBuffer, public COrvWriteBuffer {
public:
    COrvReadWriteBuffer(COrvFileHandleBase* underlying, const ORVustring& path, eAccessMode access, eBinaryMode binary,
                        std::uint32_t flags, const COrvFileOptions* options);

    std::uint32_t Read(void* buffer, std::uint32_t size, std::int32_t count) override;
    std::uint32_t Write(const void* buffer, std::uint32_t size, std::int32_t count) override;
    std::int32_t Flush() override;
};

}  // namespace dorvutil
