#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace roadlyn {

/// Adds "photo" to the command line, as AddSearchCommand does "search".
void AddPhotoCommand(CLI::App& app, std::function<int()>& run);

}  // namespace roadlyn
