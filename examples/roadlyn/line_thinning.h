#pragma once

#include <cstdint>
#include <vector>

#include "shape_file.h"

namespace roadlyn {

struct ThinningRules {
    double maxArea = 0;     ///< coordinate units squared
    double errorRatio = 0;  ///< share of the length, as the library measures it
    bool checkTriangles = false;
    bool limitDeltas = false;
    std::vector<std::uint32_t> locked;  ///< vertices that stay, counted from 0
};

/// The line without the vertices that the rules let go.
std::vector<Point> ThinLine(const std::vector<Point>& line, const ThinningRules& rules);

/// The largest distance in metres from a vertex of `line` to the segment of `thinned` that stands for it. `thinned` is
/// `line` without some vertices.
double LargestDeviation(const std::vector<Point>& line, const std::vector<Point>& thinned);

}  // namespace roadlyn
