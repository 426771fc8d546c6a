#include "snap_command.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "coordinate_argument.h"
#include "road_snap.h"
#include "run_command.h"
#include "svg.h"

namespace roadlyn {
namespace {

constexpr double kPictureSize = 800;  // pixels

struct SnapOptions {
    std::string roads;
    std::string track;
    std::string svg;
    std::vector<std::string> positions;
    bool tsv = false;
};

std::vector<Point> Positions(const SnapOptions& options) {
    if (!options.track.empty()) return ReadTrackFile(options.track);
    std::vector<Point> points;
    for (const std::string& text : options.positions) {
        points.push_back(ReadCoordinate("position", options.positions.size() == 1 ? 0 : points.size() + 1, text));
    }
    return points;
}

const char* SideName(int side) { return side < 0 ? "left" : side > 0 ? "right" : "on"; }

void PrintTsvRow(const Point& position, const Snapped& snapped, const Shape& road) {
    std::printf("%.6f\t%.6f\t%s\t%s\t%.6f\t%.6f\t%.2f\t%.4f\t%d\t%s\n", position.y / 1e6, position.x / 1e6,
                road.id.c_str(), road.name.c_str(), snapped.at.y / 1e6, snapped.at.x / 1e6, snapped.metres,
                snapped.fraction, snapped.overshoot, SideName(snapped.side));
}

void PrintLine(const Point& position, const Snapped& snapped, const Shape& road) {
    std::printf("%.6f,%.6f  %7.2f m %-5s of %s%s%s at %.6f,%.6f, %.1f %% along", position.y / 1e6, position.x / 1e6,
                snapped.metres, SideName(snapped.side), road.id.c_str(), road.name.empty() ? "" : " ",
                road.name.c_str(), snapped.at.y / 1e6, snapped.at.x / 1e6, snapped.fraction * 100);
    if (snapped.overshoot > 0) std::printf(", %d m beyond its end", snapped.overshoot);
    std::printf("\n");
}

void PrintSummary(const std::vector<Snapped>& snapped) {
    std::vector<double> metres;
    metres.reserve(snapped.size());
    for (const Snapped& one : snapped) metres.push_back(one.metres);
    std::sort(metres.begin(), metres.end());
    std::printf("positions %zu, distance to the road: median %.2f m, largest %.2f m\n", metres.size(),
                metres[metres.size() / 2], metres.back());
}

void Draw(const std::string& path, const std::vector<Shape>& roads, const std::vector<Point>& positions,
          const std::vector<Snapped>& snapped) {
    std::vector<Point> shown = positions;
    for (const Snapped& one : snapped) shown.push_back(one.at);
    SvgMap map(BoundsOf(shown), kPictureSize);
    for (const Shape& road : roads) {
        if (map.Shows(road.bounds)) map.Polyline(road.points, "stroke=\"#aaa\" stroke-width=\"2\"");
    }
    if (positions.size() > 1) map.Polyline(positions, "stroke=\"#7ab\" stroke-width=\"1\"");
    for (std::size_t i = 0; i < positions.size(); ++i) {
        map.Segment(positions[i], snapped[i].at, "stroke=\"#d33\" stroke-width=\"0.7\"");
        map.Circle(positions[i], 1.5, "fill=\"#26c\"");
        map.Circle(snapped[i].at, 1.5, "fill=\"#d33\"");
    }
    map.Legend("roads", "#888");
    map.Legend("positions", "#26c");
    map.Legend("snapped", "#d33");
    WriteSvg(path, map);
}

void Snap(const SnapOptions& options) {
    const std::vector<Point> positions = Positions(options);
    const std::vector<Shape> roads = ReadShapeFile(options.roads);
    std::vector<Snapped> snapped;
    snapped.reserve(positions.size());
    for (const Point& position : positions) snapped.push_back(SnapToRoads(roads, position));
    if (!options.svg.empty()) Draw(options.svg, roads, positions, snapped);
    if (options.tsv)
        std::printf("lat\tlon\troad_id\tname\tsnapped_lat\tsnapped_lon\tmetres\tfraction\tovershoot\tside\n");
    for (std::size_t i = 0; i < snapped.size(); ++i) {
        (options.tsv ? PrintTsvRow : PrintLine)(positions[i], snapped[i], roads[snapped[i].road]);
    }
    if (!options.tsv) PrintSummary(snapped);
}

int Run(const SnapOptions& options) {
    return RunCommand([&options] { Snap(options); });
}

}  // namespace

void AddSnapCommand(CLI::App& app, std::function<int()>& run) {
    const auto options = std::make_shared<SnapOptions>();
    CLI::App* const command = app.add_subcommand(
        "snap",
        "The road nearest to each position: where on it, how far, how much of the road lies before, which side");
    command->add_option("--roads", options->roads, "Roads: road_id, name, points")->required()->option_text("FILE");
    CLI::Option_group* const input = command->add_option_group("positions");
    input->add_option("--track", options->track, "A track: lat_e6, lon_e6")->option_text("FILE");
    input->add_option("POSITION", options->positions, "LAT,LON")->option_text("LAT,LON ...");
    input->require_option(1);
    command->add_option("--svg", options->svg, "Draws roads, positions and where they lie")->option_text("FILE");
    command->add_flag("--tsv", options->tsv, "Tab-separated, with a header line");
    command->callback([options, &run] { run = [options] { return Run(*options); }; });
}

}  // namespace roadlyn
