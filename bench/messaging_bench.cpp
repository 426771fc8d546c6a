// The callback hub beside its peers: one message to 1, 10 and 100 listeners.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "dorvutil/messaging.h"

#ifdef BENCH_BOOST
#include <boost/signals2.hpp>
#endif
#ifdef BENCH_SIGC
#include <sigc++/sigc++.h>
#endif

namespace {

class Counter : public dorvutil::CallbackListener {
public:
    Counter() : CallbackListener(dorvutil::EMsgID{50}, 0) {}
    void OnCallback(dorvutil::EMsgID, const dorvutil::CBDataBase* data) override {
        m_sum += static_cast<const dorvutil::CBDataL*>(data)->m_value;
    }
    std::int64_t m_sum = 0;
};

void Dispatch(benchmark::State& state, int listeners) {
    std::vector<std::unique_ptr<Counter>> all;
    for (int i = 0; i < listeners; ++i) all.push_back(std::make_unique<Counter>());
    const dorvutil::CBDataL data(1);
    for (auto _ : state) dorvutil::DORV_InvokeCallback(dorvutil::EMsgID{50}, &data);
}

struct Sink {
    void On(std::uint32_t, const dorvutil::CBDataL* data) { m_sum += data->m_value; }
    std::int64_t m_sum = 0;
};

#ifdef BENCH_BOOST
void DispatchBoost(benchmark::State& state, int listeners) {
    boost::signals2::signal<void(std::uint32_t, const dorvutil::CBDataL*)> signal;
    std::vector<Sink> all(static_cast<std::size_t>(listeners));
    for (Sink& sink : all) signal.connect([&sink](std::uint32_t id, const dorvutil::CBDataL* d) { sink.On(id, d); });
    const dorvutil::CBDataL data(1);
    for (auto _ : state) signal(50, &data);
}
#endif

#ifdef BENCH_SIGC
void DispatchSigc(benchmark::State& state, int listeners) {
    sigc::signal<void, std::uint32_t, const dorvutil::CBDataL*> signal;
    std::mutex lock;
    std::vector<Sink> all(static_cast<std::size_t>(listeners));
    for (Sink& sink : all) signal.connect(sigc::mem_fun(sink, &Sink::On));
    const dorvutil::CBDataL data(1);
    for (auto _ : state) {
        const std::lock_guard guard(lock);
        signal.emit(50, &data);
    }
}
#endif

const int g_registered = [] {
    for (const int n : {1, 10, 100}) {
        const std::string work = "callback to " + std::to_string(n) + (n == 1 ? " listener" : " listeners");
        benchmark::RegisterBenchmark((work + "|dorvutil").c_str(), Dispatch, n);
#ifdef BENCH_BOOST
        benchmark::RegisterBenchmark((work + "|boost::signals2").c_str(), DispatchBoost, n);
#endif
#ifdef BENCH_SIGC
        benchmark::RegisterBenchmark((work + "|sigc++ in a mutex").c_str(), DispatchSigc, n);
#endif
    }
    return 0;
}();

}  // namespace
