#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace roadlyn {

/// Adds "hash" to the command line, as AddSearchCommand does "search". The exit code is 1 when a hash does not match.
void AddHashCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
