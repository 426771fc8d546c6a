#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace roadlyn {

/// Adds "crash-test": starts this program once more, to crash on a thread of the library in one of several ways, and
/// shows what the library left of that: the report in the log, and the exit status. 0 when there is a report and the
/// status is that of the crash.
void AddCrashTestCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
