#include "log_bench_command.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <iomanip>
#include <iostream>
#include <memory>

#include "log_bench.h"

namespace roadlyn {
namespace {

constexpr std::uint64_t kMostRecords = 20'000'000;  // of all producers: each is remembered in 8 bytes

struct LogBenchOptions {
    std::uint32_t producers = 4;
    std::uint32_t records = 100'000;
    bool tsv = false;

    std::uint64_t Total() const { return std::uint64_t{producers} * records; }
};

std::int64_t PerSecond(const LogBenchOptions& options, const LogBenchResult& result) {
    return std::llround(static_cast<double>(options.Total()) / std::max(result.seconds, 1e-9));
}

void Print(const LogBenchOptions& options, const LogBenchResult& result) {
    const LogVerdict& verdict = result.verdict;
    std::cout << std::fixed << std::setprecision(3) << "published  " << options.Total() << " records by "
              << options.producers << " threads in " << result.seconds << " s: " << PerSecond(options, result)
              << " records per second\n"
              << "delivered  " << result.delivered << ", out of place " << verdict.misplaced << '\n'
              << "file       " << verdict.inFile << " record lines behind the header after " << verdict.restarts
              << " restarts, which took " << verdict.overwritten << ": " << result.path << '\n';
    if (verdict.fault.empty())
        std::cout << "ok: " << options.Total() << " records, none lost, every producer's in order" << std::endl;
    else
        std::cout << "FAILED: " << verdict.lost << " records lost; " << verdict.fault << std::endl;
}

void PrintTsv(const LogBenchOptions& options, const LogBenchResult& result) {
    const LogVerdict& verdict = result.verdict;
    std::cout << "producers\trecords\tseconds\trecords_per_second\tdelivered\tmisplaced\tin_file\trestarts\t"
                 "overwritten\tlost\tresult\n"
              << options.producers << '\t' << options.records << '\t' << std::fixed << std::setprecision(6)
              << result.seconds << '\t' << PerSecond(options, result) << '\t' << result.delivered << '\t'
              << verdict.misplaced << '\t' << verdict.inFile << '\t' << verdict.restarts << '\t' << verdict.overwritten
              << '\t' << verdict.lost << '\t' << (verdict.fault.empty() ? "ok" : verdict.fault) << std::endl;
}

int Run(const LogBenchOptions& options) {
    if (options.Total() > kMostRecords) {
        std::cerr << "roadlyn: more than " << kMostRecords << " records\n";
        return 2;
    }
    try {
        const LogBenchResult result = RunLogBench(options.producers, options.records);
        if (options.tsv)
            PrintTsv(options, result);
        else
            Print(options, result);
        return result.verdict.fault.empty() && std::cout.good() ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << "roadlyn: " << error.what() << '\n';
        return 2;
    }
}

}  // namespace

void AddLogBenchCommand(CLI::App& app, std::function<int()>& run) {
    const auto options = std::make_shared<LogBenchOptions>();
    CLI::App* const command = app.add_subcommand(
        "log-bench",
        "Writes messages of many threads through the library's log to disk and checks that all are there.");
    command->add_option("--producers", options->producers, "Threads; 4 unless given")
        ->option_text("N")
        ->check(CLI::Range(1u, kMostBenchProducers));
    command->add_option("--records", options->records, "Messages of each thread; 100000 unless given")
        ->option_text("N")
        ->check(CLI::Range(1u, kMostBenchRecords));
    command->add_flag("--tsv", options->tsv, "Print a header line and one line, tab-separated");
    command->callback([options, &run] { run = [options] { return Run(*options); }; });
}

}  // namespace roadlyn
