#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/geometry/point.h"

/// A point and one segment a to b, in the plane of raw coordinates (no scaling by latitude). The t-ratio of a point
/// says where along the segment it projects: 0 at a, 1 at b, below 0 before a, above 1 beyond b. The exact forms
/// compute in doubles, where no difference of coordinates overflows; the fast forms in 32-bit integers modulo 2^32, for
/// spans below 2^31. All functions are free of state, may run on any thread and report no errors.
namespace dorvutil {

DORVUTIL_API double DotProduct(const TOrvPoint<std::int32_t>& u, const TOrvPoint<std::int32_t>& v);
/// Modulo 2^32.
DORVUTIL_API std::int32_t DotProductFast(const TOrvPoint<std::int32_t>& u, const TOrvPoint<std::int32_t>& v);

/// The t-ratio of `p`; 0 for a segment without length.
DORVUTIL_API double GetTRatio(const TOrvPoint<std::int32_t>& a, const TOrvPoint<std::int32_t>& b,
                              const TOrvPoint<std::int32_t>& p);
/// The t-ratio of a point, both vectors taken from the start of the segment. Keeps the upper 15 bits of the largest
/// component: a segment that vanishes beside a far point gives 0.
DORVUTIL_API double GetTRatioFast(TOrvPoint<std::int32_t> seg, TOrvPoint<std::int32_t> rel);

/// Writes the point of the segment nearest to `p` to `out`, components rounded half away from zero, and returns the
/// t-ratio, not cut to the segment.
DORVUTIL_API double ProjectPt(const TOrvPoint<std::int32_t>& a, const TOrvPoint<std::int32_t>& b,
                              const TOrvPoint<std::int32_t>& p, TOrvPoint<std::int32_t>& out);
/// The same by GetTRatioFast.
DORVUTIL_API double ProjectPtFast(const TOrvPoint<std::int32_t>& a, const TOrvPoint<std::int32_t>& b,
                                  const TOrvPoint<std::int32_t>& p, TOrvPoint<std::int32_t>& out);
/// The same with segment, point and result taken from the start of the segment.
DORVUTIL_API double ProjectPtFast(const TOrvPoint<std::int32_t>& seg, const TOrvPoint<std::int32_t>& rel,
                                  TOrvPoint<std::int32_t>& out);

/// The squared distance from `p` to the segment, in coordinate units squared; `out` and `t` as ProjectPt gives them.
DORVUTIL_API double DistanceTo2(const TOrvPoint<std::int32_t>& a, const TOrvPoint<std::int32_t>& b,
                                const TOrvPoint<std::int32_t>& p, TOrvPoint<std::int32_t>& out);
DORVUTIL_API double DistanceTo2(const TOrvPoint<std::int32_t>& a, const TOrvPoint<std::int32_t>& b,
                                const TOrvPoint<std::int32_t>& p, TOrvPoint<std::int32_t>& out, double& t);
/// The distance (not squared) by FastMag; `out` and `t` as ProjectPtFast gives them.
DORVUTIL_API double DistanceToFast(const TOrvPoint<std::int32_t>& a, const TOrvPoint<std::int32_t>& b,
                                   const TOrvPoint<std::int32_t>& p, TOrvPoint<std::int32_t>& out, double& t);

}  // namespace dorvutil
