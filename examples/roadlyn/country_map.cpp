#include "country_map.h"

#include <array>

#include "dorvutil/geometry/polygon.h"

namespace roadlyn {
namespace {

enum Column : std::size_t { kCountry, kNumber, kKind, kPoints };
constexpr std::array<std::string_view, 4> kColumns = {"country", "iso_num", "kind", "points"};
constexpr std::size_t kLeastPoints = 4;  // a triangle and its first point again

bool Contains(const std::vector<Point>& ring, const Rect& bounds, const Point& p) {
    if (p.x < bounds.minX || p.x > bounds.maxX || p.y < bounds.minY || p.y > bounds.maxY) return false;
    return dorvutil::IsPointInPoly(p.x, p.y, ring.data(), static_cast<std::int32_t>(ring.size()));
}

}  // namespace

CountryMap::CountryMap(const std::string& path) {
    const std::string text = ReadWholeFile(path);
    TsvReader reader(path, text, kColumns);
    while (reader.Next()) AddRing(reader);
    if (m_rings.empty()) reader.Fail("no ring follows the header line");
}

void CountryMap::AddRing(const TsvReader& reader) {
    const std::string_view kind = reader.Field(kKind);
    if (kind != "outer" && kind != "inner") reader.Fail("kind '" + std::string(kind) + "' is neither outer nor inner");
    const bool inner = kind == "inner";
    const std::string_view name = reader.Field(kCountry);
    const int number = reader.Field(kNumber) == "-" ? 0 : reader.Number(kNumber, 1, 999);
    const bool same = !m_countries.empty() && m_countries.back().name == name && m_countries.back().number == number;
    if (inner && !same) reader.Fail("a hole without an outer ring of its country before it");
    if (!same) m_countries.push_back({std::string(name), number});

    Ring ring{ParsePoints(reader, reader.Field(kPoints)), {}, m_countries.size() - 1, inner};
    if (ring.points.size() < kLeastPoints) reader.Fail("the ring has fewer than four points");
    if (!(ring.points.front() == ring.points.back())) reader.Fail("the ring is open: its last point is not its first");
    ring.bounds = BoundsOf(ring.points);
    m_rings.push_back(std::move(ring));
}

const CountryMap::Country* CountryMap::Find(const Point& position) const {
    for (std::size_t i = 0; i < m_rings.size();) {
        bool inside = Contains(m_rings[i].points, m_rings[i].bounds, position);
        for (++i; i < m_rings.size() && m_rings[i].inner; ++i) {
            inside = inside && !Contains(m_rings[i].points, m_rings[i].bounds, position);
        }
        if (inside) return &m_countries[m_rings[i - 1].country];
    }
    return nullptr;
}

}  // namespace roadlyn
