// Pools beside their peers.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

#include "dorvutil/memory/pool.h"

#ifdef BENCH_BOOST
#include <boost/pool/singleton_pool.hpp>
#endif

namespace {

constexpr std::uint32_t kElement = 92;  // bytes
constexpr std::size_t kLive = 100000;

struct Pool {
    void* Take() { return m_pool.Alloc(); }
    void Give(void* p) { m_pool.Free(p); }
    dorvutil::Allocator m_pool{kElement, dorvutil::ts_critSec, 4096, nullptr, false, false};
};
struct Malloc {
    void* Take() { return std::malloc(kElement); }
    void Give(void* p) { std::free(p); }
};
#ifdef BENCH_BOOST
struct BoostPool {
    struct Tag {};
    using P = boost::singleton_pool<Tag, kElement>;
    void* Take() { return P::malloc(); }
    void Give(void* p) { P::free(p); }
};
#endif

// Takes and gives back 64 elements, last first.
template <class P>
void Lifo(benchmark::State& state) {
    P pool;
    void* taken[64];
    for (auto _ : state) {
        for (void*& p : taken) p = pool.Take();
        benchmark::DoNotOptimize(taken);
        for (int i = 63; i >= 0; --i) pool.Give(taken[i]);
    }
}

// Replaces random ones of 100,000 live elements.
template <class P>
void Churn(benchmark::State& state) {
    P pool;
    std::vector<void*> live(kLive);
    for (void*& p : live) p = pool.Take();
    std::vector<std::uint32_t> order(1 << 16);
    std::mt19937 random(7);
    for (std::uint32_t& i : order) i = random() % kLive;
    std::shuffle(live.begin(), live.end(), random);
    for (auto _ : state) {
        for (const std::uint32_t i : order) {
            pool.Give(live[i]);
            live[i] = pool.Take();
        }
    }
    for (void* p : live) pool.Give(p);
}

const int g_registered = [] {
    benchmark::RegisterBenchmark("pool: 64 elements of 92 bytes, last in first out|dorvutil", Lifo<Pool>);
    benchmark::RegisterBenchmark("pool: 64 elements of 92 bytes, last in first out|malloc", Lifo<Malloc>);
    benchmark::RegisterBenchmark("pool: random churn, 100,000 live|dorvutil", Churn<Pool>);
    benchmark::RegisterBenchmark("pool: random churn, 100,000 live|malloc", Churn<Malloc>);
#ifdef BENCH_BOOST
    benchmark::RegisterBenchmark("pool: 64 elements of 92 bytes, last in first out|boost::singleton_pool",
                                 Lifo<BoostPool>);
    benchmark::RegisterBenchmark("pool: random churn, 100,000 live|boost::singleton_pool", Churn<BoostPool>);
#endif
    return 0;
}();

}  // namespace
