// Timers beside boost::asio's: starting and stopping with 10,000 others pending, served by a running timer thread.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

#include "dorvutil/concurrency.h"

#ifdef BENCH_BOOST
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#endif

namespace {

constexpr int kPending = 10'000;
constexpr std::uint32_t kHourMs = 3'600'000;

// Due times spread over an hour, in no order; all beyond the run.
std::uint32_t IntervalOf(int i) { return kHourMs + static_cast<std::uint32_t>(i) * 7919u % kPending * 360; }

class Silent : public dorvutil::OrvTimerAsync {
public:
    explicit Silent(std::uint32_t intervalMs) : OrvTimerAsync("bench", intervalMs, true) {}
    void OnTimeout() override {}
};

// Timers that live as long as it does; the bench drops its reference and leaves the last one to the manager.
class OurTimers {
public:
    explicit OurTimers(int pending) {
        for (int i = 0; i < pending; ++i) Start(m_pending.emplace_back(new Silent(IntervalOf(i))));
    }
    ~OurTimers() {
        for (Silent* const timer : m_pending) {
            timer->Stop();
            timer->Unref();
        }
    }
    OurTimers(const OurTimers&) = delete;
    OurTimers& operator=(const OurTimers&) = delete;

    using Timer = Silent*;
    Timer& Add() { return m_pending.emplace_back(new Silent(IntervalOf(kPending / 2))); }
    static void Start(Timer& timer) { timer->Start(); }
    static void Stop(Timer& timer) { timer->Stop(); }

private:
    std::vector<Silent*> m_pending;
};

#ifdef BENCH_BOOST
class AsioTimers {
public:
    using Timer = std::unique_ptr<boost::asio::steady_timer>;

    explicit AsioTimers(int pending) {
        for (int i = 0; i < pending; ++i) {
            m_pending.push_back(std::make_unique<boost::asio::steady_timer>(m_context));
            Wait(m_pending.back(), IntervalOf(i));
        }
        m_thread = std::thread([this] { m_context.run(); });
    }
    ~AsioTimers() {
        m_context.stop();
        m_thread.join();
    }
    AsioTimers(const AsioTimers&) = delete;
    AsioTimers& operator=(const AsioTimers&) = delete;

    Timer& Add() { return m_pending.emplace_back(std::make_unique<boost::asio::steady_timer>(m_context)); }
    static void Start(Timer& timer) { Wait(timer, IntervalOf(kPending / 2)); }
    static void Stop(Timer& timer) { timer->cancel(); }

private:
    static void Wait(Timer& timer, std::uint32_t intervalMs) {
        timer->expires_after(std::chrono::milliseconds(intervalMs));
        timer->async_wait([](const boost::system::error_code&) {});
    }

    boost::asio::io_context m_context;
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> m_work{m_context.get_executor()};
    std::vector<Timer> m_pending;
    std::thread m_thread;
};
#endif

template <class Timers>
void StartAndStop(benchmark::State& state) {
    Timers timers(kPending);
    auto& timer = timers.Add();
    for (auto _ : state) {
        timers.Start(timer);
        timers.Stop(timer);
    }
}

template <class Timers>
void Restart(benchmark::State& state) {
    Timers timers(kPending);
    auto& timer = timers.Add();
    for (auto _ : state) timers.Start(timer);
}

template <class Timers>
void StartAll(benchmark::State& state) {
    for (auto _ : state) {
        Timers timers(kPending);
        benchmark::DoNotOptimize(timers);
    }
}

template <class Timers>
void RegisterFor(const std::string& who) {
    const std::string pending = ", 10,000 pending|" + who;
    benchmark::RegisterBenchmark(("timer: start and stop" + pending).c_str(), StartAndStop<Timers>)->UseRealTime();
    benchmark::RegisterBenchmark(("timer: start anew" + pending).c_str(), Restart<Timers>)->UseRealTime();
    benchmark::RegisterBenchmark(("timer: 10,000 started and stopped|" + who).c_str(), StartAll<Timers>)->UseRealTime();
}

const int g_registered = [] {
    RegisterFor<OurTimers>("dorvutil");
#ifdef BENCH_BOOST
    RegisterFor<AsioTimers>("boost::asio::steady_timer");
#endif
    return 0;
}();

}  // namespace
