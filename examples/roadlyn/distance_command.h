#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace roadlyn {

/// Adds "distance": how far it is between two positions, in every unit and by each of the library's methods.
void AddDistanceCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
