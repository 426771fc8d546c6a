#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace roadlyn {

/// Adds "system": what the library knows of this machine, as the block of text that heads its log files, or with --tsv
/// as one fact a line (name, value; an empty value where nobody can tell).
void AddSystemCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
