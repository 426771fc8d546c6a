#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace roadlyn {

/// Adds "checksum" to the command line, as AddSearchCommand does "search".
void AddChecksumCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
