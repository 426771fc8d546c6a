#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"

/// Small checksums against slips and damage; none resists an attacker. Any thread.
namespace dorvutil {

/// The SHA-1 digest, as 40 lower-case digits, of a fixed salt of 4 bytes, of `first` cut to 251 bytes and of as much of
/// `second` as brings the whole to 255. Where one text ends and the other begins does not count. False, with `result`
/// unchanged, when a text is null; false when memory ran out.
DORVUTIL_API bool GetSimpleOrvChecksum(ORVustring& result, const char* first, const char* second);

/// The exclusive-or of the bytes up to, not including, the first '*', carriage return or line feed, and of at most
/// `length` of them: the checksum of an NMEA 0183 sentence, given the text behind its '$'. 0 for null.
[[nodiscard]] DORVUTIL_API char iComputeChecksum(const char* sentence, std::int32_t length);

/// The sum, modulo 2^32, of the `count` pairs at `pairs`. 0 for null.
[[nodiscard]] DORVUTIL_API std::uint32_t iComputeChecksumCoords(const std::int32_t* pairs, std::int32_t count);

/// The sum, modulo 2^32, of the first (size mod 4) bytes of a file and of the 32-bit little-endian words behind them.
/// 0 when it cannot be opened. Of a file that shrinks meanwhile, or fails to be read, the sum of the whole words got so
/// far. Files up to 2 GiB less one byte; 0 for larger ones.
[[nodiscard]] DORVUTIL_API std::uint32_t FileChecksum(const ORVustring& fileName);

}  // namespace dorvutil
