#include "distance_command.h"

#include <array>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include "coordinate_argument.h"
#include "dorvutil/geometry/distance.h"
#include "run_command.h"

namespace roadlyn {
namespace {

using Point = dorvutil::TOrvPoint<std::int32_t>;

struct DistanceOptions {
    std::string from;
    std::string to;
    std::string unit;
    bool tsv = false;
};

struct Unit {
    const char* m_name;
    dorvutil::TDistType m_unit;
    bool m_isFar;  // known to GC_DistFar too
};
constexpr Unit kUnits[] = {
    {"miles", dorvutil::DT_MILES, true},      {"km", dorvutil::DT_KILOMETERS, true},
    {"feet", dorvutil::DT_FEET, true},        {"m", dorvutil::DT_METERS, true},
    {"yards", dorvutil::DT_YARDS, false},     {"nm", dorvutil::DT_NAUTICAL_MILES, false},
    {"radians", dorvutil::DT_RADIANS, false}, {"degrees", dorvutil::DT_DEGREES, false},
    {"coords", dorvutil::DT_COORDS, false},
};

std::string Number(double value) {
    std::ostringstream text;
    text << std::setprecision(12) << value;
    return text.str();
}

void PrintRow(const std::array<std::string, 4>& row, bool tsv) {
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (tsv)
            std::cout << (i == 0 ? "" : "\t") << row[i];
        else
            std::cout << std::left << std::setw(i == 0 ? 9 : i == 3 ? 0 : 20) << row[i];
    }
    std::cout << '\n';
}

void Print(const DistanceOptions& options) {
    const Point a = ReadCoordinate("A", 0, options.from);
    const Point b = ReadCoordinate("B", 0, options.to);
    PrintRow({"unit", "far", "near", "fast"}, options.tsv);
    for (const Unit& unit : kUnits) {
        if (!options.unit.empty() && options.unit != unit.m_name) continue;
        const std::string far = unit.m_isFar  ? Number(dorvutil::GC_DistFar(a.x, a.y, b.x, b.y, unit.m_unit))
                                : options.tsv ? ""
                                              : "-";
        PrintRow({unit.m_name, far, Number(dorvutil::GC_DistNear(a.x, a.y, b.x, b.y, unit.m_unit)),
                  Number(dorvutil::GC_DistFast(a, b, unit.m_unit))},
                 options.tsv);
    }
}

int Run(const DistanceOptions& options) {
    return RunCommand([&options] { Print(options); });
}

}  // namespace

void AddDistanceCommand(CLI::App& app, std::function<int()>& run) {
    const auto options = std::make_shared<DistanceOptions>();
    CLI::App* const command = app.add_subcommand(
        "distance",
        "The distance between two positions: by the law of cosines (far; four units only), by the haversine formula "
        "(near) and in the plane from tables (fast; near from a quarter of a degree on)");
    command->add_option("A", options->from, "LAT,LON, as 51.5,-0.12 or 51.5N,0.12W or 513000N,0000712W")->required();
    command->add_option("B", options->to, "LAT,LON")->required();
    std::vector<std::string> names;
    for (const Unit& unit : kUnits) names.emplace_back(unit.m_name);
    command->add_option("--unit", options->unit, "Only this unit")->check(CLI::IsMember(names));
    command->add_flag("--tsv", options->tsv, "Tab-separated; an empty field where a method does not know the unit");
    command->callback([options, &run] { run = [options] { return Run(*options); }; });
}

}  // namespace roadlyn
