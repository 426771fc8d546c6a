#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace roadlyn {

/// Adds "log-bench" to the command line, as AddSearchCommand does "search". The exit code is 1 when a record was lost
/// or is not where it belongs.
void AddLogBenchCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
