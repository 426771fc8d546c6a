#include "dorvutil/security/sha1.h"

#include <algorithm>
#include <cstring>

#include "dorvutil/security/big_endian.h"
#include "dorvutil/security/secure_clear.h"
#include "dorvutil/security/sha1_bytes.h"
#include "dorvutil/security/sha1_kernels.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kLengthAt = 56;  // place of the bit count in the last block

// Modulo 64, so that a context that nobody initialised cannot make the block overrun.
std::uint32_t Buffered(const SHA1Context& context) { return context.m_buffered % kSha1BlockBytes; }

void CountBits(SHA1Context& context, std::uint32_t bytes) {
    const std::uint64_t before = std::uint64_t{context.m_bitCountHigh} << 32 | context.m_bitCountLow;
    const std::uint64_t bits = before + std::uint64_t{bytes} * 8;
    context.m_bitCountLow = static_cast<std::uint32_t>(bits);
    context.m_bitCountHigh = static_cast<std::uint32_t>(bits >> 32);
}

}  // namespace

void SHA1Init(SHA1Context* context) {
    if (!context) return;
    context->m_bitCountLow = context->m_bitCountHigh = 0;
    std::copy_n(sha1::kStart, 5, context->m_state);
    context->m_buffered = 0;
}

void SHA1Update(SHA1Context* context, const void* data, std::uint32_t length) {
    if (!context || !data || length == 0) return;
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    CountBits(*context, length);
    const std::uint32_t buffered = Buffered(*context);
    if (buffered != 0) {
        const std::uint32_t part = std::min(length, kSha1BlockBytes - buffered);
        std::memcpy(context->m_block + buffered, bytes, part);
        context->m_buffered = buffered + part;
        if (context->m_buffered < kSha1BlockBytes) return;
        sha1::Compress(context->m_state, context->m_block, 1);
        bytes += part;
        length -= part;
    }
    const std::uint32_t blocks = length / kSha1BlockBytes;
    if (blocks != 0) sha1::Compress(context->m_state, bytes, blocks);
    context->m_buffered = length % kSha1BlockBytes;
    std::memcpy(context->m_block, bytes + std::size_t{blocks} * kSha1BlockBytes, context->m_buffered);
}

void SHA1Final(SHA1Context* context, std::uint8_t* digest) {
    if (!context) return;
    std::uint8_t* const block = context->m_block;
    std::uint32_t used = Buffered(*context);
    block[used++] = 0x80;
    if (used > kLengthAt) {
        std::memset(block + used, 0, kSha1BlockBytes - used);
        sha1::Compress(context->m_state, block, 1);
        used = 0;
    }
    std::memset(block + used, 0, kLengthAt - used);
    StoreBig(block + kLengthAt, context->m_bitCountHigh);
    StoreBig(block + kLengthAt + 4, context->m_bitCountLow);
    sha1::Compress(context->m_state, block, 1);
    context->m_buffered = 0;
    if (!digest) return;
    for (std::size_t i = 0; i < 5; ++i) StoreBig(digest + 4 * i, context->m_state[i]);
}

void AddBytes(SHA1Context& context, const void* data, std::size_t length) {
    constexpr std::size_t kMost = std::size_t{1} << 31;  // of one update; a multiple of the block
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    for (; length > kMost; length -= kMost, bytes += kMost) SHA1Update(&context, bytes, kMost);
    SHA1Update(&context, bytes, static_cast<std::uint32_t>(length));
}

void SHA1_HASH(const char* text, std::uint8_t* digest) {
    if (!text || !digest) return;
    SHA1Context context;
    SHA1Init(&context);
    AddBytes(context, text, std::strlen(text));
    SHA1Final(&context, digest);
}

}  // namespace dorvutil
