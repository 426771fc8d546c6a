#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace roadlyn {

/// A square of the British National Grid by its south-west corner, in metres.
struct GridSquare {
    std::int32_t easting = 0;
    std::int32_t northing = 0;
    std::int32_t side = 1;

    bool operator==(const GridSquare&) const = default;
};

/// Reads the words of a grid reference: two letters and an even number of digits, up to ten, with or without blanks
/// ("TQ300805", "TQ", "300", "805"), or an easting and a northing in whole metres. Throws InputError, naming the
/// argument REFERENCE, for anything else and for places off the grid.
GridSquare ReadGridReference(std::span<const std::string> words);

}  // namespace roadlyn
