#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace roadlyn {

/// Adds "selftest" to the command line, as AddSearchCommand does "search".
void AddSelftestCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
