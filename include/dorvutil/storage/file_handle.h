#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/memory/vector.h"
#include "dorvutil/text/string.h"

namespace dorvutil {

enum eAccessMode : std::int32_t {
    eAccessNone = -1,      ///< A handle created without a mode.
    eAccessRead = 1,       ///< Opens an existing file for reading.
    eAccessWrite = 2,      ///< Creates or empties a file for writing.
    eAccessAppend = 3,     ///< Opens or creates a file for reading and appending.
    eAccessReadWrite = 4,  ///< Opens an existing file for reading and writing.
};
enum eBinaryMode : std::int32_t { eBinary = 1, eText = 2 };
enum eSeekMode : std::int32_t { eSeekSet = 0, eSeekCur = 1, eSeekEnd = 2 };

/// What FileOpenBuffered and CFileMgr::OpenFileHandle buffer.
inline constexpr std::uint32_t kFileBufferReads = 1;
inline constexpr std::uint32_t kFileBufferWrites = 2;

/// Buffer sizes of one handle, in bytes. A null options pointer means these defaults.
struct COrvFileOptions {
    std::uint32_t m_readBufferSize = 4096;  ///< Also the block size of line reading.
    std::uint32_t m_writeBufferSize = 8192;
};

/// One block of a file that is read by lines.
template <class C>
class TLineBlock : public TVector<C> {
public:
    using TVector<C>::SetCount;
};

/// The one interface to files, memory blocks and buffers. A handle is built closed and opened once by Open. Operations
/// on a handle that is not open give false, 0 bytes or -1. Not synchronised: one thread uses a handle at a time.
class DORVUTIL_API COrvFileHandleBase {
public:
    COrvFileHandleBase() = default;
    COrvFileHandleBase(const ORVustring& path, eAccessMode access, eBinaryMode binary, std::uint32_t flags,
                       const COrvFileOptions* options);
    virtual ~COrvFileHandleBase();

    virtual bool IsOpen() = 0;
    virtual std::int32_t Open() = 0;   ///< 0 success, -1 failure.
    virtual std::int32_t Close() = 0;  ///< 0 success.
    /// Moves `size` × `count` bytes; with `count` 1 (what every caller in the library passes) the result is the number
    /// of bytes moved, short at the end of the file or on failure.
    virtual std::uint32_t Read(void* buffer, std::uint32_t size, std::int32_t count) = 0;
    virtual std::uint32_t Write(const void* buffer, std::uint32_t size, std::int32_t count) = 0;
    virtual std::int32_t Seek(std::int32_t offset, eSeekMode mode) = 0;  ///< 0 success, -1 failure.
    virtual std::int32_t Flush() = 0;                                    ///< 0 success, -1 when not open.
    virtual std::int32_t Tell() = 0;                                     ///< Position, -1 when not open.
    virtual std::int32_t Length() = 0;                                   ///< Bytes, -1 when not open.
    /// Locks or unlocks bytes from the current position against other processes; false where that has no meaning.
    virtual bool LockBytes(std::uint32_t count, bool lock, bool wait);
    virtual std::int32_t StopRead();   ///< Hook for handles whose reads can be interrupted; 0.
    virtual std::int32_t StopWrite();  ///< Likewise for writes; 0.

    const ORVustring& Path() const { return m_path; }
    eAccessMode AccessMode() const { return m_access; }

    /// Reads the next line into `buffer` (`size` characters, the terminator included) and returns it; null at the end
    /// of the file, on a handle that is not open, or for a buffer without room. A line ends at a line feed, which is
    /// not kept and neither is a carriage return before it; in a stretch without a line feed also at a character of all
    /// bits set. What does not fit is skipped, except in a line longer than the block, whose rest is delivered by
    /// further calls. Reads the file in blocks: call ResetReadLineBuffer after seeking, and do not mix the two widths.
    char* ReadLine(char* buffer, std::uint32_t size);
    char16_t* ReadLine(char16_t* buffer, std::uint32_t size);
    /// Forgets what was read ahead for ReadLine, in both widths.
    void ResetReadLineBuffer();

protected:
    COrvFileHandleBase(const COrvFileHandleBase&) = default;
    COrvFileHandleBase& operator=(const COrvFileHandleBase&) = default;

    ORVustring m_path;
    eAccessMode m_access = eAccessNone;
    eBinaryMode m_binary = eBinary;
    std::uint32_t m_flags = 0;

private:
    template <class C>
    C* ReadLineFrom(TLineBlock<C>& block, C* buffer, std::uint32_t size);
    template <class C>
    bool FillBlock(TLineBlock<C>& block);

    TLineBlock<char> m_lineBlock;
    TLineBlock<char16_t> m_wideLineBlock;
    std::uint32_t m_linePosition = 0;  // of the first unread character of the block
    std::uint32_t m_lineBlockSize = COrvFileOptions{}.m_readBufferSize;
};

}  // namespace dorvutil
