#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <new>

namespace dorvutil::geometry_detail {

/// A number for each of n indices, and at any time the least of them: a tree of minima with 8 branches, a cache line
/// each. Finding the least reads one byte a level; most changes touch no level but the lowest.
class LeastTree {
public:
    static constexpr std::uint32_t kNone = UINT32_MAX;
    /// An index with this number is out of the running.
    static constexpr double kAbsent = std::numeric_limits<double>::infinity();

    /// All `n` absent; false when memory runs out.
    bool SetSize(std::uint32_t n) {
        std::uint32_t groups = 0;
        m_levels = 0;
        for (std::uint32_t width = n; m_levels == 0 || width > 1; ++m_levels) {
            m_starts[m_levels] = groups;
            width = width / kBranches + (width % kBranches != 0);
            groups += width;
        }
        m_groups.reset(new (std::nothrow) Group[groups]);
        m_least.reset(new (std::nothrow) std::uint8_t[groups]());
        if (!m_groups || !m_least) return false;
        for (std::uint32_t i = 0; i < groups; ++i) {
            for (double& value : m_groups[i].m_values) value = kAbsent;
        }
        return true;
    }

    /// No number may be a NaN.
    void Set(std::uint32_t i, double value) {
        for (std::uint32_t level = 0; level < m_levels; ++level) {
            const std::uint32_t at = m_starts[level] + i / kBranches;
            Group& group = m_groups[at];
            const std::uint32_t slot = i % kBranches;
            const std::uint32_t least = m_least[at];
            const double before = group.m_values[least];
            group.m_values[slot] = value;
            if (slot != least && (value > before || (value == before && slot > least))) return;
            const std::uint32_t now = slot == least && value > before ? FirstLeast(group) : slot;
            m_least[at] = static_cast<std::uint8_t>(now);
            value = group.m_values[now];
            if (value == before) return;
            i /= kBranches;
        }
    }

    /// Many numbers at once: Put them, then Build.
    void Put(std::uint32_t i, double value) { m_groups[i / kBranches].m_values[i % kBranches] = value; }
    void Build() {
        for (std::uint32_t level = 0; level < m_levels; ++level) {
            const std::uint32_t end = level + 1 < m_levels ? m_starts[level + 1] : m_starts[level] + 1;
            for (std::uint32_t at = m_starts[level]; at < end; ++at) {
                const std::uint32_t least = FirstLeast(m_groups[at]);
                m_least[at] = static_cast<std::uint8_t>(least);
                const std::uint32_t i = at - m_starts[level];
                if (level + 1 < m_levels)
                    m_groups[end + i / kBranches].m_values[i % kBranches] = m_groups[at].m_values[least];
            }
        }
    }

    /// The index with the least number, of equals the lowest; kNone when all are absent.
    std::uint32_t Least() const {
        const std::uint32_t root = m_starts[m_levels - 1];
        if (m_groups[root].m_values[m_least[root]] == kAbsent) return kNone;
        std::uint32_t i = 0;
        for (std::uint32_t level = m_levels; level-- > 0;) i = i * kBranches + m_least[m_starts[level] + i];
        return i;
    }

    double operator[](std::uint32_t i) const { return m_groups[i / kBranches].m_values[i % kBranches]; }
    /// Where the number of an index is, for those who know early that it will change.
    const void* Address(std::uint32_t i) const { return &m_groups[i / kBranches]; }

private:
    static constexpr std::uint32_t kBranches = 8;
    static constexpr std::uint32_t kMostLevels = 11;  // 8 to the eleventh: more than any index
    struct alignas(64) Group {
        double m_values[kBranches];
    };

    // Rounds of pairs, without branches that would be mispredicted; a tie goes to the left.
    static std::uint32_t FirstLeast(const Group& group) {
        const double* const v = group.m_values;
        std::uint32_t a = v[1] < v[0];
        const std::uint32_t b = 2u + (v[3] < v[2]);
        std::uint32_t c = 4u + (v[5] < v[4]);
        const std::uint32_t d = 6u + (v[7] < v[6]);
        a += (b - a) * (v[b] < v[a]);
        c += (d - c) * (v[d] < v[c]);
        return a + (c - a) * (v[c] < v[a]);
    }

    std::unique_ptr<Group[]> m_groups;         // level by level, the numbers themselves first
    std::unique_ptr<std::uint8_t[]> m_least;   // which one of each group
    std::uint32_t m_starts[kMostLevels] = {};  // of the levels
    std::uint32_t m_levels = 0;
};

}  // namespace dorvutil::geometry_detail
