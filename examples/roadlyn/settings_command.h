#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace roadlyn {

/// Adds "settings" to the command line, as AddSearchCommand does "search".
void AddSettingsCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
