#pragma once

/// Geometry on the latitude/longitude grid: distances, directions, units, coordinate text, projections; segments,
/// polylines and polygons in the plane.
#include "dorvutil/geometry/albers.h"
#include "dorvutil/geometry/bounds.h"
#include "dorvutil/geometry/coordinate_text.h"
#include "dorvutil/geometry/delta_time.h"
#include "dorvutil/geometry/direction.h"
#include "dorvutil/geometry/distance.h"
#include "dorvutil/geometry/fixed_trig.h"
#include "dorvutil/geometry/intersection.h"
#include "dorvutil/geometry/national_grid.h"
#include "dorvutil/geometry/point.h"
#include "dorvutil/geometry/polygon.h"
#include "dorvutil/geometry/polyline.h"
#include "dorvutil/geometry/segment.h"
#include "dorvutil/geometry/thin_polyline.h"
#include "dorvutil/geometry/units.h"
