#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace roadlyn {

/// Adds "encrypt" and "decrypt" to the command line, as AddSearchCommand does "search".
void AddCipherCommands(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
