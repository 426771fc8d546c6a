#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// The British National Grid: eastings and northings in metres on the Transverse Mercator projection of the Airy 1830
/// ellipsoid. All latitudes and longitudes are on its datum, OSGB36; up to some 120 m from WGS 84. Any thread.
namespace dorvutil {

/// The National Grid's own numbers for FullEN_to_LatLon.
namespace national_grid {
constexpr double kA = 6377563.396;  ///< metres, as all but the scale
constexpr double kB = 6356256.91;
constexpr double kE0 = 400000;
constexpr double kN0 = -100000;
constexpr double kF0 = 0.9996012717;
}  // namespace national_grid

/// The south-west corner of a 100 km square named by two letters of either case, as TQ; what follows them is ignored.
/// @return 1; 0 when the square is none of the grid. A first letter off the grid counts as S, in whose 500 km square
/// the outputs then lie. A second letter that is none leaves the outputs as they were, as do a null output (0) and a
/// null or empty square (1).
DORVUTIL_API std::int32_t OSGBSquareToFullEN(const char* square, double* easting, double* northing);

/// From easting E and northing N to degrees, by the series of the Ordnance Survey's "A guide to coordinate systems in
/// Great Britain", annexe C. The true origin is that of the National Grid, 49 degrees north and 2 degrees west.
/// @param a @param b semi-axes of the ellipsoid in metres; @param E0 @param N0 the true origin's easting and northing;
/// @param F0 the scale on the central meridian. Numbers for which the series does not converge give no useful result.
/// Nothing is written when an output is null.
DORVUTIL_API void FullEN_to_LatLon(double E, double N, double a, double b, double E0, double N0, double F0,
                                   double* latitude, double* longitude);

/// From an easting and a northing of six characters each, whole metres. @param x longitude, @param y latitude, in
/// coordinate units, cut toward zero. @return false for texts of other lengths and null pointers; the outputs are then
/// as before. A text of six characters that is no number counts as the number it begins with, or 0.
DORVUTIL_API bool StrEN_to_LatLon(const char* easting, const char* northing, std::int32_t* x, std::int32_t* y);

}  // namespace dorvutil
