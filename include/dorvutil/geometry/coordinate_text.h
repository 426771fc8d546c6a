#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/geometry/point.h"
#include "dorvutil/text/string.h"

/// Coordinates as people write them. The locale of the process plays no part. Any thread.
namespace dorvutil {

/// Degrees with six decimals and the hemisphere, as in "33.865000S" and "151.209444E"; 0 is north and east. The result
/// is exact. Empty when memory runs out.
DORVUTIL_API ORVustring ConvertLat(std::int32_t latitude);
DORVUTIL_API ORVustring ConvertLon(std::int32_t longitude);
/// Latitude, separator, longitude. A null separator counts as empty.
DORVUTIL_API ORVustring ConvertLatLon(const TOrvPoint<std::int32_t>& point, const char* separator);

/// Reads two numbers parted by the first of ; & and , in the text. Accepted are
/// - a plain pair, latitude first, both with a decimal point: "51.5, -0.12",
/// - a pair with one of N and S behind one number and one of E and W behind the other, in either order and either case:
///   "51.5N, 0.12W" in degrees, or, when both have 6 to 8 digits and none a point, packed degrees, minutes and seconds:
///   "513030N, 0000730W".
///
/// A number is the longest run of digits, points and signs at the start of its part; of the run the value is what
/// strtod reads ("1-2" is 1, "--5" is 0, "1.2.3" is 1.2), and behind the run, or its letter, everything is ignored. Of
/// a part the first 127 characters count, of a run the first 31 where a letter follows. Blanks, ' and " and the byte
/// 0xB0 (a Latin-1 degree sign) are skipped wherever they are.
/// @param x longitude, @param y latitude, in coordinate units, cut toward zero. They are not checked against the poles
/// or the date line; beyond 32 bits they stay at the bound.
/// @return false for any other text and for null pointers; the outputs are then as before.
extern "C" DORVUTIL_API bool IsStrLatLong(const char* text, std::int32_t* x, std::int32_t* y);
/// The same for UTF-16; here only the blanks at the start of each part are skipped.
extern "C" DORVUTIL_API bool IsStrLatLongW(const char16_t* text, std::int32_t* x, std::int32_t* y);

}  // namespace dorvutil
