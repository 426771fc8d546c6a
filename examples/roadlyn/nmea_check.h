#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace roadlyn {

/// A line of an NMEA 0183 log that is not right.
struct BadLine {
    std::size_t number;  ///< From 1.
    const char* reason;
    std::string expected;  ///< The right checksum, two digits; empty where there is no sentence.
    std::string found;     ///< What stands in its place.
};

struct NmeaReport {
    std::size_t sentences = 0;  ///< The sum of the next two and of the sentences among `bad`.
    std::size_t good = 0;
    std::size_t withoutChecksum = 0;  ///< Allowed, but nothing is known of them.
    std::vector<BadLine> bad;
};

/// Checks every line; empty ones are passed over. A sentence starts with '$' or '!' and ends with '*' and the checksum
/// of what stands between them in two hexadecimal digits.
NmeaReport CheckNmea(std::string_view text);

}  // namespace roadlyn
