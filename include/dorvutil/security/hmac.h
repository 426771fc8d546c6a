#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// Keyed hashes (RFC 2104) with SHA-1. For checks against damage and mix-ups, and for peers that ask for just this; new
/// protections against an attacker belong to a maintained cryptographic library. Any thread.
namespace dorvutil {

/// The HMAC-SHA1 code of `message` under `key`, both up to their terminators: a new block of 41 bytes, of which the
/// first 20 are the code and the rest is 0, ended by the caller with Mem_Free. Null when an argument is null or memory
/// ran out.
[[nodiscard]] DORVUTIL_API std::uint8_t* HMAC_SHA1(const char* key, const char* message);

/// Runs the seven test cases of RFC 2202 for HMAC-SHA1; true when all give the published codes.
[[nodiscard]] DORVUTIL_API bool HMAC_SHA1_TestCases();

}  // namespace dorvutil
