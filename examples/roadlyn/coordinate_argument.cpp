#include "coordinate_argument.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "dorvutil/geometry/coordinate_text.h"
#include "input_error.h"

namespace roadlyn {
namespace {

constexpr std::int32_t kPole = 90'000'000;
constexpr std::int32_t kDateLine = 180'000'000;

// The library skips a degree sign of one byte.
std::string WithLatin1Degrees(std::string text) {
    for (std::size_t at = 0; (at = text.find("\u00B0", at)) != std::string::npos;) text.replace(at, 2, "\xB0");
    return text;
}

// What the library, which only says no, misses in a text.
std::string WhatIsMissing(std::string_view text) {
    const std::size_t separator = text.find_first_of(";&,");
    if (separator == std::string_view::npos) return "no comma between latitude and longitude";
    std::size_t start = 0;
    for (const std::string_view part : {text.substr(0, separator), text.substr(separator + 1)}) {
        const std::size_t first = part.find_first_not_of(" '\"\xB0");
        if (first == std::string_view::npos) return "no number at character " + std::to_string(start + 1);
        if (part.find_first_of("0123456789.-+", first) != first)
            return "no number at character " + std::to_string(start + first + 1);
        start = separator + 1;
    }
    if (text.find_first_of("NnSsEeWw") != std::string_view::npos)
        return "one number needs N or S behind it and the other E or W";
    return "numbers without N, S, E and W need a decimal point each, as in 51.0,7.0";
}

}  // namespace

dorvutil::TOrvPoint<std::int32_t> ReadCoordinate(const std::string& argument, std::size_t position,
                                                 const std::string& text) {
    const auto fail = [&](const std::string& reason) {
        throw InputError(argument, position, "'" + text + "': " + reason);
    };
    const std::string plain = WithLatin1Degrees(text);
    dorvutil::TOrvPoint<std::int32_t> point;
    if (!dorvutil::IsStrLatLong(plain.c_str(), &point.x, &point.y)) fail(WhatIsMissing(plain));
    if (point.y < -kPole || point.y > kPole)
        fail(
            "the latitude lies beyond the pole (packed degrees, minutes and seconds need 6 to 8 digits in both "
            "numbers)");
    if (point.x < -kDateLine || point.x > kDateLine) fail("the longitude lies beyond 180 degrees");
    return point;
}

}  // namespace roadlyn
