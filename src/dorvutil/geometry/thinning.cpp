// The rule: in passes, take the vertices in the order of (weight, input index) and mark those that may go, until one
// comes up that has a marked neighbour, weighs too much or breaks the error limit; then remove the marked ones, weigh
// their neighbours anew and start the next pass; stop after a pass that marks nothing.
//
// Taken literally every pass sorts all vertices, and there are some hundred passes to 100,000 vertices. What follows
// gives the same result without sorting, and without looking at a vertex again before something about it changed:
//
// Weights depend on the two neighbours alone, and a vertex is weighed again whenever one of them goes. LeastTree gives
// the least (weight, index) at any time; what is taken in a pass leaves it. Vertices at or above the weight limit never
// enter it: meeting one ends the pass like meeting none.
//
// Links, weights and the set of points stay as they are during a pass; they change after it. Marked vertices are never
// neighbours, so that their removals do not depend on each other's order.
//
// The first vertex with a marked neighbour is the least of the marked ones' neighbours that come later in the order
// (m_end): one that came earlier was taken already.
//
// A vertex that must stay (locked, or not safe to delete) is in every later pass taken again to no effect, save for
// one: it ends the pass when its removal would break the error limit. It leaves the queue for m_parked, keyed by how
// much room below the limit its removal needs, and goes back before that much room is gone (ReleaseNeedy). It also goes
// back when a neighbour goes or when the one point goes that was found in its triangle: until then any search would
// find that point again.
//
// The error of an edge depends on its ends in the input alone and is kept with it. Error and perimeter are added up in
// the order of marking, as ever.
//
// A stretch of input on one straight line has offsets far below one unit, which are cut to 0: nothing to add up.
// Without this shortcut long straight lines would cost n^2, as they lose one vertex a pass.
#include "dorvutil/geometry/thinning.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <iterator>
#include <new>

#include "dorvutil/geometry/bounds.h"
#include "dorvutil/geometry/exact_products.h"
#include "dorvutil/geometry/line_error.h"
#include "dorvutil/geometry/segment_inl.h"

