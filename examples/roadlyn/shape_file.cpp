#include "shape_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>

#include "dorvutil/geometry/bounds.h"
#include "input_error.h"
#include "place_table.h"

namespace roadlyn {
namespace {

constexpr std::array<std::string_view, 2> kTrackColumns = {"lat_e6", "lon_e6"};

std::vector<std::string_view> HeaderOf(std::string_view text) {
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    text = text.substr(0, text.find('\n'));
    if (text.ends_with('\r')) text.remove_suffix(1);
    std::vector<std::string_view> columns;
    for (std::size_t tab; (tab = text.find('\t')) != std::string_view::npos; text.remove_prefix(tab + 1)) {
        columns.push_back(text.substr(0, tab));
    }
    columns.push_back(text);
    return columns;
}

bool HasColumn(const std::vector<std::string_view>& columns, std::string_view name) {
    return std::find(columns.begin(), columns.end(), name) != columns.end();
}

// Takes a whole number up to `end` off the front of `text`; false when there is none within the range.
bool TakeNumber(std::string_view& text, char end, std::int32_t most, std::int32_t& number) {
    const std::string_view digits = text.substr(0, text.find(end));
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc{} || stop != digits.data() + digits.size() || number < -most || number > most) return false;
    text.remove_prefix(std::min(digits.size() + 1, text.size()));
    return true;
}

std::vector<Point> TrackPoints(const std::string& path, std::string_view text) {
    TsvReader reader(path, text, kTrackColumns);
    std::vector<Point> points;
    while (reader.Next()) {
        const std::int32_t latitude = reader.Number(0, -kMaxLatE6, kMaxLatE6);
        points.push_back({reader.Number(1, -kMaxLonE6, kMaxLonE6), latitude});
    }
    if (points.empty()) reader.Fail("no point follows the header line");
    return points;
}

std::vector<Shape> Lines(const std::string& path, std::string_view text, const std::vector<std::string_view>& header) {
    const bool named = HasColumn(header, "name");
    const std::array<std::string_view, 3> columns = {header[0], "points", named ? "name" : header[0]};
    TsvReader reader(path, text, columns);
    std::vector<Shape> shapes;
    while (reader.Next()) {
        Shape shape{std::string(reader.Field(0)),
                    named ? std::string(reader.Field(2)) : std::string(),
                    ParsePoints(reader, reader.Field(1)),
                    {}};
        if (shape.points.size() < 2) reader.Fail("line '" + shape.id + "' has only one point");
        shape.bounds = BoundsOf(shape.points);
        shapes.push_back(std::move(shape));
    }
    if (shapes.empty()) reader.Fail("no line follows the header line");
    return shapes;
}

}  // namespace

std::vector<Point> ParsePoints(const TsvReader& reader, std::string_view field) {
    std::vector<Point> points;
    do {
        Point point;
        if (!TakeNumber(field, ',', kMaxLonE6, point.x) || !TakeNumber(field, ';', kMaxLatE6, point.y)) {
            reader.Fail("point " + std::to_string(points.size() + 1) +
                        " is not LON,LAT in millionths of a degree within the globe");
        }
        points.push_back(point);
    } while (!field.empty());
    return points;
}

std::vector<Shape> ReadShapeFile(const std::string& path) {
    const std::string text = ReadWholeFile(path);
    const std::vector<std::string_view> header = HeaderOf(text);
    if (HasColumn(header, "points")) return Lines(path, text, header);
    Shape track{std::filesystem::path(path).filename().string(), {}, TrackPoints(path, text), {}};
    if (track.points.size() < 2) throw InputError(path, 0, "the track has only one point");
    track.bounds = BoundsOf(track.points);
    std::vector<Shape> shapes;
    shapes.push_back(std::move(track));
    return shapes;
}

std::vector<Point> ReadTrackFile(const std::string& path) { return TrackPoints(path, ReadWholeFile(path)); }

Rect BoundsOf(const std::vector<Point>& points) {
    Rect bounds;
    dorvutil::GetBoundingRect(bounds, points.data(), static_cast<std::int32_t>(points.size()));
    return bounds;
}

}  // namespace roadlyn
