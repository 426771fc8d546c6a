// The log beside its peer: records of 100 bytes into a file, by one and by four publishers that wait for space, from
// the first call until the last line is written; and how long one publishing call takes while delivery keeps up.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "dorvutil/logging.h"

#ifdef BENCH_SPDLOG
#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#endif

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRecords = 100'000;  // of one run, shared among the publishers
constexpr int kSamples = 20'000;
constexpr std::chrono::microseconds kPause(20);  // between two records when delivery keeps up

const std::string& Message() {
    static const std::string text(100, 'm');
    return text;
}

std::string Directory() {
    const auto path = std::filesystem::temp_directory_path() / "dorvutil_logging_bench";
    std::filesystem::create_directories(path);
    return path.string();
}

// Behind the file, it counts what has been written.
std::atomic<std::int64_t> g_delivered{0};

class Ours {
public:
    Ours() {
        dorvutil::Log_SetLoggingDirectory(Directory().c_str());
        m_publisher = dorvutil::Log_CreatePublisher("ours");
        m_file = dorvutil::GetLogMgr()->CreateFileLogger("ours", m_publisher, dorvutil::kEveryLogLevel);
        m_counter = dorvutil::Log_CreateSubscriber(m_publisher, Count, nullptr);
    }
    ~Ours() {
        dorvutil::GetLogMgr()->DeleteFileLogger(m_file);
        dorvutil::Log_DeleteSubscriber(m_counter);
    }
    void Publish() const {
        dorvutil::Log_Publish(m_publisher, dorvutil::eLogLevelInfo, "bench/logging_bench.cpp", 50, Message().c_str());
    }

private:
    static void Count(void*, dorvutil::LogDataMsg*) { g_delivered.fetch_add(1, std::memory_order_release); }
    std::int32_t m_publisher;
    std::int32_t m_file;
    std::int32_t m_counter;
};

#ifdef BENCH_SPDLOG
class Spdlog {
public:
    Spdlog() {
        spdlog::init_thread_pool(8192, 1);
        const std::vector<spdlog::sink_ptr> sinks{
            std::make_shared<spdlog::sinks::basic_file_sink_st>(Directory() + "/spdlog.log", true),
            std::make_shared<Counter>()};
        m_logger = std::make_shared<spdlog::async_logger>("ours", sinks.begin(), sinks.end(), spdlog::thread_pool(),
                                                          spdlog::async_overflow_policy::block);
    }
    ~Spdlog() {
        m_logger.reset();
        spdlog::shutdown();
    }
    void Publish() const {
        m_logger->log(spdlog::source_loc{"bench/logging_bench.cpp", 50, "Publish"}, spdlog::level::info, Message());
    }

private:
    class Counter : public spdlog::sinks::sink {
        void log(const spdlog::details::log_msg&) override { g_delivered.fetch_add(1, std::memory_order_release); }
        void flush() override {}
        void set_pattern(const std::string&) override {}
        void set_formatter(std::unique_ptr<spdlog::formatter>) override {}
    };
    std::shared_ptr<spdlog::async_logger> m_logger;
};
#endif

void AwaitDelivered(std::int64_t count) {
    while (g_delivered.load(std::memory_order_acquire) < count)
        std::this_thread::sleep_for(std::chrono::microseconds(50));
}

template <class L>
void Throughput(benchmark::State& state, int publishers) {
    const L log;
    for (auto _ : state) {
        g_delivered = 0;
        std::vector<std::thread> threads;
        for (int i = 0; i < publishers; ++i) {
            threads.emplace_back([&] {
                for (int n = 0; n < kRecords / publishers; ++n) log.Publish();
            });
        }
        for (auto& thread : threads) thread.join();
        AwaitDelivered(kRecords);
    }
    state.SetItemsProcessed(state.iterations() * kRecords);
}

// The time of an iteration is that of the call at `rank` of all, in order of their length.
template <class L>
void Latency(benchmark::State& state, double rank) {
    const L log;
    std::vector<double> samples(kSamples);
    for (auto _ : state) {
        g_delivered = 0;
        for (double& sample : samples) {
            const auto start = Clock::now();
            log.Publish();
            const auto end = Clock::now();
            sample = std::chrono::duration<double>(end - start).count();
            while (Clock::now() - end < kPause) {
            }
        }
        AwaitDelivered(kSamples);
        const auto at = samples.begin() + static_cast<std::ptrdiff_t>(rank * (kSamples - 1));
        std::nth_element(samples.begin(), at, samples.end());
        state.SetIterationTime(*at);
    }
}

template <class L>
void Register(const std::string& who) {
    for (const int publishers : {1, 4}) {
        const std::string work = "log to a file, " + std::to_string(publishers) + " publishers|";
        benchmark::RegisterBenchmark((work + who).c_str(), Throughput<L>, publishers)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    }
    for (const double rank : {0.5, 0.99}) {
        const std::string work = rank == 0.5 ? "publish, median call|" : "publish, 99th percentile|";
        benchmark::RegisterBenchmark((work + who).c_str(), Latency<L>, rank)->UseManualTime()->Iterations(3);
    }
}

const bool g_registered = [] {
    Register<Ours>("dorvutil");
#ifdef BENCH_SPDLOG
    Register<Spdlog>("spdlog");
#endif
    return true;
}();

}  // namespace
