#include "albers_command.h"

#include <charconv>
#include <iomanip>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "coordinate_argument.h"
#include "dorvutil/geometry/albers.h"
#include "input_error.h"
#include "run_command.h"

namespace roadlyn {
namespace {

using dorvutil::PrjAlber;

struct AlbersOptions {
    std::string set = "na";
    std::vector<std::string> points;
    bool inverse = false;
    bool tsv = false;
};

struct Set {
    const char* m_name;
    void (PrjAlber::*m_choose)();
};
constexpr Set kSets[] = {{"na", &PrjAlber::SetNA},         {"sa", &PrjAlber::SetSA},
                         {"europe", &PrjAlber::SetEurope}, {"asia", &PrjAlber::SetAsia},
                         {"africa", &PrjAlber::SetAfrica}, {"oceania", &PrjAlber::SetOceania}};

PrjAlber Projection(const std::string& name) {
    PrjAlber projection;
    for (const Set& set : kSets)
        if (name == set.m_name) (projection.*set.m_choose)();
    return projection;
}

struct Plane {
    double x = 0;
    double y = 0;
};

Plane ReadPlane(std::size_t position, const std::string& text) {
    Plane plane;
    const char* const end = text.data() + text.size();
    const auto x = std::from_chars(text.data(), end, plane.x);
    const bool hasX = x.ec == std::errc() && x.ptr != end && *x.ptr == ',';
    if (hasX) {
        const auto y = std::from_chars(x.ptr + 1, end, plane.y);
        if (y.ec == std::errc() && y.ptr == end) return plane;
    }
    throw InputError("X,Y", position, "'" + text + "': not two numbers with a comma between them");
}

void PrintPlace(double latitude, double longitude, const char* separator) {
    std::cout << std::setprecision(6) << latitude << separator << longitude;
}
void PrintPlane(const Plane& plane, const char* separator) {
    std::cout << std::setprecision(2) << plane.x << separator << plane.y;
}

void Project(const PrjAlber& projection, const AlbersOptions& options, const char* separator) {
    if (options.tsv) std::cout << "latitude\tlongitude\tx\ty\n";
    for (std::size_t i = 0; i < options.points.size(); ++i) {
        const auto point = ReadCoordinate("LAT,LON", i + 1, options.points[i]);
        Plane plane;
        projection.LongLat2Albers(point.x / 1e6, point.y / 1e6, plane.x, plane.y);
        PrintPlace(point.y / 1e6, point.x / 1e6, separator);
        std::cout << (options.tsv ? "\t" : "  ->  ");
        PrintPlane(plane, separator);
        std::cout << '\n';
    }
}

void Unproject(const PrjAlber& projection, const AlbersOptions& options, const char* separator) {
    if (options.tsv) std::cout << "x\ty\tlatitude\tlongitude\n";
    for (std::size_t i = 0; i < options.points.size(); ++i) {
        const Plane plane = ReadPlane(i + 1, options.points[i]);
        double latitude = 0;
        double longitude = 0;
        projection.Albers2LongLat(plane.x, plane.y, longitude, latitude);
        PrintPlane(plane, separator);
        std::cout << (options.tsv ? "\t" : "  ->  ");
        PrintPlace(latitude, longitude, separator);
        std::cout << '\n';
    }
}

int Run(const AlbersOptions& options) {
    return RunCommand([&options] {
        std::cout << std::fixed;
        const char* const separator = options.tsv ? "\t" : ",";
        (options.inverse ? Unproject : Project)(Projection(options.set), options, separator);
    });
}

}  // namespace

void AddAlbersCommand(CLI::App& app, std::function<int()>& run) {
    const auto options = std::make_shared<AlbersOptions>();
    CLI::App* const command = app.add_subcommand("albers", "The Albers equal-area projection of positions, both ways");
    std::vector<std::string> names;
    for (const Set& set : kSets) names.emplace_back(set.m_name);
    command->add_option("--set", options->set, "The continent's parameters; na unless given")
        ->check(CLI::IsMember(names));
    command->add_option("POINT", options->points, "LAT,LON, as 51.5,-0.12; with --inverse X,Y in projected units")
        ->required();
    command->add_flag("--inverse", options->inverse, "From projected units to latitude and longitude");
    command->add_flag("--tsv", options->tsv, "Tab-separated");
    command->callback([options, &run] { run = [options] { return Run(*options); }; });
}

}  // namespace roadlyn