namespace dorvutil::geometry_detail {
namespace {

constexpr std::int64_t kDeltaLimit = 32767;
constexpr double kRoundingShare = 1e-12;  // far more than the rounding of a sum of four terms

void FetchEarly([[maybe_unused]] const void* address) {
#ifdef __GNUC__
    __builtin_prefetch(address);
#endif
}

}  // namespace

// Lists get all the room they can need, so that adding to them never fails later.
bool Thinning::Prepare() {
    m_vertices.reset(new (std::nothrow) Vertex[m_count]);
    if (!m_vertices || !m_flags.SetSize(m_count) || !m_queue.SetSize(m_count) || !m_parked.SetSize(m_count) ||
        !m_marked.SetSize(m_count / 2 + 1) || !m_overtaken.SetSize(m_count)) {
        return false;
    }
    if (m_rules.m_checkPointsInTriangle) {
        if (!m_places.Build(m_in, m_count) || !m_watches.SetSize(m_count)) return false;
        for (std::uint32_t i = 0; i < m_count; ++i) m_watches.Add({kNone, kNone, kNone, kNone});
    }
    TOrvRect<std::int32_t> bounds;
    GetBoundingRect(bounds, m_in, static_cast<std::int32_t>(m_count));
    m_isNarrow = Difference(bounds.maxX, bounds.minX) < kNarrow && Difference(bounds.maxY, bounds.minY) < kNarrow;
    CalculateWeights();
    m_perimeter = CalculatePerimeter();
    return true;
}

void Thinning::Run() {
    while (m_left >= 3 && Pass()) continue;
}

bool Thinning::Collect(TVector<VertexWeight>& weights, TVector<Point>& points) const {
    weights.Empty();
    points.Empty();
    if (!weights.SetSize(m_left) || !points.SetSize(m_left)) return false;
    for (std::uint32_t i = 0; i != kNone; i = At(i).m_next) {
        weights.Add({At(i).m_weight, i, weights.Count()});
        points.Add(m_in[i]);
    }
    return true;
}

// Heron's formula.
double Thinning::CalculateVertexWeight(double toPrevious, double toNext, double chord) {
    const double half = (toPrevious + toNext + chord) / 2;
    return std::sqrt(std::fabs(half * (half - toPrevious) * (half - toNext) * (half - chord)));
}

double Thinning::WeightOf(std::uint32_t i) const {
    const Vertex& v = At(i);
    return CalculateVertexWeight(At(v.m_previous).m_length, v.m_length, Length(m_in[v.m_previous], m_in[v.m_next]));
}

void Thinning::CalculateWeights() {
    const std::uint32_t last = m_count - 1;
    for (std::uint32_t i = 0; i < m_count; ++i) {
        const double length = i == last ? 0 : Length(m_in[i], m_in[i + 1]);
        At(i) = {i == 0 ? kNone : i - 1, i == last ? kNone : i + 1, DBL_MAX, length, 0};
        m_flags.Add(kStraight);
    }
    for (std::uint32_t i = 1; i < last; ++i) {
        At(i).m_weight = WeightOf(i);
        m_queue.Put(i, QueueKey(i));
    }
    m_queue.Build();
}

double Thinning::CalculatePerimeter() const {
    double sum = 0;
    for (std::uint32_t i = 0; i + 1 < m_count; ++i) sum += At(i).m_length;
    return sum;
}

double Thinning::CalculateMSE(std::uint32_t from, std::uint32_t to, double length) const {
    if (to - from < 2) return 0;
    const Point* const inner = m_in + from + 1;
    const std::uint32_t n = to - from - 1;
    const double sum = length == 0 ? SquaredDistances(inner, n, m_in[from])
                                   : RotatePolyline(inner, n, m_in[from], m_in[to], length, m_isNarrow);
    return sum / m_count;
}

bool Thinning::IsChordStraight(std::uint32_t i) const {
    const std::uint32_t previous = At(i).m_previous;
    if ((m_flags.Data()[previous] & m_flags.Data()[i] & kStraight) == 0) return false;
    const Point& a = m_in[previous];
    const Point& c = m_in[At(i).m_next];
    if (a == c && m_in[i] != c) return false;  // there and back leaves no line
    return Side(a, m_in[i], c) == 0;
}

Thinning::Chord Thinning::ChordOf(std::uint32_t i) const {
    const Vertex& v = At(i);
    const double length = Length(m_in[v.m_previous], m_in[v.m_next]);
    if (IsChordStraight(i)) return {length, 0, true};
    return {length, CalculateMSE(v.m_previous, v.m_next, length), false};
}

// The growth of the error against the input.
double Thinning::MSEDelta(std::uint32_t i, const Chord& chord) const {
    return chord.m_error - (At(At(i).m_previous).m_error + At(i).m_error);
}

double Thinning::PerimeterDelta(std::uint32_t i, const Chord& chord) const {
    return chord.m_length - (At(At(i).m_previous).m_length + At(i).m_length);
}

bool Thinning::SafeToDelete(std::uint32_t i) {
    const std::uint32_t previous = At(i).m_previous;
    const std::uint32_t next = At(i).m_next;
    const Point& a = m_in[previous];
    const Point& b = m_in[i];
    const Point& c = m_in[next];
    const TOrvRect<std::int32_t> box{std::min({a.x, b.x, c.x}), std::min({a.y, b.y, c.y}), std::max({a.x, b.x, c.x}),
                                     std::max({a.y, b.y, c.y})};
    if (box.minX == box.maxX && box.minY == box.maxY) return true;
    if (m_rules.m_limitDeltas &&
        (MagnitudeOf(Difference(c.x, a.x)) >= kDeltaLimit || MagnitudeOf(Difference(c.y, a.y)) >= kDeltaLimit)) {
        return false;
    }
    if (!m_rules.m_checkPointsInTriangle) return true;
    if (m_watches[i].m_keeper != kNone) return false;
    const std::uint32_t keeper = m_places.Find(box, [this, previous, i, next](std::uint32_t other) {
        return other != previous && other != i && other != next && IsInTriangle(i, m_in[other]);
    });
    if (keeper == kNone) return true;
    KeepFor(keeper, i);
    return false;
}

// By barycentric coordinates relative to the vertex. Where these fail, for want of area or of digits, the triangle
// holds what lies on no two different sides of its edges; `q` is known to lie in its bounding box.
bool Thinning::IsInTriangle(std::uint32_t i, const Point& q) const {
    const Point& previous = m_in[At(i).m_previous];
    const Point& corner = m_in[i];
    const Point& next = m_in[At(i).m_next];
    const double ux = Gap(next.x, corner.x);
    const double uy = Gap(next.y, corner.y);
    const double wx = Gap(previous.x, corner.x);
    const double wy = Gap(previous.y, corner.y);
    const double qx = Gap(q.x, corner.x);
    const double qy = Gap(q.y, corner.y);
    const double d00 = ux * ux + uy * uy;
    const double d01 = ux * wx + uy * wy;
    const double d11 = wx * wx + wy * wy;
    const double d0 = ux * qx + uy * qy;
    const double d1 = wx * qx + wy * qy;
    const double denominator = d11 * d00 - d01 * d01;
    if (denominator == 0) {
        const int sides[] = {Side(previous, corner, q), Side(corner, next, q), Side(next, previous, q)};
        const auto [least, most] = std::minmax_element(std::begin(sides), std::end(sides));
        return *least * *most >= 0;
    }
    const double alpha = (d11 * d0 - d1 * d01) / denominator;
    const double beta = (d00 * d1 - d01 * d0) / denominator;
    return alpha >= 0 && beta >= 0 && alpha + beta <= 1;
}

// The order in which vertices are taken.
bool Thinning::IsBefore(std::uint32_t i, std::uint32_t j) const {
    const double a = At(i).m_weight;
    const double b = At(j).m_weight;
    return a < b || (a == b && i < j);
}

bool Thinning::IsRemovable(std::uint32_t i) {
    if (m_rules.m_locked[i]) return false;
    return IsWeightless(i) || SafeToDelete(i);
}

double Thinning::QueueKey(std::uint32_t i) const {
    const double weight = At(i).m_weight;
    return weight >= m_rules.m_maxWeight ? LeastTree::kAbsent : weight;
}

void Thinning::Enqueue(std::uint32_t i) { m_queue.Set(i, QueueKey(i)); }

// After a change of the neighbours. The ends have no weight to change.
void Thinning::Weigh(std::uint32_t i) {
    if (IsEnd(i)) return;
    At(i).m_weight = WeightOf(i);
    Unpark(i);
    Forget(i);
    Enqueue(i);
}

// False when nothing went.
bool Thinning::Pass() {
    m_end = kNone;
    ReleaseNeedy(kNone);
    MarkVertices();
    for (; m_overtaken.Count() != 0; m_overtaken.DeleteAt(m_overtaken.Count() - 1)) Enqueue(m_overtaken.Last());
    if (m_marked.Count() == 0) return false;
    for (const Removal& removal : m_marked) DiscardVertex(removal);
    for (; m_marked.Count() != 0; m_marked.DeleteAt(m_marked.Count() - 1)) {
        const Vertex& gone = At(m_marked.Last().m_vertex);
        Weigh(gone.m_previous);
        Weigh(gone.m_next);
    }
    return true;
}

// Each vertex leaves the queue before it is looked at, so that the next one is known and on its way from memory.
void Thinning::MarkVertices() {
    for (std::uint32_t i = m_queue.Least(), next = kNone; i != kNone; i = next) {
        if (m_end != kNone && !IsBefore(i, m_end)) return;
        m_queue.Set(i, LeastTree::kAbsent);
        next = m_queue.Least();
        if (next != kNone) {
            Prefetch(next - 1);
            Prefetch(next + 1);
            FetchEarly(m_queue.Address(next));
        }
        const Chord chord = ChordOf(i);
        const Change delta{MSEDelta(i, chord), PerimeterDelta(i, chord)};
        const Change after{delta.m_error + m_error, delta.m_perimeter + m_perimeter};
        if (m_rules.m_errorRatio * after.m_perimeter < after.m_error) return Enqueue(i);
        if (!IsRemovable(i)) {
            Park(i, delta);
            continue;
        }
        Mark(i, chord, after);
        if (ReleaseNeedy(i)) next = m_queue.Least();
    }
}

void Thinning::Mark(std::uint32_t i, const Chord& chord, const Change& after) {
    m_marked.Add({chord, i});
    for (const std::uint32_t neighbour : {At(i).m_previous, At(i).m_next}) {
        if (!IsEnd(neighbour) && IsBefore(i, neighbour) && (m_end == kNone || IsBefore(neighbour, m_end)))
            m_end = neighbour;
    }
    if (IsWeightless(i)) return;
    m_error = after.m_error;
    m_perimeter = after.m_perimeter;
}

void Thinning::Prefetch(std::uint32_t i) const {
    FetchEarly(&m_vertices[i]);
    FetchEarly(m_in + i);
}

void Thinning::DiscardVertex(const Removal& removal) {
    const std::uint32_t i = removal.m_vertex;
    const Vertex& v = At(i);
    Vertex& previous = At(v.m_previous);
    previous.m_next = v.m_next;
    previous.m_length = removal.m_chord.m_length;
    previous.m_error = removal.m_chord.m_error;
    if (!removal.m_chord.m_isStraight) m_flags.Data()[v.m_previous] &= static_cast<std::uint8_t>(~kStraight);
    At(v.m_next).m_previous = v.m_previous;
    if (previous.m_previous != kNone) Prefetch(previous.m_previous);
    if (At(v.m_next).m_next != kNone) Prefetch(At(v.m_next).m_next);
    --m_left;
    if (!m_rules.m_checkPointsInTriangle) return;
    m_places.Remove(i);
    for (std::uint32_t kept = m_watches[i].m_first; kept != kNone; kept = m_watches[i].m_first) {
        Forget(kept);
        Unpark(kept);
        Enqueue(kept);
    }
}

// A removal breaks the limit when ratio * (perimeter change + perimeter) < error change + error. All that depends on
// the vertex moved to one side is its need, the rest is the room that is left. The scales keep both finite for large
// ratios.
double Thinning::Need(const Change& delta) const {
    const double need = ErrorScale() * delta.m_error - PerimeterScale() * delta.m_perimeter;
    return need == need ? need : LeastTree::kAbsent;
}

void Thinning::Park(std::uint32_t i, const Change& delta) {
    ++m_parkedCount;
    m_parked.Set(i, -Need(delta));
    m_flags.Data()[i] |= kParked;
}

void Thinning::Unpark(std::uint32_t i) {
    std::uint8_t& flags = m_flags.Data()[i];
    if ((flags & kParked) == 0) return;
    --m_parkedCount;
    m_parked.Set(i, LeastTree::kAbsent);
    flags &= static_cast<std::uint8_t>(~kParked);
}

// Puts the parked vertices back whose removal may break the limit now. The ones whose turn in this pass is over,
// `current` being taken, wait for the next. True when one was put back.
bool Thinning::ReleaseNeedy(std::uint32_t current) {
    if (m_parkedCount == 0) return false;
    const double length = PerimeterScale() * m_perimeter;
    const double error = ErrorScale() * m_error;
    bool released = false;
    for (std::uint32_t i = m_parked.Least(); i != kNone; i = m_parked.Least()) {
        const double need = -m_parked[i];
        const double rounding = kRoundingShare * (std::fabs(length) + std::fabs(error) + std::fabs(need));
        if (!(need > length - error - rounding)) break;
        Unpark(i);
        if (current == kNone || IsBefore(current, i)) {
            Enqueue(i);
            released = true;
        } else {
            m_overtaken.Add(i);
        }
    }
    return released;
}

void Thinning::KeepFor(std::uint32_t keeper, std::uint32_t i) {
    Watch& kept = m_watches[i];
    kept.m_keeper = keeper;
    kept.m_previous = kNone;
    kept.m_next = m_watches[keeper].m_first;
    if (kept.m_next != kNone) m_watches[kept.m_next].m_previous = i;
    m_watches[keeper].m_first = i;
}

void Thinning::Forget(std::uint32_t i) {
    if (!m_rules.m_checkPointsInTriangle || m_watches[i].m_keeper == kNone) return;
    Watch& kept = m_watches[i];
    if (kept.m_previous == kNone) {
        m_watches[kept.m_keeper].m_first = kept.m_next;
    } else {
        m_watches[kept.m_previous].m_next = kept.m_next;
    }
    if (kept.m_next != kNone) m_watches[kept.m_next].m_previous = kept.m_previous;
    kept.m_keeper = kNone;
}

}  // namespace dorvutil::geometry_detail
