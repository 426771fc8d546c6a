#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace roadlyn {

/// Adds "albers": the Albers projection of positions with the parameters of a continent, and the way back.
void AddAlbersCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
