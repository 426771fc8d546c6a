#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/geometry/point.h"
#include "dorvutil/memory/vector.h"

namespace dorvutil {

/// What one vertex means to the shape of its polyline.
struct VertexWeight {
    double m_weight;             ///< area of the triangle with its neighbours, coordinate units squared; ends: DBL_MAX
    std::uint32_t m_inputIndex;  ///< its index in the input polyline
    std::uint32_t m_position;    ///< its index in the current polyline
};

/// Removes vertices from polylines while keeping their shape: those first whose triangle with their neighbours is the
/// smallest (M. Visvalingam and J. D. Whyatt, "Line generalisation by repeated elimination of points", 1993), by the
/// planar geometry of raw coordinates. It works in passes that end where two neighbours would go at once. Ends are
/// kept. An object keeps no result, only its working memory; not synchronised.
///
/// Cost: n log n steps, plus for each vertex looked at the input vertices between its neighbours.
class DORVUTIL_API ThinPolyLine {
public:
    /// @param checkPointsInTriangle keep a vertex while another vertex of the polyline lies in or on its triangle, so
    /// that the line is not drawn across itself. The other vertices of a triangle without area are those on its line.
    /// @param limitDeltas keep a vertex whose neighbours are 32767 units or more apart in x or y, so that the result
    /// needs no InflateForMaxShapePointValue; vertices without weight are then checked like all others.
    ThinPolyLine(bool checkPointsInTriangle, bool limitDeltas);
    ThinPolyLine(const ThinPolyLine& other) = default;
    ThinPolyLine& operator=(const ThinPolyLine& other) = default;
    ~ThinPolyLine() = default;

    /// Writes what is left of `in` to `out`, which may be `in` and then owns its memory. Always true; when memory for
    /// the work runs out, `out` is `in` unchanged.
    /// @param maxWeight vertices of this weight and above stay.
    /// @param locked vertices whose entry is set stay; vertices beyond its end have its default.
    /// @param errorRatio ends the thinning once the error by the next vertex exceeds this share of the length left:
    /// the sum of the squared offsets of the removed vertices from the line, divided by the number of input vertices.
    /// Where the two ends of a piece of the line coincide the offset is the distance from them.
    bool Thin(const TVector<TOrvPoint<std::int32_t>>& in, double maxWeight, const TVector<bool>& locked,
              double errorRatio, TVector<TOrvPoint<std::int32_t>>& out);
    /// The same with no locked vertices.
    bool Thin(const TVector<TOrvPoint<std::int32_t>>& in, double maxWeight, double errorRatio,
              TVector<TOrvPoint<std::int32_t>>& out);

private:
    bool m_checkPointsInTriangle;
    bool m_limitDeltas;
    TVector<VertexWeight> m_weights;                   // of the vertices left, in their order
    TVector<TOrvPoint<std::int32_t>> m_scratchPoints;  // the vertices left
};

}  // namespace dorvutil
