#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dorvutil/geometry/point.h"
#include "tsv_reader.h"

namespace roadlyn {

using Point = dorvutil::TOrvPoint<std::int32_t>;
using Rect = dorvutil::TOrvRect<std::int32_t>;

/// A line of a map: a road, a coast, a track.
struct Shape {
    std::string id;
    std::string name;           ///< may be empty
    std::vector<Point> points;  ///< at least two
    Rect bounds;
};

/// Reads tab-separated text with a header line, either lines (a column points, `lon_e6,lat_e6;...`; the first column is
/// the id, a column name is the name) or one track (columns lat_e6 and lon_e6, a point a row, the file's name as id).
/// Throws InputError, with the number of the point, for anything that does not fit: a line of one point, too.
std::vector<Shape> ReadShapeFile(const std::string& path);

/// The points of a track file, as they are; one may be all.
std::vector<Point> ReadTrackFile(const std::string& path);

/// The points of a field `lon_e6,lat_e6;...`. What is wrong with them is told with the reader's line.
std::vector<Point> ParsePoints(const TsvReader& reader, std::string_view field);

/// The smallest rectangle around the points, of which there are some.
Rect BoundsOf(const std::vector<Point>& points);

}  // namespace roadlyn
