#include "dorvutil/security/hmac.h"

#include <cstddef>
#include <cstring>

#include "dorvutil/memory/heap.h"
#include "dorvutil/security/hex_text.h"
#include "dorvutil/security/secure_clear.h"
#include "dorvutil/security/sha1_bytes.h"

namespace dorvutil {
namespace {

constexpr std::size_t kResultBytes = 41;
constexpr std::uint8_t kInnerPad = 0x36;
constexpr std::uint8_t kOuterPad = 0x5C;

using KeyBlock = std::uint8_t[kSha1BlockBytes];

void MakeKeyBlock(const char* key, KeyBlock& block) {
    std::memset(block, 0, sizeof block);
    const std::size_t length = std::strlen(key);
    if (length > sizeof block) {
        SHA1_HASH(key, block);
    } else {
        std::memcpy(block, key, length);
    }
}

// Every byte of the block is one of the key XOR `before`; afterwards it is one of the key XOR `after`.
void ChangePad(KeyBlock& block, std::uint8_t before, std::uint8_t after) {
    const auto change = static_cast<std::uint8_t>(before ^ after);
    for (std::uint8_t& byte : block) byte = static_cast<std::uint8_t>(byte ^ change);
}

void HashBehind(const KeyBlock& block, const void* data, std::size_t length, std::uint8_t* digest) {
    SHA1Context context;
    SHA1Init(&context);
    SHA1Update(&context, block, sizeof block);
    AddBytes(context, data, length);
    SHA1Final(&context, digest);
    SecureClear(&context, sizeof context);
}

struct TestCase {
    const char* key;  // as hexadecimal digits, `keyRepeat` times
    int keyRepeat;
    const char* data;  // a text, `dataRepeat` times
    int dataRepeat;
    const char* code;
};

// RFC 2202, section 3.
constexpr TestCase kTestCases[] = {
    {"0b", 20, "Hi There", 1, "b617318655057264e28bc0b6fb378c8ef146be00"},
    {"4a656665", 1, "what do ya want for nothing?", 1, "effcdf6ae5eb2fa2d27416d5f184df9c259a7c79"},
    {"aa", 20, "\xDD", 50, "125d7342b9ac11cd91a39af48aa17b4f63f175d3"},
    {"0102030405060708090a0b0c0d0e0f10111213141516171819", 1, "\xCD", 50, "4c9007f4026250c6bc8414f9bf50c86c2d7235da"},
    {"0c", 20, "Test With Truncation", 1, "4c1a03424b55e07fe7f27be1d58bb9324a9a5a04"},
    {"aa", 80, "Test Using Larger Than Block-Size Key - Hash Key First", 1, "aa4ae5e15272d00e95705637ce8a3b55ed402112"},
    {"aa", 80, "Test Using Larger Than Block-Size Key and Larger Than One Block-Size Data", 1,
     "e8e99d0f45237d786d6bbaa7965c7808bbff1a91"},
};
constexpr std::size_t kMostText = 80;  // bytes of the longest key or data above

void AppendRepeated(char (&text)[kMostText + 1], const char* piece, int times) {
    for (; times > 0; --times) std::strcat(text, piece);
}

bool Passes(const TestCase& test) {
    std::uint8_t keyPiece[kMostText + 1] = {};
    TextToHex(test.key, keyPiece);
    char key[kMostText + 1] = "";
    char data[kMostText + 1] = "";
    AppendRepeated(key, reinterpret_cast<const char*>(keyPiece), test.keyRepeat);
    AppendRepeated(data, test.data, test.dataRepeat);
    std::uint8_t expected[kSha1DigestBytes];
    TextToHex(test.code, expected);
    std::uint8_t* const code = HMAC_SHA1(key, data);
    const bool passes = code && std::memcmp(code, expected, sizeof expected) == 0;
    Mem_Free(code);
    return passes;
}

}  // namespace

std::uint8_t* HMAC_SHA1(const char* key, const char* message) {
    if (!key || !message) return nullptr;
    auto* const result = static_cast<std::uint8_t*>(Mem_Calloc(1, kResultBytes));
    if (!result) return nullptr;
    KeyBlock block;
    MakeKeyBlock(key, block);
    ChangePad(block, 0, kInnerPad);
    std::uint8_t inner[kSha1DigestBytes];
    HashBehind(block, message, std::strlen(message), inner);
    ChangePad(block, kInnerPad, kOuterPad);
    HashBehind(block, inner, sizeof inner, result);
    SecureClear(block, sizeof block);
    SecureClear(inner, sizeof inner);
    return result;
}

bool HMAC_SHA1_TestCases() {
    for (const TestCase& test : kTestCases) {
        if (!Passes(test)) return false;
    }
    return true;
}

}  // namespace dorvutil
