#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "shape_file.h"

namespace roadlyn {

/// The countries of a map and their borders.
class CountryMap {
public:
    struct Country {
        std::string name;
        int number = 0;  ///< of ISO 3166-1; 0 when it has none
    };

    /// Reads tab-separated text with the columns country, iso_num (`-` for none), kind (`outer`, or `inner` for a hole
    /// of the outer ring before it) and points (`lon_e6,lat_e6;...`, the first repeated at the end). Throws InputError
    /// for anything that does not fit: an open ring, too.
    explicit CountryMap(const std::string& path);

    /// The country that contains the position, null when none does. A position on a border may belong to either side
    /// of it, or to none.
    const Country* Find(const Point& position) const;

    std::size_t RingCount() const { return m_rings.size(); }

private:
    struct Ring {
        std::vector<Point> points;
        Rect bounds;
        std::size_t country;
        bool inner;
    };
    void AddRing(const TsvReader& reader);

    std::vector<Country> m_countries;
    std::vector<Ring> m_rings;  // an outer one, then its holes
};

}  // namespace roadlyn
