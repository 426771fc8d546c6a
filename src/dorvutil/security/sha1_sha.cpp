#include "dorvutil/security/sha1_kernels.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <utility>

#include "dorvutil/security/secure_clear.h"

#define DORVUTIL_SHA __attribute__((target("sha,sse4.1,ssse3")))

namespace dorvutil::sha1 {
namespace {

constexpr std::size_t kBlock = 64;

// The five words as the instructions want them: a, b, c, d from the top lane down, and e in the top lane of another.
struct Lanes {
    __m128i abcd;
    __m128i e;
};

DORVUTIL_SHA inline __m128i LoadWords(const std::uint8_t* p) {
    const __m128i reversed = _mm_set_epi64x(0x0001020304050607, 0x08090A0B0C0D0E0F);
    return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), reversed);
}

// Four rounds; group `g` of 20. `w` is a ring of four groups of schedule words. `before` is what abcd was four rounds
// ago: its top lane, rotated, is the e of these rounds.
template <int g>
DORVUTIL_SHA inline __attribute__((always_inline)) void Group(__m128i& abcd, __m128i& before, __m128i (&w)[4],
                                                              const std::uint8_t* block) {
    if constexpr (g < 4) {
        w[g] = LoadWords(block + 16 * g);
    } else {
        const __m128i partly = _mm_xor_si128(_mm_sha1msg1_epu32(w[g % 4], w[(g + 1) % 4]), w[(g + 2) % 4]);
        w[g % 4] = _mm_sha1msg2_epu32(partly, w[(g + 3) % 4]);
    }
    const __m128i e = g == 0 ? _mm_add_epi32(before, w[g % 4]) : _mm_sha1nexte_epu32(before, w[g % 4]);
    before = abcd;
    abcd = _mm_sha1rnds4_epu32(abcd, e, g / 5);
}

template <int... g>
DORVUTIL_SHA inline __attribute__((always_inline)) void AllGroups(__m128i& abcd, __m128i& before, __m128i (&w)[4],
                                                                  const std::uint8_t* block,
                                                                  std::integer_sequence<int, g...>) {
    (Group<g>(abcd, before, w, block), ...);
}

DORVUTIL_SHA Lanes Pack(const State& s) {
    const __m128i abcd = _mm_loadu_si128(reinterpret_cast<const __m128i*>(&s[0]));
    return {_mm_shuffle_epi32(abcd, 0x1B), _mm_set_epi32(static_cast<int>(s[4]), 0, 0, 0)};
}

DORVUTIL_SHA void Unpack(const Lanes& lanes, State& s) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(&s[0]), _mm_shuffle_epi32(lanes.abcd, 0x1B));
    s[4] = static_cast<std::uint32_t>(_mm_extract_epi32(lanes.e, 3));
}

}  // namespace

DORVUTIL_SHA void CompressSha(State& state, const std::uint8_t* blocks, std::size_t count) {
    Lanes lanes = Pack(state);
    __m128i w[4];
    for (; count != 0; --count, blocks += kBlock) {
        __m128i abcd = lanes.abcd;
        __m128i before = lanes.e;
        AllGroups(abcd, before, w, blocks, std::make_integer_sequence<int, 20>());
        lanes.e = _mm_sha1nexte_epu32(before, lanes.e);
        lanes.abcd = _mm_add_epi32(abcd, lanes.abcd);
    }
    Unpack(lanes, state);
    SecureClear(w, sizeof w);
}

}  // namespace dorvutil::sha1

#endif
