#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "dorvutil/geometry/point.h"
#include "dorvutil/memory/vector.h"

namespace dorvutil::geometry_detail {

/// Points by place: boxes around 16 neighbours, boxes around 16 of those and so on, neighbours being those along a
/// curve that fills the plane (G. M. Morton, 1966). A search for a small place looks into few boxes. Points can be
/// removed.
class PointTree {
public:
    using Point = TOrvPoint<std::int32_t>;
    using Rect = TOrvRect<std::int32_t>;
    static constexpr std::uint32_t kNone = UINT32_MAX;

    /// Takes in `n` points, at least one; false when memory runs out.
    bool Build(const Point* points, std::uint32_t n);
    void Remove(std::uint32_t i);

    /// The first point met in `place` (edges included) that `matches(index)`, or kNone.
    template <class Matches>
    std::uint32_t Find(const Rect& place, const Matches& matches) const {
        std::uint32_t found = kNone;
        const std::uint32_t top = m_levels - 1;
        for (std::uint32_t i = 0; i < m_widths[top] && found == kNone; ++i) found = FindBelow(top, i, place, matches);
        return found;
    }

private:
    static constexpr std::uint32_t kBranches = 16;
    static constexpr std::uint32_t kMostLevels = 8;

    /// A point and its place on the curve.
    struct Entry {
        Point m_at;
        std::uint32_t m_index;
        std::uint32_t m_code;
    };

    bool Order(const Point* points, std::uint32_t n);
    static void Sort(Entry* entries, Entry* scratch, std::uint32_t n);
    static bool Overlap(const Rect& a, const Rect& b) {
        return a.minX <= b.maxX && a.maxX >= b.minX && a.minY <= b.maxY && a.maxY >= b.minY;
    }
    static bool Contains(const Rect& box, const Point& p) {
        return p.x >= box.minX && p.x <= box.maxX && p.y >= box.minY && p.y <= box.maxY;
    }
    const Rect& Box(std::uint32_t level, std::uint32_t i) const { return m_boxes.Data()[m_starts[level] + i]; }
    Rect BoxOf(std::uint32_t level, std::uint32_t i) const;

    template <class Matches>
    std::uint32_t FindBelow(std::uint32_t level, std::uint32_t i, const Rect& place, const Matches& matches) const {
        if (!Overlap(Box(level, i), place)) return kNone;
        std::uint32_t found = kNone;
        if (level == 0) {
            for (std::uint32_t left = m_present.Data()[i]; left != 0 && found == kNone; left &= left - 1) {
                const std::uint32_t slot = i * kBranches + static_cast<std::uint32_t>(std::countr_zero(left));
                const Entry& entry = m_entries.Data()[slot];
                if (Contains(place, entry.m_at) && matches(entry.m_index)) found = entry.m_index;
            }
            return found;
        }
        const std::uint32_t end = std::min(m_widths[level - 1], (i + 1) * kBranches);
        for (std::uint32_t child = i * kBranches; child < end && found == kNone; ++child)
            found = FindBelow(level - 1, child, place, matches);
        return found;
    }

    TVector<Entry> m_entries;                  // along the curve
    TVector<std::uint32_t> m_slots;            // where each point is in m_entries
    TVector<Rect> m_boxes;                     // level by level from the lowest; empty ones contain nothing
    TVector<std::uint16_t> m_present;          // bit k of entry i: point 16 * i + k
    std::uint32_t m_starts[kMostLevels] = {};  // of the levels
    std::uint32_t m_widths[kMostLevels] = {};  // boxes of the levels
    std::uint32_t m_levels = 0;
};

}  // namespace dorvutil::geometry_detail
