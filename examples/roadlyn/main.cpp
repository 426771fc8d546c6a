#include <CLI/CLI.hpp>
#include <functional>
#include <iostream>
#include <string>

#include "albers_command.h"
#include "check_command.h"
#include "checksum_command.h"
#include "cipher_command.h"
#include "command_log.h"
#include "copy_command.h"
#include "crash_test_command.h"
#include "distance_command.h"
#include "grid_command.h"
#include "hash_command.h"
#include "log_bench_command.h"
#include "nmea_command.h"
#include "photo_command.h"
#include "ports_command.h"
#include "search_command.h"
#include "selftest_command.h"
#include "settings_command.h"
#include "snap_command.h"
#include "system_command.h"
#include "thin_command.h"
#include "where_command.h"

namespace {

constexpr int kBadUse = 2;

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("roadlyn: what the dorvutil library can do, on real data", "roadlyn");
    app.require_subcommand(0, 1);
    app.fallthrough();
    std::string logDirectory;
    app.add_option("--log-dir", logDirectory, "Where log files are written; beside this program unless given")
        ->option_text("DIR");
    std::function<int()> run;
    roadlyn::AddSearchCommand(app, run);
    roadlyn::AddAlbersCommand(app, run);
    roadlyn::AddCheckCommand(app, run);
    roadlyn::AddChecksumCommand(app, run);
    roadlyn::AddCipherCommands(app, run);
    roadlyn::AddCopyCommand(app, run);
    roadlyn::AddCrashTestCommand(app, run);
    roadlyn::AddDistanceCommand(app, run);
    roadlyn::AddGridCommand(app, run);
    roadlyn::AddHashCommand(app, run);
    roadlyn::AddLogBenchCommand(app, run);
    roadlyn::AddNmeaCommand(app, run);
    roadlyn::AddPhotoCommand(app, run);
    roadlyn::AddPortsCommand(app, run);
    roadlyn::AddSelftestCommand(app, run);
    roadlyn::AddSettingsCommand(app, run);
    roadlyn::AddSnapCommand(app, run);
    roadlyn::AddSystemCommand(app, run);
    roadlyn::AddThinCommand(app, run);
    roadlyn::AddWhereCommand(app, run);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kBadUse;
    }
    if (!run) {
        std::cout << app.help();
        return 0;
    }
    const roadlyn::CommandLog log(logDirectory, {argv + 1, argv + argc});
    const int exitCode = run();
    log.Finish(exitCode);
    return exitCode;
}
