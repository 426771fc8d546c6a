#pragma once

#include <cstddef>
#include <string>

#include "dorvutil/geometry/point.h"

namespace roadlyn {

/// Reads a position as people type it: whatever IsStrLatLong takes, and a degree sign in UTF-8. Throws InputError for
/// text that is no position, a latitude beyond a pole and a longitude beyond 180 degrees. `argument` is what errors
/// name, and `position` the text's place among several of that name, from 1 (0 where there is one only).
dorvutil::TOrvPoint<std::int32_t> ReadCoordinate(const std::string& argument, std::size_t position,
                                                 const std::string& text);

}  // namespace roadlyn
