#include "dorvutil/geometry/thin_polyline.h"

#include "dorvutil/geometry/thinning.h"

namespace dorvutil {

ThinPolyLine::ThinPolyLine(bool checkPointsInTriangle, bool limitDeltas)
    : m_checkPointsInTriangle(checkPointsInTriangle), m_limitDeltas(limitDeltas) {}

bool ThinPolyLine::Thin(const TVector<TOrvPoint<std::int32_t>>& in, double maxWeight, const TVector<bool>& locked,
                        double errorRatio, TVector<TOrvPoint<std::int32_t>>& out) {
    geometry_detail::Thinning line(in, {m_checkPointsInTriangle, m_limitDeltas, maxWeight, errorRatio, locked});
    if (in.Count() < 3 || !line.Prepare()) {
        out = in;
        return true;
    }
    line.Run();
    TVector<TOrvPoint<std::int32_t>> left;
    if (line.Collect(m_weights, m_scratchPoints) && left.Add(m_scratchPoints) >= 0) {
        out.Transfer(left);
    } else {
        out = in;
    }
    return true;
}

bool ThinPolyLine::Thin(const TVector<TOrvPoint<std::int32_t>>& in, double maxWeight, double errorRatio,
                        TVector<TOrvPoint<std::int32_t>>& out) {
    return Thin(in, maxWeight, TVector<bool>(), errorRatio, out);
}

}  // namespace dorvutil
