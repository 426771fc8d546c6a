// Pools and vectors beside their peers.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

#include "dorvutil/memory.h"

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

void VectorAdd(benchmark::State& state) {
    for (auto _ : state) {
        dorvutil::TVector<std::uint32_t> v;
        for (std::uint32_t i = 0; i < 1000000; ++i) v.Add(i);
        benchmark::DoNotOptimize(v.Data());
    }
}
void VectorAddStd(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<std::uint32_t> v;
        for (std::uint32_t i = 0; i < 1000000; ++i) v.push_back(i);
        benchmark::DoNotOptimize(v.data());
    }
}

int Compare(const std::uint32_t* a, const std::uint32_t* b) { return *a < *b ? -1 : *a > *b; }

std::vector<std::uint32_t> Unsorted() {
    std::vector<std::uint32_t> v(1000000);
    std::mt19937 random(3);
    for (std::uint32_t& x : v) x = random();
    return v;
}

void VectorSort(benchmark::State& state) {
    const auto data = Unsorted();
    for (auto _ : state) {
        state.PauseTiming();
        dorvutil::TVector<std::uint32_t> v;
        v.Add(data.data(), static_cast<std::uint32_t>(data.size()));
        state.ResumeTiming();
        v.QSort(Compare);
        benchmark::DoNotOptimize(v.Data());
    }
}
// The peer calls the same three-way function through a pointer, as a container of this kind must.
void VectorSortStd(benchmark::State& state) {
    const auto data = Unsorted();
    int (*compare)(const std::uint32_t*, const std::uint32_t*) = Compare;
    benchmark::DoNotOptimize(compare);
    for (auto _ : state) {
        state.PauseTiming();
        auto v = data;
        state.ResumeTiming();
        std::sort(v.begin(), v.end(), [compare](std::uint32_t a, std::uint32_t b) { return compare(&a, &b) < 0; });
        benchmark::DoNotOptimize(v.data());
    }
}

void VectorSearch(benchmark::State& state) {
    const auto keys = Unsorted();
    dorvutil::TVector<std::uint32_t> v;
    v.Add(keys.data(), static_cast<std::uint32_t>(keys.size()));
    v.QSort(Compare);
    for (auto _ : state) {
        for (std::size_t i = 0; i < 1000; ++i) benchmark::DoNotOptimize(v.BinSearch(keys[i], false, Compare));
    }
}
void VectorSearchStd(benchmark::State& state) {
    const auto keys = Unsorted();
    auto v = keys;
    std::sort(v.begin(), v.end());
    int (*compare)(const std::uint32_t*, const std::uint32_t*) = Compare;
    benchmark::DoNotOptimize(compare);
    for (auto _ : state) {
        for (std::size_t i = 0; i < 1000; ++i) {
            benchmark::DoNotOptimize(std::lower_bound(v.begin(), v.end(), keys[i],
                                                      [compare](auto& a, auto& b) { return compare(&a, &b) < 0; }));
        }
    }
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
    benchmark::RegisterBenchmark("vector: add 1,000,000|dorvutil", VectorAdd);
    benchmark::RegisterBenchmark("vector: add 1,000,000|std::vector", VectorAddStd);
    benchmark::RegisterBenchmark("vector: sort 1,000,000|dorvutil", VectorSort);
    benchmark::RegisterBenchmark("vector: sort 1,000,000|std::vector", VectorSortStd);
    benchmark::RegisterBenchmark("vector: 1,000 binary searches|dorvutil", VectorSearch);
    benchmark::RegisterBenchmark("vector: 1,000 binary searches|std::vector", VectorSearchStd);
    return 0;
}();

}  // namespace
