#include "dorvutil/security/sha1_kernels.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <cstring>
#include <utility>

#include "dorvutil/security/secure_clear.h"
#include "dorvutil/security/sha1_rounds.h"

#define DORVUTIL_AVX2 __attribute__((target("avx2,bmi,bmi2")))
#define DORVUTIL_AVX2_INLINE DORVUTIL_AVX2 inline __attribute__((always_inline))

// The rounds of a block wait for each other, so that a processor has room beside them: while two blocks go through
// their rounds, the vector unit works out the schedules of the two behind them, one in each half of its registers.
// From word 32 on the schedule can be had from words at least 6 back, four words at a time without a dependency among
// them (M. Locktyukhin, 2010).
namespace dorvutil::sha1 {
namespace {

constexpr std::size_t kBlock = 64;
constexpr std::size_t kGroups = 20;  // of four rounds
constexpr std::size_t kLanes = 8;    // four words of the first block, four of the second

// Schedule words with the round constants added.
struct alignas(32) PairSchedule {
    std::uint32_t m_words[kGroups][kLanes];
};

// The last eight groups of schedule words.
using History = __m256i[8];

DORVUTIL_AVX2_INLINE __m256i Xor(__m256i a, __m256i b) { return _mm256_xor_si256(a, b); }
template <int n>
DORVUTIL_AVX2_INLINE __m256i RotateLeft(__m256i v) {
    return _mm256_or_si256(_mm256_slli_epi32(v, n), _mm256_srli_epi32(v, 32 - n));
}

DORVUTIL_AVX2_INLINE __m256i LoadPair(const std::uint8_t* first, const std::uint8_t* second) {
    const __m256i bigEndian = _mm256_broadcastsi128_si256(_mm_set_epi64x(0x0C0D0E0F08090A0B, 0x0405060700010203));
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(second));
    return _mm256_shuffle_epi8(_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1), bigEndian);
}

// Words 16 to 31. The fourth of a group needs the first of the same group: it is added in behind.
DORVUTIL_AVX2_INLINE __m256i EarlyGroup(__m256i back4, __m256i back3, __m256i back2, __m256i back1) {
    const __m256i back14 = _mm256_alignr_epi8(back3, back4, 8);
    const __m256i x = Xor(Xor(_mm256_srli_si256(back1, 4), back2), Xor(back14, back4));
    const __m256i missing = RotateLeft<2>(_mm256_slli_si256(x, 12));
    return Xor(RotateLeft<1>(x), missing);
}

// Words 32 to 79.
DORVUTIL_AVX2_INLINE __m256i LateGroup(__m256i back8, __m256i back7, __m256i back4, __m256i back2, __m256i back1) {
    const __m256i back6 = _mm256_alignr_epi8(back1, back2, 8);
    return RotateLeft<2>(Xor(Xor(back8, back7), Xor(back4, back6)));
}

template <std::size_t g>
DORVUTIL_AVX2_INLINE void ScheduleGroup(History& w, const std::uint8_t* first, const std::uint8_t* second,
                                        PairSchedule& out) {
    constexpr auto at = [](std::size_t back) { return (g + 8 - back) % 8; };
    __m256i& now = w[g % 8];
    if constexpr (g < 4) {
        now = LoadPair(first + 16 * g, second + 16 * g);
    } else if constexpr (g < 8) {
        now = EarlyGroup(w[at(4)], w[at(3)], w[at(2)], w[at(1)]);
    } else {
        now = LateGroup(now, w[at(7)], w[at(4)], w[at(2)], w[at(1)]);
    }
    const __m256i constant = _mm256_set1_epi32(static_cast<int>(kRoundConstants[g / 5]));
    _mm256_store_si256(reinterpret_cast<__m256i*>(out.m_words[g]), _mm256_add_epi32(now, constant));
}

template <std::size_t g, std::size_t half>
DORVUTIL_AVX2_INLINE void FourRounds(State& v, const PairSchedule& schedule) {
    const std::uint32_t* const words = schedule.m_words[g] + 4 * half;
    Round<4 * g>(v, words[0]);
    Round<4 * g + 1>(v, words[1]);
    Round<4 * g + 2>(v, words[2]);
    Round<4 * g + 3>(v, words[3]);
}

// Step `s` of 20: eight rounds of one block of a pair, and a group of the next pair's schedule.
template <std::size_t half, std::size_t s>
DORVUTIL_AVX2_INLINE void Step(State& v, const PairSchedule& schedule, History& w, const std::uint8_t* next,
                               PairSchedule& out) {
    constexpr std::size_t g = 2 * (s % 10);
    ScheduleGroup<s>(w, next, next + kBlock, out);
    FourRounds<g, half>(v, schedule);
    FourRounds<g + 1, half>(v, schedule);
}

template <std::size_t half, std::size_t... s>
DORVUTIL_AVX2_INLINE void Block(State& state, const PairSchedule& schedule, History& w, const std::uint8_t* next,
                                PairSchedule& out, std::index_sequence<s...>) {
    State v;
    std::memcpy(v, state, sizeof v);
    (Step<half, 10 * half + s>(v, schedule, w, next, out), ...);
    for (std::size_t i = 0; i < 5; ++i) state[i] += v[i];
}

template <std::size_t... g>
DORVUTIL_AVX2_INLINE void SchedulePair(const std::uint8_t* blocks, PairSchedule& out, std::index_sequence<g...>) {
    History w;
    (ScheduleGroup<g>(w, blocks, blocks + kBlock, out), ...);
}

// A block without another: the processor works ahead on its schedule by itself. Both halves do the same.
template <std::size_t... g>
DORVUTIL_AVX2_INLINE void LoneBlock(State& state, const std::uint8_t* block, PairSchedule& schedule,
                                    std::index_sequence<g...>) {
    History w;
    State v;
    std::memcpy(v, state, sizeof v);
    ((ScheduleGroup<g>(w, block, block, schedule), FourRounds<g, 0>(v, schedule)), ...);
    for (std::size_t i = 0; i < 5; ++i) state[i] += v[i];
}

DORVUTIL_AVX2 void CompressPairs(State& state, const std::uint8_t* blocks, std::size_t pairs) {
    PairSchedule schedules[2];
    std::size_t turn = 0;
    SchedulePair(blocks, schedules[0], std::make_index_sequence<kGroups>());
    for (std::size_t pair = 0; pair < pairs; ++pair, turn ^= 1) {
        // Behind the last pair there is none to prepare: it goes over that pair again, which is there to be read.
        const std::uint8_t* const next = blocks + 2 * kBlock * (pair + 1 < pairs ? pair + 1 : pair);
        constexpr auto steps = std::make_index_sequence<10>();
        History w;
        Block<0>(state, schedules[turn], w, next, schedules[turn ^ 1], steps);
        Block<1>(state, schedules[turn], w, next, schedules[turn ^ 1], steps);
    }
    SecureClear(schedules, sizeof schedules);
}

DORVUTIL_AVX2 void CompressOne(State& state, const std::uint8_t* block) {
    PairSchedule schedule;
    LoneBlock(state, block, schedule, std::make_index_sequence<kGroups>());
    SecureClear(&schedule, sizeof schedule);
}

}  // namespace

DORVUTIL_AVX2 void CompressAvx2(State& state, const std::uint8_t* blocks, std::size_t count) {
    const std::size_t pairs = count / 2;
    if (pairs != 0) CompressPairs(state, blocks, pairs);
    if (count % 2 != 0) CompressOne(state, blocks + 2 * kBlock * pairs);
}

}  // namespace dorvutil::sha1

#endif
