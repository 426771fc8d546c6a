// The general-purpose allocator beside its peers. Those that would replace the program's malloc when linked are loaded
// at run time, for themselves alone, so that malloc stays that of the C library.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "dorvutil/memory/dlmalloc.h"

namespace {

constexpr std::size_t kLive = 100000;
constexpr std::uint32_t kLeast = 16;  // bytes
constexpr std::uint32_t kMost = 2048;

struct Heap {
    const char* m_name;
    void* (*m_take)(std::size_t);
    void (*m_give)(void*);
};

// Replaces random ones of 100,000 live blocks by blocks of random sizes, and writes to each new one.
void Churn(benchmark::State& state, Heap heap) {
    struct Step {
        std::uint32_t m_block;
        std::uint32_t m_size;
    };
    std::mt19937 random(7);
    std::uniform_int_distribution<std::uint32_t> block(0, kLive - 1), size(kLeast, kMost);
    std::vector<Step> steps(1 << 18);
    for (Step& step : steps) step = {block(random), size(random)};
    std::vector<void*> live(kLive);
    for (void*& p : live) p = heap.m_take(size(random));
    for (auto _ : state) {
        for (const Step& step : steps) {
            heap.m_give(live[step.m_block]);
            void* const p = heap.m_take(step.m_size);
            *static_cast<std::uint32_t*>(p) = step.m_size;
            live[step.m_block] = p;
        }
    }
    for (void* p : live) heap.m_give(p);
}

// Takes and gives back 64 blocks, last first.
void Lifo(benchmark::State& state, Heap heap) {
    void* taken[64];
    for (auto _ : state) {
        for (std::size_t i = 0; i < 64; ++i) taken[i] = heap.m_take(kLeast + i * 32);
        benchmark::DoNotOptimize(taken);
        for (std::size_t i = 64; i-- > 0;) heap.m_give(taken[i]);
    }
}

void Register(const Heap& heap) {
    const auto add = [&heap](const char* work, void (*run)(benchmark::State&, Heap)) {
        const std::string name = std::string("heap: ") + work + "|" + heap.m_name;
        benchmark::RegisterBenchmark(name.c_str(), run, heap);
    };
    add("64 blocks of 16 to 2,032 bytes, last in first out", Lifo);
    add("random churn of 16 to 2,048 bytes, 100,000 live", Churn);
}

void RegisterPeer(const char* name, const char* library, const char* take, const char* give) {
    void* const handle = ::dlopen(library, RTLD_NOW | RTLD_LOCAL);
    if (!handle) return;
    const auto takeFunction = reinterpret_cast<void* (*)(std::size_t)>(::dlsym(handle, take));
    const auto giveFunction = reinterpret_cast<void (*)(void*)>(::dlsym(handle, give));
    if (takeFunction && giveFunction) Register({name, takeFunction, giveFunction});
}

const int g_registered = [] {
    Register({"dorvutil", dorvutil::dlmalloc, dorvutil::dlfree});
    Register({"malloc", std::malloc, std::free});
    RegisterPeer("jemalloc", "libjemalloc.so.2", "malloc", "free");
    RegisterPeer("mimalloc", "libmimalloc.so.2", "mi_malloc", "mi_free");
    return 0;
}();

}  // namespace
