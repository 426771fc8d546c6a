#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace roadlyn {

/// Adds "copy" to the command line, as AddSearchCommand does "search". The exit code is 130 when the user interrupts
/// it.
void AddCopyCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
