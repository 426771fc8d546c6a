#pragma once

#include <cstddef>
#include <cstdint>

/// The loops of the UTF-8 and UTF-16 conversions: one plain form of each, and an AVX2 form of its bulk. The plain form
/// is the reference: the AVX2 form takes whole blocks while source and room last and leaves the rest, at a character
/// boundary, to the plain one. No form reads or writes outside the ranges of its cursor.
namespace dorvutil::utf {

/// What is left to convert and the room for it.
template <class From, class To>
struct Cursor {
    const From* src;
    const From* srcEnd;
    To* dst;
    To* dstEnd;

    std::size_t SourceLeft() const { return static_cast<std::size_t>(srcEnd - src); }
    std::size_t RoomLeft() const { return static_cast<std::size_t>(dstEnd - dst); }
};

using DecodeCursor = Cursor<std::uint8_t, char16_t>;
using EncodeCursor = Cursor<char16_t, std::uint8_t>;

/// How a conversion or a count ended.
enum class Ending { complete, sourceExhausted, illegal, targetExhausted };

/// A count over a text, up to where it ended; `left` bytes or units were not counted.
struct Count {
    std::size_t value;
    std::size_t left;
    Ending ending;
};

Ending DecodePlain(DecodeCursor& c);                          ///< UTF-8 (RFC 3629) to UTF-16.
Ending EncodePlain(EncodeCursor& c);                          ///< UTF-16 to UTF-8; keeps the whole characters written.
Count CountUnitsPlain(const std::uint8_t* s, std::size_t n);  ///< UTF-16 units of UTF-8 text.
Count CountBytesPlain(const char16_t* s, std::size_t n);      ///< UTF-8 bytes of UTF-16 text.
Count CountCharsPlain(const std::uint8_t* s, std::size_t n);  ///< Characters by structure alone (utf8.h).

/// The same by the fastest means of this processor.
Ending Decode(DecodeCursor& c);
Ending Encode(EncodeCursor& c);
Count CountUnits(const std::uint8_t* s, std::size_t n);
Count CountBytes(const char16_t* s, std::size_t n);
Count CountChars(const std::uint8_t* s, std::size_t n);

/// Converts the characters that start before `stop`, which is not behind the source's end.
Ending DecodeThrough(DecodeCursor& c, const std::uint8_t* stop);
Ending EncodeThrough(EncodeCursor& c, const char16_t* stop);

#if defined(__x86_64__)
inline bool HasAvx2() { return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("popcnt"); }

/// The blocks of a conversion: `complete` when the rest is for the plain form.
Ending DecodeBlocksAvx2(DecodeCursor& c);
Ending EncodeBlocksAvx2(EncodeCursor& c);

/// Counts over whole blocks from `s` on, which is moved to where the plain form goes on; `end` bounds what is read.
/// False when a block is ill-formed.
bool CountUnitsAvx2(const std::uint8_t*& s, const std::uint8_t* end, std::size_t& units);
bool CountCharsAvx2(const std::uint8_t*& s, const std::uint8_t* end, std::size_t& chars);

/// Stops in front of a block with an unpaired surrogate, at a character boundary.
std::size_t CountBytesAvx2(const char16_t*& s, const char16_t* end);
#else
inline bool HasAvx2() { return false; }
inline Ending DecodeBlocksAvx2(DecodeCursor&) { return Ending::complete; }
inline Ending EncodeBlocksAvx2(EncodeCursor&) { return Ending::complete; }
inline bool CountUnitsAvx2(const std::uint8_t*&, const std::uint8_t*, std::size_t&) { return true; }
inline bool CountCharsAvx2(const std::uint8_t*&, const std::uint8_t*, std::size_t&) { return true; }
inline std::size_t CountBytesAvx2(const char16_t*&, const char16_t*) { return 0; }
#endif

}  // namespace dorvutil::utf
