#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"

/// Encryption with the Rijndael cipher in blocks of 256 bits (which is not AES), chained (CBC) from one initialisation
/// vector that never changes. This keeps data from casual reading. It is not protection against an attacker: equal
/// beginnings show as equal beginnings, nothing proves that a cipher text is unaltered, and the default key is no
/// secret. Programs that need that take authenticated encryption from a maintained cryptographic library.
///
/// A key has 16, 24 or 32 bytes and is used as it is; a null key stands for the default key, whatever `keyLength`. All
/// functions answer false, and set *out to null, for a null argument, a key of another length, an empty input, one
/// longer than 4 GiB less 65 bytes, and when memory runs out. A buffer handed out has the input's length plus 64 bytes,
/// zero behind the last block, and is ended by the caller with Mem_Free. Any thread.
namespace dorvutil {

inline constexpr std::uint32_t kCipherBlockBytes = 32;

/// The cipher text takes the next multiple of 32 above `length`: the last block ends with random bytes and the number
/// of data bytes in it, so that no two encryptions of the same data need be equal.
[[nodiscard]] DORVUTIL_API bool EncryptData(const std::uint8_t* data, std::uint32_t length, std::uint8_t** out,
                                            std::uint32_t* outLength, const std::uint8_t* key, std::uint32_t keyLength);
/// Undoes EncryptData. `length` must be a multiple of 32. A wrong key or damage is noticed only by a last byte above
/// 96, in about five cases of eight; otherwise the result is true and the data are meaningless. *outLength never
/// exceeds the size of the buffer, length + 64.
[[nodiscard]] DORVUTIL_API bool DecryptData(const std::uint8_t* data, std::uint32_t length, std::uint8_t** out,
                                            std::uint32_t* outLength, const std::uint8_t* key, std::uint32_t keyLength);

/// Writes the cipher text as lower-case hexadecimal digits, without a terminator. False when `hexSize` has no room for
/// them: 64 for every 32 bytes of text and 64 more.
[[nodiscard]] DORVUTIL_API bool EncryptString(const ORVustring& text, char* hexOut, std::uint32_t hexSize,
                                              const std::uint8_t* key, std::uint32_t keyLength);
/// Undoes EncryptString and adds a terminator. False, with `textOut` unchanged, when the text and its terminator exceed
/// `textSize` bytes, or when `hexText` does not stand for whole blocks; an odd digit at its end does not count. (A
/// string holds at most 65528 digits, so that texts of 32736 bytes and more do not come back this way.)
[[nodiscard]] DORVUTIL_API bool DecryptString(const ORVustring& hexText, char* textOut, std::uint32_t textSize,
                                              const std::uint8_t* key, std::uint32_t keyLength);

/// EncryptData and DecryptData of a file's content, read through the file manager; the file stays as it is. Files up to
/// 2 GiB less one byte.
[[nodiscard]] DORVUTIL_API bool FileEncrypt(const ORVustring& fileName, std::uint8_t** out, std::uint32_t* outLength,
                                            const std::uint8_t* key, std::uint32_t keyLength);
[[nodiscard]] DORVUTIL_API bool FileDecrypt(const ORVustring& fileName, std::uint8_t** out, std::uint32_t* outLength,
                                            const std::uint8_t* key, std::uint32_t keyLength);

/// Decrypts text number `index` of a table of them with a key of 16 bytes. `table` holds pairs of unsigned 16-bit
/// numbers, the offset in `blob` and the length of the cipher text, and has a pair for that index. `result` is the
/// plain text, of which bytes from the 512th on are dropped; unchanged on false.
[[nodiscard]] DORVUTIL_API bool GetEncryptedString(std::int32_t index, ORVustring& result, const std::uint8_t* blob,
                                                   const std::uint8_t* key, const std::int16_t* table);

}  // namespace dorvutil
