#pragma once

#include <cstddef>
#include <cstdint>

/// Names of files: narrow text or UTF-16 with `\` in the library, bytes with `/` in the system.
///
/// Narrow text holds the system's bytes themselves, so that names of any bytes come through a directory and back. Only
/// a
/// `\` inside a name has a form of its own, the bytes ED B1 9C (no UTF-8: U+DC5C by its pattern); where a name holds
/// these three, or ED B3 AD, the first becomes ED B3 AD.
///
/// In UTF-16 the bytes are UTF-8 as far as they go. What is not comes through a directory and back unchanged:
/// - a byte that is no part of a UTF-8 character (0x80..0xFF), and a `\` inside a name, is the lone low surrogate
///   U+DC00 + byte;
/// - any other lone surrogate of a path is its three bytes after the pattern of UTF-8, and read back as such.
/// Every byte string maps to a UTF-16 text that maps back to it. The reverse holds but for texts in which lone
/// surrogates U+DC80..U+DCFF stand for bytes that together spell a character.
namespace dorvutil::platform {

/// The system's form of a path, for as long as this object lives. `/` and `\` both separate; a drive prefix ("C:") is
/// dropped, for the system has no drives. A path that is null, or longer than the system takes, becomes empty, which no
/// file answers to.
class NativePath {
public:
    static constexpr std::size_t kCapacity = 4096;  ///< Bytes with the end mark.

    explicit NativePath(const char* path);
    explicit NativePath(const char16_t* path);
    const char* c_str() const { return m_bytes; }

private:
    char m_bytes[kCapacity];
};

/// Writes one code point (surrogates included) by the pattern of UTF-8, one to four bytes; returns how many.
std::size_t EncodeUtf8(std::uint32_t code, char* out);

/// Writes the narrow form of a native name or path of `count` bytes to `out`, which has room for 3 * `count` bytes, and
/// returns how many were written. No end mark.
std::size_t FromNativePath(const char* bytes, std::size_t count, char* out);

/// Writes the wide form of a native name or path of `count` bytes to `out`, which has room for `count` units, and
/// returns how many were written. No end mark.
std::size_t FromNativePath(const char* bytes, std::size_t count, char16_t* out);

}  // namespace dorvutil::platform
