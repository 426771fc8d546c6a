#include "dorvutil/security/checksum.h"

#include <algorithm>
#include <cstring>

#include "dorvutil/security/hex_text.h"
#include "dorvutil/security/sha1.h"
#include "dorvutil/security/whole_file.h"

namespace dorvutil {
namespace {

constexpr std::size_t kSaltBytes = 4;
constexpr std::size_t kMostInput = 255;  // of the salted checksum, the salt included
constexpr std::uint32_t kWordsAtOnce = 4096;

// The salt does not stand in the program: it is put together byte by byte, which `volatile` keeps so.
void WriteSalt(std::uint8_t* out) {
    volatile std::uint8_t salt[kSaltBytes];
    salt[2] = 0xB7;
    salt[0] = 0x3E;
    salt[3] = 0x05;
    salt[1] = 0xC9;
    for (std::size_t i = 0; i < kSaltBytes; ++i) out[i] = salt[i];
}

constexpr bool EndsSentence(char c) { return c == '*' || c == '\r' || c == '\n'; }

std::uint32_t LittleWord(const std::uint8_t* p) {
    return p[0] | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16 | std::uint32_t{p[3]} << 24;
}

}  // namespace

bool GetSimpleOrvChecksum(ORVustring& result, const char* first, const char* second) {
    if (!first || !second) return false;
    std::uint8_t input[kMostInput];
    WriteSalt(input);
    std::size_t length = kSaltBytes;
    for (const char* text : {first, second}) {
        const std::size_t part = strnlen(text, kMostInput - length);
        std::memcpy(input + length, text, part);
        length += part;
    }
    SHA1Context context;
    SHA1Init(&context);
    SHA1Update(&context, input, static_cast<std::uint32_t>(length));
    std::uint8_t digest[kSha1DigestBytes];
    SHA1Final(&context, digest);
    char digits[2 * kSha1DigestBytes];
    HexToText(digest, sizeof digest, digits, sizeof digits);
    result = ORVustring(digits, sizeof digits);
    return !result.empty();
}

char iComputeChecksum(const char* sentence, std::int32_t length) {
    if (!sentence) return 0;
    std::uint32_t sum = 0;
    for (std::int32_t i = 0; i < length && !EndsSentence(sentence[i]); ++i) {
        sum ^= static_cast<std::uint8_t>(sentence[i]);
    }
    return static_cast<char>(sum);
}

std::uint32_t iComputeChecksumCoords(const std::int32_t* pairs, std::int32_t count) {
    if (!pairs) return 0;
    std::uint32_t sum = 0;
    for (std::int32_t i = 0; i < count; ++i, pairs += 2) {
        sum += static_cast<std::uint32_t>(pairs[0]) + static_cast<std::uint32_t>(pairs[1]);
    }
    return sum;
}

std::uint32_t FileChecksum(const ORVustring& fileName) {
    const OpenFile file = OpenForReading(fileName);
    if (!file) return 0;
    std::uint8_t buffer[4 * kWordsAtOnce];
    std::uint32_t left = LengthOf(*file);
    const std::uint32_t head = left % 4;
    if (FileRead(file.get(), buffer, head) != head) return 0;
    std::uint32_t sum = 0;
    for (std::uint32_t i = 0; i < head; ++i) sum += buffer[i];
    for (left -= head; left != 0;) {
        const std::uint32_t wanted = std::min<std::uint32_t>(left, sizeof buffer);
        const std::uint32_t got = FileRead(file.get(), buffer, wanted);
        for (std::uint32_t i = 0; i + 4 <= got; i += 4) sum += LittleWord(buffer + i);
        if (got != wanted) break;
        left -= got;
    }
    return sum;
}

}  // namespace dorvutil
