#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// SHA-1 (FIPS 180). It tells damaged data from whole data. It does not protect against an attacker: two texts with one
/// digest can be made on purpose. Programs that need that take SHA-256 or better from a maintained cryptographic
/// library. Any thread; a context belongs to one caller at a time.
namespace dorvutil {

inline constexpr std::uint32_t kSha1DigestBytes = 20;
inline constexpr std::uint32_t kSha1BlockBytes = 64;

/// A digest under way.
struct SHA1Context {
    std::uint32_t m_bitCountLow;  ///< Bits of message so far, as 64 bits in two halves.
    std::uint32_t m_bitCountHigh;
    std::uint32_t m_state[5];
    std::uint32_t m_buffered;               ///< Bytes waiting in m_block, 0 to 63.
    std::uint8_t m_block[kSha1BlockBytes];  ///< The block that is not full yet.
};

/// The three steps of a digest. A null context, and null data, are left alone.
DORVUTIL_API void SHA1Init(SHA1Context* context);
/// Adds `length` bytes. Whole blocks are read where they lie, without a copy.
DORVUTIL_API void SHA1Update(SHA1Context* context, const void* data, std::uint32_t length);
/// Pads the message and writes 20 bytes to `digest`; nothing is written to a null one. The context is used up: the next
/// message starts with SHA1Init.
DORVUTIL_API void SHA1Final(SHA1Context* context, std::uint8_t* digest);

/// The digest of a text without its terminator, 20 bytes at `digest`. Nothing is done when either is null.
DORVUTIL_API void SHA1_HASH(const char* text, std::uint8_t* digest);

}  // namespace dorvutil
