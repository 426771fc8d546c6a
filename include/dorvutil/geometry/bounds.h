#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/geometry/point.h"
#include "dorvutil/memory/vector.h"

/// The smallest rectangle around a set of points. Free of state, any thread.
namespace dorvutil {

/// False, with `out` untouched, when there are no points (null, or `n` below 1).
extern "C" DORVUTIL_API bool GetBoundingRect(TOrvRect<std::int32_t>& out, const TOrvPoint<std::int32_t>* pts,
                                             std::int32_t n);

/// An empty vector gives the rectangle of its default element alone.
DORVUTIL_API void CalculateBoundingBox(const TVector<TOrvPoint<std::int32_t>>& points, TOrvRect<std::int32_t>& out);

}  // namespace dorvutil
