#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace roadlyn {

/// Adds "snap" to the command line, as AddSearchCommand does "search".
void AddSnapCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
