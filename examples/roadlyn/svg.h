#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "shape_file.h"

namespace roadlyn {

/// A picture of a part of the map in SVG 1.1: north is up, and a degree of longitude is drawn narrower than one of
/// latitude by the cosine of the middle latitude. Whatever lies outside the part is cut off by the frame.
class SvgMap {
public:
    /// @param part what is shown; made a little larger on each side. @param sizePx of the longer side.
    SvgMap(const Rect& part, double sizePx);

    /// `style` is a list of attributes, as stroke="#888" stroke-width="1".
    void Polyline(const std::vector<Point>& points, std::string_view style);
    void Segment(const Point& from, const Point& to, std::string_view style);
    void Circle(const Point& centre, double radiusPx, std::string_view style);
    /// A line of the legend, top left, in the colour of what it names.
    void Legend(std::string_view text, std::string_view colour);

    /// Whether any of the rectangle is shown.
    bool Shows(const Rect& rect) const;

    /// The whole document, with a scale bar of a round length.
    std::string Finish() const;

private:
    void Position(const Point& point, std::string& out) const;
    std::string ScaleBar() const;

    Rect m_part;
    double m_width;
    double m_height;
    double m_xScale;  // pixels a coordinate unit
    double m_yScale;
    int m_legendLines = 0;
    std::string m_body;
};

/// Writes a picture in one step, so that no half of it is ever seen. Throws InputError when that fails.
void WriteSvg(const std::string& path, const SvgMap& map);

}  // namespace roadlyn
