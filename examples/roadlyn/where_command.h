#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace roadlyn {

/// Adds "where" to the command line, as AddSearchCommand does "search".
void AddWhereCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
