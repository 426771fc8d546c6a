#include "dorvutil/security/encryption.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>

#include "dorvutil/frame/random.h"
#include "dorvutil/memory/heap.h"
#include "dorvutil/security/hex_text.h"
#include "dorvutil/security/rijndael.h"
#include "dorvutil/security/secret_bytes.h"
#include "dorvutil/security/secure_clear.h"
#include "dorvutil/security/whole_file.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kBlockBytes = kCipherBlockBytes;
static_assert(kBlockBytes == rijndael::kBlockBytes);
constexpr std::uint32_t kSpare = 64;  // bytes of a buffer handed out behind the length of the input
constexpr std::uint32_t kMostBytes = std::numeric_limits<std::uint32_t>::max() - kSpare;
constexpr std::uint8_t kDefaultKey[] = {'4', '7', '8', '#', '4', '7', '8', '#', '4', '7', '8', '#', '4', '7', '8', '#'};
constexpr std::uint32_t kTableKeyBytes = 16;
constexpr std::uint32_t kMostTableText = 511;

struct Key {
    const std::uint8_t* bytes;
    std::uint32_t length;
};

Key KeyOrDefault(const std::uint8_t* key, std::uint32_t length) {
    return key ? Key{key, length} : Key{kDefaultKey, sizeof kDefaultKey};
}

// The initialisation vector does not stand in the program: its seed is hidden from the compiler, which could work it
// out otherwise.
void StartChain(rijndael::Chain& chain) {
    volatile std::uint32_t seed = 0x7A11C0DE;
    std::uint32_t x = seed;
    for (std::uint8_t& byte : chain.m_bytes) {
        x = x * 1664525u + 1013904223u;
        byte = static_cast<std::uint8_t>(x >> 24);
    }
}

// Room for the result of an input of that length; the spare bytes are zero.
std::uint8_t* NewBuffer(std::uint32_t length) {
    const std::size_t written = length - length % kBlockBytes;  // at least: the last block may be one more
    const std::size_t size = std::size_t{length} + kSpare;
    auto* const buffer = static_cast<std::uint8_t*>(Mem_Malloc(size));
    if (buffer) std::memset(buffer + written, 0, size - written);
    return buffer;
}

// The block that ends the plain data: what is left of it, random bytes, and the number of bytes left.
void FillLastBlock(const std::uint8_t* rest, std::uint32_t count, std::uint8_t (&block)[kBlockBytes]) {
    std::memcpy(block, rest, count);
    for (std::size_t i = count; i + 1 < kBlockBytes; ++i) block[i] = static_cast<std::uint8_t>(ORVRand());
    block[kBlockBytes - 1] = static_cast<std::uint8_t>(count);
}

bool IsUsable(const std::uint8_t* data, std::uint32_t length, const Key& key) {
    return data && length != 0 && length <= kMostBytes && rijndael::IsKeyLength(key.length);
}

using Transform = bool (*)(const std::uint8_t*, std::uint32_t, std::uint8_t**, std::uint32_t*, const std::uint8_t*,
                           std::uint32_t);

bool TransformFile(Transform transform, const ORVustring& fileName, std::uint8_t** out, std::uint32_t* outLength,
                   const std::uint8_t* key, std::uint32_t keyLength) {
    if (out) *out = nullptr;
    if (!out || fileName.empty()) return false;
    const WholeFile file(fileName);
    return transform(file.Data(), file.Length(), out, outLength, key, keyLength);
}

}  // namespace

bool EncryptData(const std::uint8_t* data, std::uint32_t length, std::uint8_t** out, std::uint32_t* outLength,
                 const std::uint8_t* keyBytes, std::uint32_t keyLength) {
    if (out) *out = nullptr;
    const Key key = KeyOrDefault(keyBytes, keyLength);
    if (!out || !outLength || !IsUsable(data, length, key)) return false;
    std::uint8_t* const cipher = NewBuffer(length);
    if (!cipher) return false;
    const std::uint32_t fullBlocks = length / kBlockBytes;
    const std::uint32_t fullBytes = fullBlocks * kBlockBytes;
    SecretBytes<kBlockBytes> last;
    FillLastBlock(data + fullBytes, length % kBlockBytes, last.m_bytes);
    const rijndael::KeySchedule keys(key.bytes, key.length, false);
    rijndael::Chain chain;
    StartChain(chain);
    rijndael::Encrypt(keys, chain, data, cipher, fullBlocks);
    rijndael::Encrypt(keys, chain, last.m_bytes, cipher + fullBytes, 1);
    *out = cipher;
    *outLength = fullBytes + kBlockBytes;
    return true;
}

