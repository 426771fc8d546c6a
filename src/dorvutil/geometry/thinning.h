#pragma once

#include <cstdint>
#include <memory>

#include "dorvutil/geometry/least_tree.h"
#include "dorvutil/geometry/point.h"
#include "dorvutil/geometry/point_tree.h"
#include "dorvutil/geometry/thin_polyline.h"
#include "dorvutil/memory/vector.h"

namespace dorvutil::geometry_detail {

/// What one call of ThinPolyLine::Thin asks for.
struct ThinRules {
    bool m_checkPointsInTriangle;
    bool m_limitDeltas;
    double m_maxWeight;
    double m_errorRatio;
    const TVector<bool>& m_locked;
};

/// One polyline on its way from the input to the thinned line. The input must not change meanwhile.
class Thinning {
public:
    using Point = TOrvPoint<std::int32_t>;

    Thinning(const TVector<Point>& in, const ThinRules& rules)
        : m_in(in.Data()), m_count(in.Count()), m_left(in.Count()), m_rules(rules) {}

    /// Has to come first; false when memory runs out.
    bool Prepare();
    void Run();
    /// Writes the vertices that are left, with their weights; false when memory runs out.
    bool Collect(TVector<VertexWeight>& weights, TVector<Point>& points) const;

private:
    static constexpr std::uint32_t kNone = UINT32_MAX;

    /// A vertex of the current line and the edge from it to the next one: small, because the work consists of waiting
    /// for it to come from memory.
    struct alignas(32) Vertex {
        std::uint32_t m_previous;  ///< input index
        std::uint32_t m_next;
        double m_weight;
        double m_length;  ///< of the edge
        double m_error;   ///< of the input along the edge, see CalculateMSE
    };
    /// Flags of a vertex.
    static constexpr std::uint8_t kStraight = 1;  ///< the input along the edge lies on its line
    static constexpr std::uint8_t kParked = 2;

    /// The edge that takes the place of a vertex.
    struct Chord {
        double m_length;
        double m_error;
        bool m_isStraight;
    };
    struct Removal {
        Chord m_chord;
        std::uint32_t m_vertex;
    };
    /// The vertices that a vertex keeps from going, as a list through them.
    struct Watch {
        std::uint32_t m_first;  ///< the first one kept
        std::uint32_t m_next;   ///< of those that the same vertex keeps
        std::uint32_t m_previous;
        std::uint32_t m_keeper;  ///< who keeps this one, or kNone
    };
    /// What becomes of error and perimeter when a vertex goes.
    struct Change {
        double m_error;
        double m_perimeter;
    };
    static double CalculateVertexWeight(double toPrevious, double toNext, double chord);
    void CalculateWeights();
    double CalculatePerimeter() const;
    double CalculateMSE(std::uint32_t from, std::uint32_t to, double length) const;
    bool IsChordStraight(std::uint32_t i) const;
    Chord ChordOf(std::uint32_t i) const;
    double MSEDelta(std::uint32_t i, const Chord& chord) const;
    double PerimeterDelta(std::uint32_t i, const Chord& chord) const;
    bool SafeToDelete(std::uint32_t i);
    bool IsInTriangle(std::uint32_t i, const Point& q) const;
    void DiscardVertex(const Removal& removal);

    Vertex& At(std::uint32_t i) { return m_vertices[i]; }
    const Vertex& At(std::uint32_t i) const { return m_vertices[i]; }
    bool IsEnd(std::uint32_t i) const { return i == 0 || i == m_count - 1; }
    bool IsBefore(std::uint32_t i, std::uint32_t j) const;
    /// Goes without checks and leaves error and perimeter as they are.
    bool IsWeightless(std::uint32_t i) const { return At(i).m_weight == 0 && !m_rules.m_limitDeltas; }
    bool IsRemovable(std::uint32_t i);
    double WeightOf(std::uint32_t i) const;
    double QueueKey(std::uint32_t i) const;
    void Weigh(std::uint32_t i);
    void Enqueue(std::uint32_t i);

    bool Pass();
    void MarkVertices();
    void Mark(std::uint32_t i, const Chord& chord, const Change& after);
    void Prefetch(std::uint32_t i) const;

    double PerimeterScale() const { return m_rules.m_errorRatio < 1 ? m_rules.m_errorRatio : 1; }
    double ErrorScale() const { return m_rules.m_errorRatio < 1 ? 1 : 1 / m_rules.m_errorRatio; }

    double Need(const Change& delta) const;
    void Park(std::uint32_t i, const Change& delta);
    void Unpark(std::uint32_t i);
    bool ReleaseNeedy(std::uint32_t current);
    void KeepFor(std::uint32_t keeper, std::uint32_t i);
    void Forget(std::uint32_t i);

    const Point* m_in;
    std::uint32_t m_count;
    std::uint32_t m_left;
    ThinRules m_rules;
    bool m_isNarrow = false;
    double m_error = 0;
    double m_perimeter = 0;

    std::unique_ptr<Vertex[]> m_vertices;
    TVector<std::uint8_t> m_flags;
    LeastTree m_queue;   ///< weights of the vertices below the limit, save the parked ones
    LeastTree m_parked;  ///< Need of vertices that stay until their neighbourhood changes, negated
    std::uint32_t m_parkedCount = 0;
    PointTree m_places;
    TVector<Watch> m_watches;
    // Of the pass.
    TVector<Removal> m_marked;
    TVector<std::uint32_t> m_overtaken;  ///< released from m_parked after their turn
    std::uint32_t m_end = kNone;         ///< the first vertex in the order whose neighbour is marked
};

}  // namespace dorvutil::geometry_detail
