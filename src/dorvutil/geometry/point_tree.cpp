#include "dorvutil/geometry/point_tree.h"

#include <utility>

#include "dorvutil/geometry/bounds.h"
#include "dorvutil/geometry/exact_products.h"

namespace dorvutil::geometry_detail {
namespace {

constexpr TOrvRect<std::int32_t> kEmpty{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};

void Widen(TOrvRect<std::int32_t>& box, const TOrvRect<std::int32_t>& by) {
    box.minX = std::min(box.minX, by.minX);
    box.minY = std::min(box.minY, by.minY);
    box.maxX = std::max(box.maxX, by.maxX);
    box.maxY = std::max(box.maxY, by.maxY);
}

// Every second bit, from bit 0 on.
std::uint32_t Spread(std::uint32_t bits16) {
    std::uint32_t v = bits16;
    v = (v | v << 8) & 0x00FF00FF;
    v = (v | v << 4) & 0x0F0F0F0F;
    v = (v | v << 2) & 0x33333333;
    return (v | v << 1) & 0x55555555;
}

}  // namespace

// By 16 bits each of x and y relative to the points' extent; equals stay in the order of the points, which are
// neighbours along a line as a rule.
bool PointTree::Order(const Point* points, std::uint32_t n) {
    TVector<Entry> scratch;
    if (!scratch.SetSize(n) || !m_entries.SetSize(n) || !m_slots.SetSize(n)) return false;
    Rect extent;
    GetBoundingRect(extent, points, static_cast<std::int32_t>(n));
    const std::int64_t longer = std::max(Difference(extent.maxX, extent.minX), Difference(extent.maxY, extent.minY));
    const int shift = std::max(static_cast<int>(std::bit_width(static_cast<std::uint64_t>(longer))) - 16, 0);
    for (std::uint32_t i = 0; i < n; ++i) {
        const auto x = static_cast<std::uint32_t>(Difference(points[i].x, extent.minX) >> shift);
        const auto y = static_cast<std::uint32_t>(Difference(points[i].y, extent.minY) >> shift);
        m_entries.Add({points[i], i, Spread(x) | Spread(y) << 1});
        m_slots.Add(0);
    }
    scratch.Add(m_entries);
    Sort(m_entries.Data(), scratch.Data(), n);
    for (std::uint32_t slot = 0; slot < n; ++slot) m_slots[m_entries[slot].m_index] = slot;
    return true;
}

// A radix sort by bytes; their number is even, so that it ends where it began.
void PointTree::Sort(Entry* entries, Entry* scratch, std::uint32_t n) {
    for (int shift = 0; shift < 32; shift += 8) {
        std::uint32_t starts[257] = {};
        const auto digit = [shift](const Entry& entry) { return entry.m_code >> shift & 0xFF; };
        for (std::uint32_t i = 0; i < n; ++i) ++starts[digit(entries[i]) + 1];
        for (std::uint32_t i = 1; i < 257; ++i) starts[i] += starts[i - 1];
        for (std::uint32_t i = 0; i < n; ++i) scratch[starts[digit(entries[i])]++] = entries[i];
        std::swap(entries, scratch);
    }
}

PointTree::Rect PointTree::BoxOf(std::uint32_t level, std::uint32_t i) const {
    Rect box = kEmpty;
    if (level == 0) {
        for (std::uint32_t left = m_present.Data()[i]; left != 0; left &= left - 1) {
            const Point& p = m_entries.Data()[i * kBranches + static_cast<std::uint32_t>(std::countr_zero(left))].m_at;
            Widen(box, {p.x, p.y, p.x, p.y});
        }
        return box;
    }
    const std::uint32_t end = std::min(m_widths[level - 1], (i + 1) * kBranches);
    for (std::uint32_t child = i * kBranches; child < end; ++child) Widen(box, Box(level - 1, child));
    return box;
}

bool PointTree::Build(const Point* points, std::uint32_t n) {
    if (!Order(points, n)) return false;
    m_levels = 0;
    std::uint32_t boxes = 0;
    for (std::uint32_t width = n; m_levels == 0 || width > kBranches; ++m_levels) {
        width = width / kBranches + (width % kBranches != 0);
        m_starts[m_levels] = boxes;
        m_widths[m_levels] = width;
        boxes += width;
    }
    if (!m_boxes.SetSize(boxes) || !m_present.SetSize(m_widths[0])) return false;
    for (std::uint32_t i = 0; i < m_widths[0]; ++i) {
        const std::uint32_t present = std::min(n - i * kBranches, kBranches);
        m_present.Add(static_cast<std::uint16_t>((1u << present) - 1));
    }
    for (std::uint32_t level = 0; level < m_levels; ++level) {
        for (std::uint32_t i = 0; i < m_widths[level]; ++i) m_boxes.Add(BoxOf(level, i));
    }
    return true;
}

void PointTree::Remove(std::uint32_t i) {
    i = m_slots[i];
    std::uint16_t& present = m_present.Data()[i / kBranches];
    present = static_cast<std::uint16_t>(present & ~(1u << i % kBranches));
    for (std::uint32_t level = 0; level < m_levels; ++level) {
        i /= kBranches;
        const Rect box = BoxOf(level, i);
        Rect& old = m_boxes.Data()[m_starts[level] + i];
        if (box == old) return;
        old = box;
    }
}

}  // namespace dorvutil::geometry_detail
