#pragma once

#include <cstddef>
#include <cstdint>

/// The Rijndael cipher (J. Daemen and V. Rijmen, 1999) with blocks of 256 bits, keys of 128, 192 or 256 bits and 14
/// rounds, chained (CBC), in a plain form and one for processors with AES instructions that give the same result.
namespace dorvutil::rijndael {

inline constexpr std::size_t kBlockBytes = 32;
inline constexpr std::size_t kWords = 8;  // of 32 bits in a block; the byte of row 0 is the lowest
inline constexpr std::size_t kRounds = 14;
inline constexpr std::size_t kShifts[4] = {0, 1, 3, 4};  // columns that ShiftRows moves each row by

inline constexpr bool IsKeyLength(std::uint32_t bytes) { return bytes == 16 || bytes == 24 || bytes == 32; }

/// The round keys of one direction; cleared when it dies.
class KeySchedule {
public:
    /// `keyBytes` is a key length.
    KeySchedule(const std::uint8_t* key, std::uint32_t keyBytes, bool decrypt);
    KeySchedule(const KeySchedule&) = delete;
    KeySchedule& operator=(const KeySchedule&) = delete;
    ~KeySchedule();

    /// In the order of use. Deciphering works with the rounds of the equivalent inverse cipher.
    const std::uint32_t (&Round(std::size_t round) const)[kWords] { return m_keys[round]; }

private:
    void Invert();

    alignas(kBlockBytes) std::uint32_t m_keys[kRounds + 1][kWords];
};

/// The value chained from block to block; cleared when it dies.
struct Chain {
    ~Chain();
    alignas(kBlockBytes) std::uint8_t m_bytes[kBlockBytes];
};

/// Transforms `blocks` blocks and leaves in `chain` what the next block is to be chained with. `in` and `out` are the
/// same or apart.
void EncryptPlain(const KeySchedule& keys, Chain& chain, const std::uint8_t* in, std::uint8_t* out, std::size_t blocks);
void DecryptPlain(const KeySchedule& keys, Chain& chain, const std::uint8_t* in, std::uint8_t* out, std::size_t blocks);

/// The same by the fastest means of this processor.
void Encrypt(const KeySchedule& keys, Chain& chain, const std::uint8_t* in, std::uint8_t* out, std::size_t blocks);
void Decrypt(const KeySchedule& keys, Chain& chain, const std::uint8_t* in, std::uint8_t* out, std::size_t blocks);

/// For processors that have what these need.
bool HasAesInstructions();
void EncryptAes(const KeySchedule& keys, Chain& chain, const std::uint8_t* in, std::uint8_t* out, std::size_t blocks);
void DecryptAes(const KeySchedule& keys, Chain& chain, const std::uint8_t* in, std::uint8_t* out, std::size_t blocks);

}  // namespace dorvutil::rijndael
