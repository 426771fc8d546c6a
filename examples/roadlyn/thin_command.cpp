#include "thin_command.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "input_error.h"
#include "line_thinning.h"
#include "run_command.h"
#include "svg.h"

namespace roadlyn {
namespace {

constexpr double kPictureSize = 800;  // pixels

struct ThinOptions {
    std::string input;
    std::string svg;
    std::vector<std::string> ids;
    ThinningRules rules;
    bool tsv = false;
};

struct Thinned {
    std::vector<Point> points;
    double deviation;  // metres
};

std::string PointsText(const std::vector<Point>& points) {
    std::string text;
    for (const Point& point : points) {
        if (!text.empty()) text += ';';
        text += std::to_string(point.x) + ',' + std::to_string(point.y);
    }
    return text;
}

// The lines that are asked for; all of them when none is.
std::vector<Shape> ChosenLines(const ThinOptions& options) {
    std::vector<Shape> lines = ReadShapeFile(options.input);
    if (options.ids.empty()) return lines;
    std::vector<Shape> chosen;
    for (const std::string& id : options.ids) {
        const auto found = std::find_if(lines.begin(), lines.end(), [&id](const Shape& line) { return line.id == id; });
        if (found == lines.end()) throw InputError(options.input, 0, "there is no line '" + id + "'");
        chosen.push_back(*found);
    }
    return chosen;
}

void CheckLocked(const ThinOptions& options, const std::vector<Shape>& lines) {
    for (const std::uint32_t vertex : options.rules.locked) {
        for (const Shape& line : lines) {
            if (vertex < line.points.size()) continue;
            throw InputError("--lock", 0,
                             "line '" + line.id + "' has no vertex " + std::to_string(vertex) + "; its last is " +
                                 std::to_string(line.points.size() - 1));
        }
    }
}

void PrintRows(const std::vector<Shape>& lines, const std::vector<Thinned>& thinned) {
    std::cout << "line\tname\tbefore\tafter\tdeviation_m\tpoints\n";
    for (std::size_t i = 0; i < lines.size(); ++i) {
        char metres[32];
        std::snprintf(metres, sizeof metres, "%.2f", thinned[i].deviation);
        std::cout << lines[i].id << '\t' << lines[i].name << '\t' << lines[i].points.size() << '\t'
                  << thinned[i].points.size() << '\t' << metres << '\t' << PointsText(thinned[i].points) << '\n';
    }
}

void PrintSummary(const std::vector<Shape>& lines, const std::vector<Thinned>& thinned) {
    std::size_t before = 0, after = 0;
    double deviation = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        before += lines[i].points.size();
        after += thinned[i].points.size();
        deviation = std::max(deviation, thinned[i].deviation);
    }
    std::printf("lines %zu, points %zu before, %zu after (%.1f %%), largest deviation %.2f m\n", lines.size(), before,
                after, 100.0 * static_cast<double>(after) / static_cast<double>(before), deviation);
}

void Draw(const std::string& path, const std::vector<Shape>& lines, const std::vector<Thinned>& thinned) {
    Rect part = lines[0].bounds;
    for (const Shape& line : lines) {
        part = {std::min(part.minX, line.bounds.minX), std::min(part.minY, line.bounds.minY),
                std::max(part.maxX, line.bounds.maxX), std::max(part.maxY, line.bounds.maxY)};
    }
    SvgMap map(part, kPictureSize);
    for (const Shape& line : lines) map.Polyline(line.points, "stroke=\"#6ad\" stroke-width=\"2.5\"");
    for (const Thinned& line : thinned) map.Polyline(line.points, "stroke=\"#c22\" stroke-width=\"0.8\"");
    map.Legend("before", "#38c");
    map.Legend("after", "#c22");
    WriteSvg(path, map);
}

void Thin(const ThinOptions& options) {
    const std::vector<Shape> lines = ChosenLines(options);
    CheckLocked(options, lines);
    std::vector<Thinned> thinned;
    for (const Shape& line : lines) {
        Thinned result{ThinLine(line.points, options.rules), 0};
        result.deviation = LargestDeviation(line.points, result.points);
        thinned.push_back(std::move(result));
    }
    if (!options.svg.empty()) Draw(options.svg, lines, thinned);
    if (options.tsv)
        PrintRows(lines, thinned);
    else
        PrintSummary(lines, thinned);
}

int Run(const ThinOptions& options) {
    return RunCommand([&options] { Thin(options); });
}

}  // namespace

void AddThinCommand(CLI::App& app, std::function<int()>& run) {
    const auto options = std::make_shared<ThinOptions>();
    ThinningRules& rules = options->rules;
    CLI::App* const command =
        app.add_subcommand("thin", "Leaves out the vertices of lines that matter least to their shape");
    command->add_option("IN", options->input, "Lines (a column points) or a track (lat_e6, lon_e6)")
        ->required()
        ->option_text("FILE");
    command
        ->add_option("--max-area", rules.maxArea,
                     "A vertex whose triangle has this area, or more, stays: millionths "
                     "of a degree, squared")
        ->required()
        ->check(CLI::NonNegativeNumber);
    command
        ->add_option("--error-ratio", rules.errorRatio,
                     "Ends it once the mean squared error exceeds this share of "
                     "the length that is left")
        ->required()
        ->check(CLI::NonNegativeNumber);
    command->add_option("--line", options->ids, "Only the lines of these ids")->delimiter(',')->option_text("ID,...");
    command->add_option("--lock", rules.locked, "Vertices of every line that stay, counted from 0")
        ->delimiter(',')
        ->option_text("N,...");
    command->add_flag("--check-triangles", rules.checkTriangles,
                      "A vertex whose triangle holds another vertex stays, so that no line crosses itself");
    command->add_flag("--limit-deltas", rules.limitDeltas, "No step longer than 32766 units in either direction");
    command->add_option("--svg", options->svg, "Draws the lines before and after")->option_text("FILE");
    command->add_flag("--tsv", options->tsv, "Each line with what is left of it, tab-separated, with a header line");
    command->callback([options, &run] { run = [options] { return Run(*options); }; });
}

}  // namespace roadlyn
