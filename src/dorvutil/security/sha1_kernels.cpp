#include "dorvutil/security/sha1_kernels.h"

#include <atomic>
#include <cstring>
#include <utility>

#include "dorvutil/security/big_endian.h"
#include "dorvutil/security/secure_clear.h"
#include "dorvutil/security/sha1_rounds.h"

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace dorvutil::sha1 {
namespace {

using Schedule = std::uint32_t[16];

constexpr std::size_t kBlock = 64;

// The schedule's 80 words pass through a ring of 16.
template <std::size_t t>
[[gnu::always_inline]] inline void ScheduledRound(State& v, Schedule& w, const std::uint8_t* block) {
    std::uint32_t& word = w[t % 16];
    if constexpr (t < 16) {
        word = LoadBig(block + 4 * t);
    } else {
        word = std::rotl(w[(t + 13) % 16] ^ w[(t + 8) % 16] ^ w[(t + 2) % 16] ^ word, 1);
    }
    Round<t>(v, word + kRoundConstants[t / 20]);
}

template <std::size_t... t>
[[gnu::always_inline]] inline void AllRounds(State& v, Schedule& w, const std::uint8_t* block,
                                             std::index_sequence<t...>) {
    (ScheduledRound<t>(v, w, block), ...);
}

using CompressFunction = void (*)(State&, const std::uint8_t*, std::size_t);

#if defined(__x86_64__)
// Asked of the processor itself: not every compiler has a built-in test for these instructions.
bool ProcessorHasSha() {
    constexpr unsigned kLeaf = 7;
    constexpr unsigned kShaBit = 1u << 29;
    unsigned a = 0, b = 0, c = 0, d = 0;
    return __get_cpuid_count(kLeaf, 0, &a, &b, &c, &d) != 0 && (b & kShaBit) != 0;
}
#endif

CompressFunction Choose() {
    if (HasShaInstructions()) return CompressSha;
    return HasAvx2() ? CompressAvx2 : CompressPlain;
}

// Found out once; threads that come together find the same.
constinit std::atomic<CompressFunction> s_best{nullptr};

}  // namespace

void CompressPlain(State& state, const std::uint8_t* blocks, std::size_t count) {
    Schedule w;
    for (; count != 0; --count, blocks += kBlock) {
        State v;
        std::memcpy(v, state, sizeof v);
        AllRounds(v, w, blocks, std::make_index_sequence<80>());
        for (std::size_t i = 0; i < 5; ++i) state[i] += v[i];
    }
    SecureClear(w, sizeof w);
}

void Compress(State& state, const std::uint8_t* blocks, std::size_t count) {
    CompressFunction best = s_best.load(std::memory_order_relaxed);
    if (!best) {
        best = Choose();
        s_best.store(best, std::memory_order_relaxed);
    }
    best(state, blocks, count);
}

#if defined(__x86_64__)
bool HasShaInstructions() { return ProcessorHasSha() && __builtin_cpu_supports("sse4.1"); }
bool HasAvx2() {
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
}
#else
bool HasShaInstructions() { return false; }
bool HasAvx2() { return false; }
void CompressSha(State& state, const std::uint8_t* blocks, std::size_t count) { CompressPlain(state, blocks, count); }
void CompressAvx2(State& state, const std::uint8_t* blocks, std::size_t count) { CompressPlain(state, blocks, count); }
#endif

}  // namespace dorvutil::sha1
