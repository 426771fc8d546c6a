#include "svg.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "dorvutil/geometry/distance.h"
#include "replace_file.h"

namespace roadlyn {
namespace {

constexpr double kMarginShare = 0.04;
constexpr double kLeastSpan = 200;  // coordinate units: a single point gets a picture too
constexpr double kRadiansPerUnit = 1.7453292519943295e-08;
constexpr double kLineHeight = 16;

std::string Number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}

std::string Escaped(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '&') {
            out += "&amp;";
        } else if (c == '<') {
            out += "&lt;";
        } else {
            out += c;
        }
    }
    return out;
}

// Adds the margin, within the globe.
Rect Widened(const Rect& part) {
    const auto widen = [](std::int32_t& least, std::int32_t& most, double limit) {
        const double middle = (double{1} * least + most) / 2;
        const double half = std::max((double{1} * most - least) / 2 * (1 + 2 * kMarginShare), kLeastSpan / 2);
        least = static_cast<std::int32_t>(std::max(middle - half, -limit));
        most = static_cast<std::int32_t>(std::min(middle + half, limit));
    };
    Rect wide = part;
    widen(wide.minX, wide.maxX, 180e6);
    widen(wide.minY, wide.maxY, 90e6);
    return wide;
}

// The largest of 1, 2 and 5 times a power of ten that is no larger.
double RoundedDown(double value) {
    const double power = std::pow(10, std::floor(std::log10(value)));
    const double share = value / power;
    return power * (share >= 5 ? 5 : share >= 2 ? 2 : 1);
}

std::string Text(double x, double y, std::string_view colour, std::string_view text) {
    return "<text x=\"" + Number(x) + "\" y=\"" + Number(y) + "\" fill=\"" + std::string(colour) + "\">" +
           Escaped(text) + "</text>\n";
}

}  // namespace

SvgMap::SvgMap(const Rect& part, double sizePx) : m_part(Widened(part)) {
    const double middle = (double{1} * m_part.minY + m_part.maxY) / 2;
    const double narrowing = std::max(std::cos(middle * kRadiansPerUnit), 0.05);
    const double height = double{1} * m_part.maxY - m_part.minY;
    const double width = (double{1} * m_part.maxX - m_part.minX) * narrowing;
    m_yScale = sizePx / std::max(width, height);
    m_xScale = m_yScale * narrowing;
    m_width = width * m_yScale;
    m_height = height * m_yScale;
}

void SvgMap::Position(const Point& point, std::string& out) const {
    out += Number((double{1} * point.x - m_part.minX) * m_xScale);
    out += ',';
    out += Number((double{1} * m_part.maxY - point.y) * m_yScale);
}

void SvgMap::Polyline(const std::vector<Point>& points, std::string_view style) {
    m_body += "<polyline fill=\"none\" " + std::string(style) + " points=\"";
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (i != 0) m_body += ' ';
        Position(points[i], m_body);
    }
    m_body += "\"/>\n";
}

void SvgMap::Segment(const Point& from, const Point& to, std::string_view style) { Polyline({from, to}, style); }

void SvgMap::Circle(const Point& centre, double radiusPx, std::string_view style) {
    const double x = (double{1} * centre.x - m_part.minX) * m_xScale;
    const double y = (double{1} * m_part.maxY - centre.y) * m_yScale;
    m_body += "<circle cx=\"" + Number(x) + "\" cy=\"" + Number(y) + "\" r=\"" + Number(radiusPx) + "\" " +
              std::string(style) + "/>\n";
}

void SvgMap::Legend(std::string_view text, std::string_view colour) {
    m_body += Text(8, kLineHeight * ++m_legendLines, colour, text);
}

bool SvgMap::Shows(const Rect& rect) const {
    return rect.minX <= m_part.maxX && rect.maxX >= m_part.minX && rect.minY <= m_part.maxY && rect.maxY >= m_part.minY;
}

// True in the middle of the picture.
std::string SvgMap::ScaleBar() const {
    constexpr std::int32_t kSpan = 1000;  // coordinate units, few enough to be straight
    const std::int32_t y = m_part.minY / 2 + m_part.maxY / 2;
    const double metres = dorvutil::GC_DistNear(0, y, kSpan, y, dorvutil::DT_METERS) / (kSpan * m_xScale);  // a pixel
    if (metres <= 0) return {};
    const double length = RoundedDown(metres * m_width / 4);
    const double px = length / metres;
    const double top = m_height - 12;
    char text[32];
    std::snprintf(text, sizeof text, length < 1000 ? "%.0f m" : "%.0f km", length < 1000 ? length : length / 1000);
    return "<path fill=\"none\" stroke=\"#000\" d=\"M8 " + Number(top - 4) + "v8m0 -4h" + Number(px) + "m0 -4v8\"/>\n" +
           Text(px + 14, top + 4, "#000", text);
}

std::string SvgMap::Finish() const {
    const std::string size = "width=\"" + Number(m_width) + "\" height=\"" + Number(m_height) + "\"";
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" " + size + " viewBox=\"0 0 " + Number(m_width) + " " +
           Number(m_height) + "\" font-family=\"sans-serif\" font-size=\"12\">\n<rect " + size + " fill=\"#fff\"/>\n" +
           m_body + ScaleBar() + "</svg>\n";
}

void WriteSvg(const std::string& path, const SvgMap& map) { ReplaceFile(path, map.Finish()); }

}  // namespace roadlyn
