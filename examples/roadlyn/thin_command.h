#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace roadlyn {

/// Adds "thin" to the command line, as AddSearchCommand does "search".
void AddThinCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
