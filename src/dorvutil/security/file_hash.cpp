#include "dorvutil/security/file_hash.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/memory/heap.h"
#include "dorvutil/security/hex_text.h"
#include "dorvutil/security/sha1.h"
#include "dorvutil/security/whole_file.h"
#include "dorvutil/text/compare.h"

namespace dorvutil {
namespace {

constexpr std::uint8_t kHashSuffix[] = {0x5D, 0x3A, 0x91, 0xC4, 0x27, 0xE8, 0x0B, 0x6F, 0xD2, 0x14};
constexpr std::uint32_t kDigestDigits = 2 * kSha1DigestBytes;
constexpr std::uint32_t kReadBytes = 64 * 1024;  // many for the system, few enough to stay in the processor's cache

std::uint32_t StoredBytes(std::int32_t mode) { return mode == kHashBinary ? kSha1DigestBytes : kDigestDigits; }

// What both sides know of the data besides the data.
struct Extra {
    const void* data;
    std::uint32_t length;
};

struct HeapDeleter {
    void operator()(std::uint8_t* block) const { Mem_Free(block); }
};

// An integrity hash under way.
class IntegrityHash {
public:
    IntegrityHash() { SHA1Init(&m_context); }

    void Add(const void* data, std::uint32_t length) {
        SHA1Update(&m_context, data, length);
        m_empty = m_empty && length == 0;
    }
    /// The next `length` bytes of a file; false when they are not there.
    bool AddFrom(COrvFileHandleBase& file, std::uint32_t length);
    bool IsEmpty() const { return m_empty; }
    void Finish(const Extra& extra, std::uint8_t* digest) {
        SHA1Update(&m_context, extra.data, extra.length);
        SHA1Update(&m_context, kHashSuffix, sizeof kHashSuffix);
        SHA1Final(&m_context, digest);
    }

private:
    SHA1Context m_context;
    bool m_empty = true;
    std::unique_ptr<std::uint8_t[], HeapDeleter> m_buffer;  // made when first needed
};

bool IntegrityHash::AddFrom(COrvFileHandleBase& file, std::uint32_t length) {
    if (!m_buffer) m_buffer.reset(static_cast<std::uint8_t*>(Mem_Malloc(kReadBytes)));
    if (!m_buffer) return false;
    while (length != 0) {
        const std::uint32_t part = std::min(length, kReadBytes);
        if (FileRead(&file, m_buffer.get(), part) != part) return false;
        Add(m_buffer.get(), part);
        length -= part;
    }
    return true;
}

struct Pieces {
    std::uint32_t size;
    std::uint32_t count;
};

// As many of the pieces wished for as a file of that length has; at least one.
Pieces FitPieces(const Pieces& wished, std::uint32_t length) {
    if (length >= std::uint64_t{wished.size} * wished.count) return wished;
    const std::uint32_t count = length / wished.size;
    return count == 0 ? Pieces{length, 1} : Pieces{wished.size, count};
}

bool AddPieces(IntegrityHash& hash, const ORVustring& fileName, const Pieces& wished) {
    const OpenFile file = OpenForReading(fileName);
    if (!file) return false;
    const std::int32_t length = file->Length();
    if (length <= 0) return length == 0;
    const auto size = static_cast<std::uint32_t>(length);
    const Pieces pieces = FitPieces(wished, size);
    if (pieces.size == 0) return true;
    for (std::uint32_t i = 0; i < pieces.count; ++i) {
        const auto start = static_cast<std::int32_t>(size / pieces.count * i);
        if (FileSeek(file.get(), start, eSeekSet) != 0 || !hash.AddFrom(*file, pieces.size)) return false;
    }
    return true;
}

bool HashWholeFile(const ORVustring& fileName, const Extra& extra, std::uint8_t* digest) {
    const OpenFile file = OpenForReading(fileName);
    const std::uint32_t length = file ? LengthOf(*file) : 0;
    IntegrityHash hash;
    if (length == 0 || !hash.AddFrom(*file, length)) return false;
    hash.Finish(extra, digest);
    return true;
}

// Writes the stored form, kDigestDigits or kSha1DigestBytes bytes.
void Store(const std::uint8_t* digest, std::int32_t mode, char (&stored)[kDigestDigits + 1]) {
    if (mode == kHashBinary) {
        std::memcpy(stored, digest, kSha1DigestBytes);
    } else {
        HexToText(digest, kSha1DigestBytes, stored, kDigestDigits);
    }
}

}  // namespace

bool FileGetHash(const std::uint8_t* data, std::uint32_t length, std::uint8_t* digest, std::uint32_t, const void* extra,
                 std::uint32_t extraLength) {
    if (!data || length == 0 || !digest) return false;
    IntegrityHash hash;
    hash.Add(data, length);
    hash.Finish({extra, extraLength}, digest);
    return true;
}

bool FileGetHashFromFilePieces(const ListMgr<ORVustring>& files, std::uint32_t pieceSize, std::uint32_t pieceCount,
                               std::uint8_t* digest, std::uint32_t, const void* extra, std::uint32_t extraLength) {
    if (!digest) return false;
    IntegrityHash hash;
    for (std::uint32_t i = 0; i < files.Count(); ++i) {
        const ORVustring* const fileName = files[i];
        if (!fileName || !AddPieces(hash, *fileName, {pieceSize, pieceCount})) return false;
    }
    if (hash.IsEmpty()) return false;
    hash.Finish({extra, extraLength}, digest);
    return true;
}

bool FileWriteHash(const ORVustring& fileName, std::int32_t mode, std::uint8_t* digest, std::uint32_t,
                   const void* extra, std::uint32_t extraLength) {
    if (!digest || !HashWholeFile(fileName, {extra, extraLength}, digest)) return false;
    char stored[kDigestDigits + 1];
    Store(digest, mode, stored);
    COrvFileHandleBase* file = FileOpen(fileName, eAccessAppend, eBinary);
    if (!file) return false;
    const std::uint32_t length = StoredBytes(mode);
    const bool written = FileWrite(file, stored, length) == length;
    return FileClose(file) && written;  // closing writes what is still buffered
}

bool FileVerifyHash(const ORVustring& fileName, std::int32_t mode, const void* extra, std::uint32_t extraLength) {
    const std::uint32_t stored = StoredBytes(mode);
    const OpenFile file = OpenForReading(fileName);
    const std::uint32_t length = file ? LengthOf(*file) : 0;
    IntegrityHash hash;
    if (length <= stored || !hash.AddFrom(*file, length - stored)) return false;
    std::uint8_t digest[kSha1DigestBytes];
    hash.Finish({extra, extraLength}, digest);
    char expected[kDigestDigits + 1] = "";
    char found[kDigestDigits + 1] = "";
    Store(digest, mode, expected);
    if (FileRead(file.get(), found, stored) != stored) return false;
    if (mode == kHashBinary) return std::memcmp(found, expected, stored) == 0;
    return GetSpecCharMgr() && SpecialChar_stricmp(found, expected) == 0;
}

}  // namespace dorvutil
