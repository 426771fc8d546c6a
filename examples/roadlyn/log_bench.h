#pragma once

#include <cstdint>
#include <string>

#include "log_check.h"

namespace roadlyn {

struct LogBenchResult {
    std::string path;    ///< Of the log file.
    double seconds = 0;  ///< From the first record until the file is closed.
    std::uint64_t delivered = 0;
    LogVerdict verdict;
};

/// Has `producers` threads publish `records` messages each, waiting for space, through the library's log into the file
/// "roadlyn_bench.log" of the logging directory, and checks what arrived. Throws InputError when the file cannot be
/// written, std::runtime_error when there is no log.
LogBenchResult RunLogBench(std::uint32_t producers, std::uint32_t records);

}  // namespace roadlyn
