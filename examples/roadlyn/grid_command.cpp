#include "grid_command.h"

#include <iomanip>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "dorvutil/geometry/national_grid.h"
#include "grid_reference.h"
#include "run_command.h"

namespace roadlyn {
namespace {

struct GridOptions {
    std::vector<std::string> words;
    bool tsv = false;
};

void Print(const GridOptions& options) {
    namespace grid = dorvutil::national_grid;
    const GridSquare square = ReadGridReference(options.words);
    double latitude = 0;
    double longitude = 0;
    dorvutil::FullEN_to_LatLon(square.easting, square.northing, grid::kA, grid::kB, grid::kE0, grid::kN0, grid::kF0,
                               &latitude, &longitude);
    std::cout << std::fixed << std::setprecision(7);
    if (options.tsv) {
        std::cout << "easting\tnorthing\tside_m\tlatitude\tlongitude\tdatum\n"
                  << square.easting << '\t' << square.northing << '\t' << square.side << '\t' << latitude << '\t'
                  << longitude << "\tOSGB36\n";
        return;
    }
    std::cout << "easting    " << square.easting << " m\nnorthing   " << square.northing << " m\n";
    if (square.side > 1) std::cout << "           the south-west corner of a square of " << square.side << " m\n";
    std::cout << "latitude   " << latitude << "\nlongitude  " << longitude
              << "\ndatum      OSGB36; not shifted: on WGS 84 the same numbers lie up to 120 m away\n";
}

int Run(const GridOptions& options) {
    return RunCommand([&options] { Print(options); });
}

}  // namespace

void AddGridCommand(CLI::App& app, std::function<int()>& run) {
    const auto options = std::make_shared<GridOptions>();
    CLI::App* const command =
        app.add_subcommand("grid", "Latitude and longitude of a British National Grid reference, on its own datum");
    command->add_option("REFERENCE", options->words, "As TQ300805 or TQ 300 805, or EASTING NORTHING in metres")
        ->required();
    command->add_flag("--tsv", options->tsv, "Tab-separated");
    command->callback([options, &run] { run = [options] { return Run(*options); }; });
}

}  // namespace roadlyn
