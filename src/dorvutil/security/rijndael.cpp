#include "dorvutil/security/rijndael.h"

#include <bit>
#include <cstring>
#include <utility>

#include "dorvutil/security/rijndael_tables.h"
#include "dorvutil/security/secure_clear.h"

namespace dorvutil::rijndael {
namespace {

using Block = std::uint32_t[kWords];

constexpr std::uint32_t ByteOf(std::uint32_t word, std::size_t row) { return word >> 8 * row & 0xFFu; }

// The lowest byte of a word is the first one in memory.
void LoadBlock(const std::uint8_t* p, Block& block) {
    std::memcpy(block, p, sizeof block);
    if constexpr (std::endian::native == std::endian::big) {
        for (std::uint32_t& word : block) word = __builtin_bswap32(word);
    }
}

void StoreBlock(Block& block, std::uint8_t* p) {
    if constexpr (std::endian::native == std::endian::big) {
        for (std::uint32_t& word : block) word = __builtin_bswap32(word);
    }
    std::memcpy(p, block, sizeof block);
}

void XorInto(Block& block, const Block& other) {
    for (std::size_t i = 0; i < kWords; ++i) block[i] ^= other[i];
}

std::uint32_t Substitute(std::uint32_t word) {
    std::uint32_t result = 0;
    for (std::size_t row = 0; row < 4; ++row) result |= std::uint32_t{kSBox[ByteOf(word, row)]} << 8 * row;
    return result;
}

// The inverse of MixColumns alone: the table substitutes back what the S-box puts in front.
std::uint32_t Unmix(std::uint32_t word) {
    std::uint32_t result = 0;
    for (std::size_t row = 0; row < 4; ++row) result ^= kBackward[row][kSBox[ByteOf(word, row)]];
    return result;
}

// A direction: where ShiftRows takes each row's bytes from, and the tables.
struct Forward {
    static constexpr std::size_t From(std::size_t column, std::size_t row) { return (column + kShifts[row]) % kWords; }
    static constexpr const WordTables& kTables = kForward;
    static constexpr const Bytes& kBox = kSBox;
};
struct Backward {
    static constexpr std::size_t From(std::size_t column, std::size_t row) {
        return (column + kWords - kShifts[row]) % kWords;
    }
    static constexpr const WordTables& kTables = kBackward;
    static constexpr const Bytes& kBox = kInverseSBox;
};

template <class Way, std::size_t c>
[[gnu::always_inline]] inline std::uint32_t Column(const Block& s, std::uint32_t key) {
    return Way::kTables[0][ByteOf(s[Way::From(c, 0)], 0)] ^ Way::kTables[1][ByteOf(s[Way::From(c, 1)], 1)] ^
           Way::kTables[2][ByteOf(s[Way::From(c, 2)], 2)] ^ Way::kTables[3][ByteOf(s[Way::From(c, 3)], 3)] ^ key;
}

template <class Way, std::size_t c>
[[gnu::always_inline]] inline std::uint32_t LastColumn(const Block& s, std::uint32_t key) {
    std::uint32_t word = key;
    for (std::size_t row = 0; row < 4; ++row) {
        word ^= std::uint32_t{Way::kBox[ByteOf(s[Way::From(c, row)], row)]} << 8 * row;
    }
    return word;
}

template <class Way, std::size_t... c>
[[gnu::always_inline]] inline void Transform(const KeySchedule& keys, Block& s, std::index_sequence<c...>) {
    XorInto(s, keys.Round(0));
    for (std::size_t round = 1; round < kRounds; ++round) {
        const Block& key = keys.Round(round);
        const Block next = {Column<Way, c>(s, key[c])...};
        std::memcpy(s, next, sizeof next);
    }
    const Block& key = keys.Round(kRounds);
    const Block last = {LastColumn<Way, c>(s, key[c])...};
    std::memcpy(s, last, sizeof last);
}

}  // namespace

KeySchedule::KeySchedule(const std::uint8_t* key, std::uint32_t keyBytes, bool decrypt) {
    const std::size_t keyWords = keyBytes / 4;
    std::uint32_t* const words = m_keys[0];
    for (std::size_t i = 0; i < keyBytes; ++i) {
        const std::uint32_t before = i % 4 == 0 ? 0 : words[i / 4];
        words[i / 4] = before | std::uint32_t{key[i]} << 8 * (i % 4);
    }
    std::uint32_t constant = 1;
    for (std::size_t i = keyWords; i < kWords * (kRounds + 1); ++i) {
        std::uint32_t word = words[i - 1];
        if (i % keyWords == 0) {
            word = Substitute(std::rotr(word, 8)) ^ constant;
            constant = Double(constant);
        } else if (keyWords > 6 && i % keyWords == 4) {
            word = Substitute(word);
        }
        words[i] = words[i - keyWords] ^ word;
    }
    if (decrypt) Invert();
}

KeySchedule::~KeySchedule() { SecureClear(m_keys, sizeof m_keys); }

void KeySchedule::Invert() {
    for (std::size_t i = 0; i < kRounds - i; ++i) std::swap(m_keys[i], m_keys[kRounds - i]);
    for (std::size_t round = 1; round < kRounds; ++round) {
        for (std::uint32_t& word : m_keys[round]) word = Unmix(word);
    }
}

Chain::~Chain() { SecureClear(m_bytes, sizeof m_bytes); }

void EncryptPlain(const KeySchedule& keys, Chain& chain, const std::uint8_t* in, std::uint8_t* out,
                  std::size_t blocks) {
    Block state;
    Block plain;
    LoadBlock(chain.m_bytes, state);
    for (; blocks != 0; --blocks, in += kBlockBytes, out += kBlockBytes) {
        LoadBlock(in, plain);
        XorInto(state, plain);
        Transform<Forward>(keys, state, std::make_index_sequence<kWords>());
        Block cipher;
        std::memcpy(cipher, state, sizeof cipher);
        StoreBlock(cipher, out);
    }
    StoreBlock(state, chain.m_bytes);
    SecureClear(plain, sizeof plain);
}

void DecryptPlain(const KeySchedule& keys, Chain& chain, const std::uint8_t* in, std::uint8_t* out,
                  std::size_t blocks) {
    Block state;
    Block before;
    LoadBlock(chain.m_bytes, before);
    for (; blocks != 0; --blocks, in += kBlockBytes, out += kBlockBytes) {
        Block cipher;
        LoadBlock(in, cipher);
        std::memcpy(state, cipher, sizeof state);
        Transform<Backward>(keys, state, std::make_index_sequence<kWords>());
        XorInto(state, before);
        StoreBlock(state, out);
        std::memcpy(before, cipher, sizeof before);
    }
    StoreBlock(before, chain.m_bytes);
    SecureClear(state, sizeof state);
}

void Encrypt(const KeySchedule& keys, Chain& chain, const std::uint8_t* in, std::uint8_t* out, std::size_t blocks) {
    (HasAesInstructions() ? EncryptAes : EncryptPlain)(keys, chain, in, out, blocks);
}

void Decrypt(const KeySchedule& keys, Chain& chain, const std::uint8_t* in, std::uint8_t* out, std::size_t blocks) {
    (HasAesInstructions() ? DecryptAes : DecryptPlain)(keys, chain, in, out, blocks);
}

}  // namespace dorvutil::rijndael
