#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace roadlyn {

/// Adds "check" to the command line, as AddSearchCommand does "search".
void AddCheckCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
