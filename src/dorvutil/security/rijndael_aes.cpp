#include "dorvutil/security/rijndael.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <array>

#define DORVUTIL_AES __attribute__((target("aes,ssse3,sse4.1")))
#define DORVUTIL_AES_INLINE DORVUTIL_AES inline __attribute__((always_inline))

// The AES instructions do a round on four columns and shift their rows by 0, 1, 2 and 3 columns. A state of eight
// columns, in two registers, gets its own shifts by moving the bytes first: each half takes some of its bytes from the
// other half, in their places, and then arranges them so that the instruction's shift brings them where they belong
// (S. Gueron, 2010).
namespace dorvutil::rijndael {
namespace {

constexpr std::size_t kHalf = 16;
constexpr std::size_t kTogether = 4;  // blocks deciphered at once: they do not wait for each other

struct alignas(kHalf) Moves {
    std::array<std::uint8_t, kHalf> fromOther{};  // 0x80 where the byte comes from the other half
    std::array<std::uint8_t, kHalf> from{};       // where it lies in its half
};

// For the byte that row r of column c is to have: it stands kShifts[r] columns further in the state, and the
// instruction takes it from r columns further in the half; for deciphering, as many columns before.
constexpr Moves MakeMoves(bool deciphering) {
    const auto moved = [=](std::size_t column, std::size_t by, std::size_t columns) {
        return (column + (deciphering ? columns - by : by)) % columns;
    };
    Moves moves;
    for (std::size_t row = 0; row < 4; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            const std::size_t source = moved(column, kShifts[row], 8);
            const std::size_t at = 4 * (source % 4) + row;
            moves.fromOther[at] = source < 4 ? 0 : 0x80;
            moves.from[4 * moved(column, row, 4) + row] = static_cast<std::uint8_t>(at);
        }
    }
    return moves;
}
alignas(kHalf) constexpr Moves kForwardMoves = MakeMoves(false);
alignas(kHalf) constexpr Moves kBackwardMoves = MakeMoves(true);

struct State {
    __m128i low;
    __m128i high;
};

DORVUTIL_AES_INLINE __m128i Load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
DORVUTIL_AES_INLINE State LoadState(const void* p) {
    return {Load(p), Load(static_cast<const std::uint8_t*>(p) + kHalf)};
}
DORVUTIL_AES_INLINE void StoreState(const State& s, std::uint8_t* p) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), s.low);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p + kHalf), s.high);
}
DORVUTIL_AES_INLINE State Xor(const State& a, const State& b) {
    return {_mm_xor_si128(a.low, b.low), _mm_xor_si128(a.high, b.high)};
}

DORVUTIL_AES_INLINE State Move(const State& s, const Moves& moves) {
    const __m128i fromOther = Load(moves.fromOther.data());
    const __m128i from = Load(moves.from.data());
    return {_mm_shuffle_epi8(_mm_blendv_epi8(s.low, s.high, fromOther), from),
            _mm_shuffle_epi8(_mm_blendv_epi8(s.high, s.low, fromOther), from)};
}

DORVUTIL_AES_INLINE State EncryptState(const KeySchedule& keys, State s) {
    s = Xor(s, LoadState(keys.Round(0)));
    for (std::size_t round = 1; round < kRounds; ++round) {
        const State key = LoadState(keys.Round(round));
        s = Move(s, kForwardMoves);
        s = {_mm_aesenc_si128(s.low, key.low), _mm_aesenc_si128(s.high, key.high)};
    }
    const State key = LoadState(keys.Round(kRounds));
    s = Move(s, kForwardMoves);
    return {_mm_aesenclast_si128(s.low, key.low), _mm_aesenclast_si128(s.high, key.high)};
}

// `n` blocks side by side.
template <std::size_t n>
DORVUTIL_AES_INLINE void DecryptStates(const KeySchedule& keys, State (&s)[n]) {
    const State first = LoadState(keys.Round(0));
    for (State& one : s) one = Xor(one, first);
    for (std::size_t round = 1; round < kRounds; ++round) {
        const State key = LoadState(keys.Round(round));
        for (State& one : s) {
            one = Move(one, kBackwardMoves);
            one = {_mm_aesdec_si128(one.low, key.low), _mm_aesdec_si128(one.high, key.high)};
        }
    }
    const State last = LoadState(keys.Round(kRounds));
    for (State& one : s) {
        one = Move(one, kBackwardMoves);
        one = {_mm_aesdeclast_si128(one.low, last.low), _mm_aesdeclast_si128(one.high, last.high)};
    }
}

template <std::size_t n>
DORVUTIL_AES_INLINE void DecryptChained(const KeySchedule& keys, State& before, const std::uint8_t* in,
                                        std::uint8_t* out) {
    State cipher[n];
    State plain[n];
    for (std::size_t i = 0; i < n; ++i) plain[i] = cipher[i] = LoadState(in + i * kBlockBytes);
    DecryptStates(keys, plain);
    for (std::size_t i = 0; i < n; ++i) {
        StoreState(Xor(plain[i], before), out + i * kBlockBytes);
        before = cipher[i];
    }
}

}  // namespace

bool HasAesInstructions() { return __builtin_cpu_supports("aes") && __builtin_cpu_supports("sse4.1"); }

DORVUTIL_AES void EncryptAes(const KeySchedule& keys, Chain& chain, const std::uint8_t* in, std::uint8_t* out,
                             std::size_t blocks) {
    State state = LoadState(chain.m_bytes);
    for (; blocks != 0; --blocks, in += kBlockBytes, out += kBlockBytes) {
        state = EncryptState(keys, Xor(state, LoadState(in)));
        StoreState(state, out);
    }
    StoreState(state, chain.m_bytes);
}

DORVUTIL_AES void DecryptAes(const KeySchedule& keys, Chain& chain, const std::uint8_t* in, std::uint8_t* out,
                             std::size_t blocks) {
    State before = LoadState(chain.m_bytes);
    for (; blocks >= kTogether; blocks -= kTogether) {
        DecryptChained<kTogether>(keys, before, in, out);
        in += kTogether * kBlockBytes;
        out += kTogether * kBlockBytes;
    }
    for (; blocks != 0; --blocks, in += kBlockBytes, out += kBlockBytes) DecryptChained<1>(keys, before, in, out);
    StoreState(before, chain.m_bytes);
}

}  // namespace dorvutil::rijndael

#else

namespace dorvutil::rijndael {

bool HasAesInstructions() { return false; }
void EncryptAes(const KeySchedule& keys, Chain& chain, const std::uint8_t* in, std::uint8_t* out, std::size_t blocks) {
    EncryptPlain(keys, chain, in, out, blocks);
}
void DecryptAes(const KeySchedule& keys, Chain& chain, const std::uint8_t* in, std::uint8_t* out, std::size_t blocks) {
    DecryptPlain(keys, chain, in, out, blocks);
}

}  // namespace dorvutil::rijndael

#endif
