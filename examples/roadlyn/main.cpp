#include <CLI/CLI.hpp>
#include <functional>
#include <iostream>

#include "search_command.h"
#include "selftest_command.h"
#include "system_command.h"

namespace {

constexpr int kBadUse = 2;

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("roadlyn: what the dorvutil library can do, on real data", "roadlyn");
    app.require_subcommand(0, 1);
    std::function<int()> run;
    roadlyn::AddSearchCommand(app, run);
    roadlyn::AddSelftestCommand(app, run);
    roadlyn::AddSystemCommand(app, run);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kBadUse;
    }
    if (run) return run();
    std::cout << app.help();
    return 0;
}
