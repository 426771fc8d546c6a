#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace roadlyn {

/// Adds "nmea" to the command line, as AddSearchCommand does "search". The exit code is 1 when a line is bad.
void AddNmeaCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
