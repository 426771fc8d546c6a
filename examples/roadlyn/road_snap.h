#pragma once

#include <cstddef>
#include <vector>

#include "shape_file.h"

namespace roadlyn {

/// Where a position lies on a road.
struct Snapped {
    std::size_t road;  ///< index among the roads
    Point at;          ///< the nearest point of the road, by the planar geometry of raw coordinates
    double metres;     ///< from the position to `at`
    double fraction;   ///< of the road's length up to `at`, 0 to 1
    int overshoot;     ///< whole metres by which the position lies beyond the road's end, as the library counts them
    int side;          ///< of the nearest segment in the order of its points: -1 left, 1 right, 0 on its line
};

/// The road nearest to `position`; the first of equals. There are some roads.
Snapped SnapToRoads(const std::vector<Shape>& roads, const Point& position);

}  // namespace roadlyn
