#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// Ground distances from and to coordinate units (millionths of a degree). Plain arithmetic without state: any thread.
/// An integer result beyond 32 bits stays at the bound; no number gives 0.
///
/// The forms with a latitude (coordinate units) measure along a parallel and use the whole degrees of the latitude
/// only, cut toward zero.
namespace dorvutil {

/// Rounded by adding a half and cutting toward zero, so that negative distances come out one unit short.
DORVUTIL_API std::int32_t MilesToCoords(double miles);
/// At 90 degrees the latitude is ignored; at -90 degrees any distance but 0 exceeds 32 bits.
DORVUTIL_API std::int32_t MilesToCoords(double miles, std::int32_t latitude);

/// As MilesToCoords, from metres.
DORVUTIL_API std::int32_t MetersToCoords(std::int32_t meters);
DORVUTIL_API std::int32_t MetersToCoords(std::int32_t meters, std::int32_t latitude);

/// The inverse of MilesToCoords. At 90 degrees the latitude counts here.
DORVUTIL_API double CoordsToMiles(double units);
DORVUTIL_API double CoordsToMiles(double units, std::int32_t latitude);

DORVUTIL_API double DegreesToRadians(double degrees);

/// By 3.2808 feet to the metre.
extern "C" DORVUTIL_API double Util_MetersToFeet(double meters);

}  // namespace dorvutil