bool DecryptData(const std::uint8_t* data, std::uint32_t length, std::uint8_t** out, std::uint32_t* outLength,
                 const std::uint8_t* keyBytes, std::uint32_t keyLength) {
    if (out) *out = nullptr;
    const Key key = KeyOrDefault(keyBytes, keyLength);
    if (!out || !outLength || !IsUsable(data, length, key) || length % kBlockBytes != 0) return false;
    std::uint8_t* const plain = NewBuffer(length);
    if (!plain) return false;
    const rijndael::KeySchedule keys(key.bytes, key.length, true);
    rijndael::Chain chain;
    StartChain(chain);
    rijndael::Decrypt(keys, chain, data, plain, length / kBlockBytes);
    const std::uint32_t found = length - kBlockBytes + plain[length - 1];
    if (found > length + kSpare) {
        SecureClear(plain, length);
        Mem_Free(plain);
        return false;
    }
    *out = plain;
    *outLength = found;
    return true;
}

bool EncryptString(const ORVustring& text, char* hexOut, std::uint32_t hexSize, const std::uint8_t* key,
                   std::uint32_t keyLength) {
    if (text.empty() || !hexOut) return false;
    std::uint8_t* cipher = nullptr;
    std::uint32_t cipherLength = 0;
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.c_str());
    if (!EncryptData(bytes, text.length(), &cipher, &cipherLength, key, keyLength)) return false;
    const bool fits = HexToText(cipher, cipherLength, hexOut, hexSize);
    Mem_Free(cipher);
    return fits;
}

bool DecryptString(const ORVustring& hexText, char* textOut, std::uint32_t textSize, const std::uint8_t* key,
                   std::uint32_t keyLength) {
    const std::uint32_t length = hexText.length() / 2;
    if (!textOut || length == 0 || length % kBlockBytes != 0) return false;
    // One byte more for a digit without a partner; zero where the digits end early.
    auto* const cipher = static_cast<std::uint8_t*>(Mem_Calloc(length + 1, 1));
    if (!cipher) return false;
    TextToHex(hexText.c_str(), cipher);
    std::uint8_t* plain = nullptr;
    std::uint32_t plainLength = 0;
    const bool decrypted = DecryptData(cipher, length, &plain, &plainLength, key, keyLength);
    Mem_Free(cipher);
    if (!decrypted) return false;
    const SecretBlock held(plain, length);
    if (plainLength >= textSize) return false;
    std::memcpy(textOut, plain, plainLength);
    textOut[plainLength] = 0;
    return true;
}

bool FileEncrypt(const ORVustring& fileName, std::uint8_t** out, std::uint32_t* outLength, const std::uint8_t* key,
                 std::uint32_t keyLength) {
    return TransformFile(EncryptData, fileName, out, outLength, key, keyLength);
}

bool FileDecrypt(const ORVustring& fileName, std::uint8_t** out, std::uint32_t* outLength, const std::uint8_t* key,
                 std::uint32_t keyLength) {
    return TransformFile(DecryptData, fileName, out, outLength, key, keyLength);
}

bool GetEncryptedString(std::int32_t index, ORVustring& result, const std::uint8_t* blob, const std::uint8_t* key,
                        const std::int16_t* table) {
    if (index < 0 || !blob || !table) return false;
    const std::int16_t* const pair = table + std::size_t{2} * static_cast<std::uint32_t>(index);
    const auto offset = static_cast<std::uint16_t>(pair[0]);
    const auto length = static_cast<std::uint16_t>(pair[1]);
    std::uint8_t* plain = nullptr;
    std::uint32_t plainLength = 0;
    if (!DecryptData(blob + offset, length, &plain, &plainLength, key, kTableKeyBytes)) return false;
    const SecretBlock held(plain, length);
    const auto kept = static_cast<std::int32_t>(std::min(plainLength, kMostTableText));
    result = ORVustring(reinterpret_cast<const char*>(plain), kept);
    return true;
}

}  // namespace dorvutil
