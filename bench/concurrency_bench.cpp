// The reader/writer lock beside std::shared_mutex: uncontended, and four threads of which one in sixteen holds writes.
#include <benchmark/benchmark.h>

#include <shared_mutex>

#include "dorvutil/concurrency.h"

namespace {

struct Ours {
    void Read() { m_lock.WaitToRead(true); }
    void Write() { m_lock.WaitToWrite(); }
    void DoneReading() { m_lock.Done(); }
    void DoneWriting() { m_lock.Done(); }
    dorvutil::SingleWriterMultiReader m_lock;
};
struct Std {
    void Read() { m_lock.lock_shared(); }
    void Write() { m_lock.lock(); }
    void DoneReading() { m_lock.unlock_shared(); }
    void DoneWriting() { m_lock.unlock(); }
    std::shared_mutex m_lock;
};

template <class L>
void ReadHolds(benchmark::State& state) {
    static L lock;
    for (auto _ : state) {
        lock.Read();
        lock.DoneReading();
    }
}

template <class L>
void MixedHolds(benchmark::State& state) {
    static L lock;
    static int value;
    int turn = 0;
    for (auto _ : state) {
        if (++turn % 16 == 0) {
            lock.Write();
            ++value;
            lock.DoneWriting();
        } else {
            lock.Read();
            benchmark::DoNotOptimize(value);
            lock.DoneReading();
        }
    }
}

const int g_registered = [] {
    benchmark::RegisterBenchmark("reader/writer lock: a read hold, uncontended|dorvutil", ReadHolds<Ours>);
    benchmark::RegisterBenchmark("reader/writer lock: a read hold, uncontended|std::shared_mutex", ReadHolds<Std>);
    benchmark::RegisterBenchmark("reader/writer lock: 4 threads, 1/16 writes|dorvutil", MixedHolds<Ours>)
        ->Threads(4)
        ->UseRealTime();
    benchmark::RegisterBenchmark("reader/writer lock: 4 threads, 1/16 writes|std::shared_mutex", MixedHolds<Std>)
        ->Threads(4)
        ->UseRealTime();
    return 0;
}();

}  // namespace
