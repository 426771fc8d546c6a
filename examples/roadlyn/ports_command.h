#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace roadlyn {

/// Adds "ports" to the command line, as AddSearchCommand does "search".
void AddPortsCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
