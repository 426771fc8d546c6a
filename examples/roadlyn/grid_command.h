#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace roadlyn {

/// Adds "grid": latitude and longitude of a British National Grid reference.
void AddGridCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
