#pragma once

#include <cstddef>
#include <cstdint>

/// The compression function of SHA-1 (FIPS 180) over whole blocks of 64 bytes, in three forms that give the same
/// result. Each clears the message schedule it worked on.
namespace dorvutil::sha1 {

using State = std::uint32_t[5];

inline constexpr State kStart = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};

void CompressPlain(State& state, const std::uint8_t* blocks, std::size_t count);
/// The same by the fastest means of this processor.
void Compress(State& state, const std::uint8_t* blocks, std::size_t count);

bool HasShaInstructions();
bool HasAvx2();

/// For processors that have what these need; HasShaInstructions and HasAvx2 tell.
void CompressSha(State& state, const std::uint8_t* blocks, std::size_t count);
void CompressAvx2(State& state, const std::uint8_t* blocks, std::size_t count);

}  // namespace dorvutil::sha1
