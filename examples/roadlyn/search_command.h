#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace roadlyn {

/// Adds "search" to the command line. When it is given, `run` is set to what it does; the result is the exit code.
void AddSearchCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
