// Vectors beside their peer.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "dorvutil/memory/vector.h"

namespace {

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
    benchmark::RegisterBenchmark("vector: add 1,000,000|dorvutil", VectorAdd);
    benchmark::RegisterBenchmark("vector: add 1,000,000|std::vector", VectorAddStd);
    benchmark::RegisterBenchmark("vector: sort 1,000,000|dorvutil", VectorSort);
    benchmark::RegisterBenchmark("vector: sort 1,000,000|std::vector", VectorSortStd);
    benchmark::RegisterBenchmark("vector: 1,000 binary searches|dorvutil", VectorSearch);
    benchmark::RegisterBenchmark("vector: 1,000 binary searches|std::vector", VectorSearchStd);
    return 0;
}();

}  // namespace
