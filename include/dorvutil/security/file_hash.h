#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/memory/list.h"
#include "dorvutil/text/string.h"

/// Integrity hashes: the SHA-1 digest of some bytes, of extra bytes that both sides know (unless `extra` is null), and
/// of a fixed suffix; and files that carry theirs at the end. They find damage. They do not keep anyone from changing
/// the data together with the hash: for that take signatures from a maintained cryptographic library.
///
/// Digests take 20 bytes; the unsigned argument behind one is ignored. All functions answer false for a null digest,
/// for empty data, and when reading, writing or memory fails. Files up to 2 GiB less one byte. Any thread.
namespace dorvutil {

/// How a hash is stored behind a file's content. Any number but 1 counts as 2.
inline constexpr std::int32_t kHashBinary = 1;  ///< 20 bytes.
inline constexpr std::int32_t kHashText = 2;    ///< 40 hexadecimal digits.

/// The integrity hash of `length` bytes.
DORVUTIL_API bool FileGetHash(const std::uint8_t* data, std::uint32_t length, std::uint8_t* digest, std::uint32_t,
                              const void* extra, std::uint32_t extraLength);

/// A fingerprint of large files without reading them whole: of each in turn `pieceCount` pieces of `pieceSize` bytes at
/// equal distances, or as many as fit, or all of a file smaller than one piece. False, with `digest` unchanged, when a
/// file cannot be opened or read, or when nothing was read at all.
DORVUTIL_API bool FileGetHashFromFilePieces(const ListMgr<ORVustring>& files, std::uint32_t pieceSize,
                                            std::uint32_t pieceCount, std::uint8_t* digest, std::uint32_t,
                                            const void* extra, std::uint32_t extraLength);

/// Hashes the content of a file and appends the hash; `digest` receives it too. True when all of it is written. After
/// a failure the content is still there; a full disk may have taken a part of the hash.
DORVUTIL_API bool FileWriteHash(const ORVustring& fileName, std::int32_t mode, std::uint8_t* digest, std::uint32_t,
                                const void* extra, std::uint32_t extraLength);

/// True when the file ends with the hash of what stands before it. In text form the digits may be in upper case; false
/// without the special-character manager. A file must be longer than the hash.
[[nodiscard]] DORVUTIL_API bool FileVerifyHash(const ORVustring& fileName, std::int32_t mode, const void* extra,
                                               std::uint32_t extraLength);

}  // namespace dorvutil
