#pragma once

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <vector>

#include "geometry/plain_geometry.h"

/// Thinning word by word: every pass sorts and computes everything anew. Slow, and what the fast one has to equal.
namespace dorvutil::plain {

struct Vertex {
    double m_weight;
    std::uint32_t m_input;
    std::uint32_t m_position;
};

inline double Length(Point a, Point b) {
    const double dx = static_cast<double>(a.x) - b.x;
    const double dy = static_cast<double>(a.y) - b.y;
    return std::sqrt(dx * dx + dy * dy);
}

inline double Area(Point a, Point b, Point c) {
    const double p = Length(a, b), q = Length(b, c), r = Length(a, c), s = (p + q + r) / 2;
    return std::sqrt(std::fabs(s * (s - p) * (s - q) * (s - r)));
}

class Thinning {
public:
    Thinning(const std::vector<Point>& in, bool check, bool limit) : m_in(in), m_check(check), m_limit(limit) {}

    std::vector<Point> Run(double maxWeight, std::vector<bool> locked, double ratio) {
        locked.resize(m_in.size());
        m_out = m_in;
        const auto size = static_cast<std::uint32_t>(m_in.size());
        for (std::uint32_t i = 0; i < size; ++i) {
            const bool end = i == 0 || i == size - 1;
            m_weights.push_back({end ? DBL_MAX : Area(m_in[i - 1], m_in[i], m_in[i + 1]), i, i});
            if (i > 0) m_perimeter += Length(m_in[i - 1], m_in[i]);
        }
        while (m_out.size() >= 3) {
            Sort();
            const std::vector<bool> marks = Marks(maxWeight, locked, ratio);
            if (std::count(marks.begin(), marks.end(), true) == 0) break;
            std::sort(m_weights.begin(), m_weights.end(),
                      [](const Vertex& a, const Vertex& b) { return a.m_position < b.m_position; });
            for (std::size_t p = m_out.size() - 1; p-- > 1;) {
                if (!marks[p]) continue;
                Discard(p);
                locked.erase(locked.begin() + static_cast<std::ptrdiff_t>(p));
            }
        }
        return m_out;
    }

private:
    void Sort() {
        for (std::uint32_t i = 0; i < m_weights.size(); ++i) m_weights[i].m_position = i;
        m_inputAt.clear();
        for (const Vertex& v : m_weights) m_inputAt.push_back(v.m_input);
        std::sort(m_weights.begin(), m_weights.end(), [](const Vertex& a, const Vertex& b) {
            return a.m_weight != b.m_weight ? a.m_weight < b.m_weight : a.m_input < b.m_input;
        });
    }

    std::vector<bool> Marks(double maxWeight, const std::vector<bool>& locked, double ratio) {
        std::vector<bool> marks(m_out.size());
        for (const Vertex& c : m_weights) {
            const std::uint32_t p = c.m_position;
            if (p == 0 || p == m_out.size() - 1) break;
            const double e = MseDelta(p) + m_error;
            const double l = PerimeterDelta(p) + m_perimeter;
            if (marks[p - 1] || marks[p + 1] || c.m_weight >= maxWeight || ratio * l < e) break;
            if (locked[p]) continue;
            if (c.m_weight == 0 && !m_limit) {
                marks[p] = true;
            } else if (Safe(p)) {
                marks[p] = true;
                m_error = e;
                m_perimeter = l;
            }
        }
        return marks;
    }

    double Mse(std::uint32_t i, std::uint32_t j) const {
        const Point a = m_in[i], b = m_in[j];
        const double length = Length(a, b);
        double sum = 0;
        for (std::uint32_t k = i + 1; k < j; ++k) {
            const double dx = static_cast<double>(m_in[k].x) - a.x, dy = static_cast<double>(m_in[k].y) - a.y;
            const double c = (static_cast<double>(b.x) - a.x) / length, s = (static_cast<double>(b.y) - a.y) / length;
            const double y = length == 0 ? 0 : geometry_detail::TruncateToInt32(-dx * s + dy * c);
            sum += length == 0 ? dx * dx + dy * dy : y * y;
        }
        return j - i < 2 ? 0 : sum / static_cast<double>(m_in.size());
    }

    double MseDelta(std::uint32_t p) const {
        const std::uint32_t previous = m_inputAt[p - 1], v = m_inputAt[p], next = m_inputAt[p + 1];
        return Mse(previous, next) - (Mse(previous, v) + Mse(v, next));
    }

    double PerimeterDelta(std::size_t p) const {
        return Length(m_out[p + 1], m_out[p - 1]) - (Length(m_out[p], m_out[p - 1]) + Length(m_out[p + 1], m_out[p]));
    }

    bool Safe(std::size_t p) const {
        const Point a = m_out[p - 1], b = m_out[p], c = m_out[p + 1];
        const auto [west, east] = std::minmax({a.x, b.x, c.x});
        const auto [south, north] = std::minmax({a.y, b.y, c.y});
        if (west == east && south == north) return true;
        if (m_limit && (std::abs(std::int64_t{c.x} - a.x) >= 32767 || std::abs(std::int64_t{c.y} - a.y) >= 32767))
            return false;
        for (std::size_t i = 0; m_check && i < m_out.size(); ++i) {
            const Point q = m_out[i];
            const bool other = i + 1 < p || i > p + 1;
            if (other && q.x >= west && q.x <= east && q.y >= south && q.y <= north && Holds(a, b, c, q)) return false;
        }
        return true;
    }

    static bool Holds(Point a, Point b, Point c, Point q) {
        const double ux = static_cast<double>(c.x) - b.x, uy = static_cast<double>(c.y) - b.y;
        const double wx = static_cast<double>(a.x) - b.x, wy = static_cast<double>(a.y) - b.y;
        const double qx = static_cast<double>(q.x) - b.x, qy = static_cast<double>(q.y) - b.y;
        const double d00 = ux * ux + uy * uy, d01 = ux * wx + uy * wy, d11 = wx * wx + wy * wy;
        const double d0 = ux * qx + uy * qy, d1 = wx * qx + wy * qy, den = d11 * d00 - d01 * d01;
        if (den == 0) {
            const Wide x = Cross(a, b, q), y = Cross(b, c, q), z = Cross(c, a, q);
            return (x >= 0 && y >= 0 && z >= 0) || (x <= 0 && y <= 0 && z <= 0);
        }
        const double alpha = (d11 * d0 - d1 * d01) / den, beta = (d00 * d1 - d01 * d0) / den;
        return alpha >= 0 && beta >= 0 && alpha + beta <= 1;
    }

    void Discard(std::size_t p) {
        if (p - 1 != 0) m_weights[p - 1].m_weight = Area(m_out[p - 2], m_out[p - 1], m_out[p + 1]);
        if (p + 1 < m_out.size() - 1) m_weights[p + 1].m_weight = Area(m_out[p - 1], m_out[p + 1], m_out[p + 2]);
        m_weights.erase(m_weights.begin() + static_cast<std::ptrdiff_t>(p));
        m_out.erase(m_out.begin() + static_cast<std::ptrdiff_t>(p));
    }

    std::vector<Point> m_in;
    bool m_check;
    bool m_limit;
    std::vector<Point> m_out;
    std::vector<Vertex> m_weights;
    std::vector<std::uint32_t> m_inputAt;  // by position
    double m_error = 0;
    double m_perimeter = 0;
};

}  // namespace dorvutil::plain
