#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace roadlyn {

inline constexpr std::int32_t kMaxLatE6 = 90'000'000;   ///< Farthest latitude, millionths of a degree.
inline constexpr std::int32_t kMaxLonE6 = 180'000'000;  ///< Farthest longitude.

/// One place; its texts lie in the table.
struct Place {
    std::uint32_t nameStart;
    std::uint16_t nameLength;  ///< Bytes.
    char country[2];           ///< Code as in the file; zeros when the file has none.
    std::uint32_t admin1;      ///< Index for PlaceTable::Admin1.
    std::int32_t latE6;        ///< Millionths of a degree, WGS 84, south negative.
    std::int32_t lonE6;        ///< West negative.
    std::int32_t population;   ///< 0: unknown.
};

/// Places and their texts. Filled once, then read by any thread.
class PlaceTable {
public:
    /// Longest name in bytes that a table takes.
    static constexpr std::size_t kMaxNameLength = 0xFFFF;
    /// Highest relevance of a place; above it there is room for what the user chose himself.
    static constexpr std::int32_t kMaxRelevance = 2'000'000'000;

    std::uint32_t Count() const { return static_cast<std::uint32_t>(m_places.size()); }
    const Place& At(std::uint32_t row) const { return m_places[row]; }
    std::string_view Name(const Place& place) const { return {m_names.data() + place.nameStart, place.nameLength}; }
    std::string_view Name(std::uint32_t row) const { return Name(m_places[row]); }
    std::string_view Admin1(const Place& place) const { return m_admin1[place.admin1]; }
    std::string_view Country(const Place& place) const { return {place.country, place.country[0] == '\0' ? 0u : 2u}; }
    static std::int32_t Relevance(const Place& place) { return std::min(place.population, kMaxRelevance); }

    /// Adds one; `admin1` is an index from AddAdmin1.
    void Add(std::string_view name, Place place);
    std::uint32_t AddAdmin1(std::string_view name);

    /// Brings the rows into the order in which results of equal match quality are shown: relevance, higher first, then
    /// the number at the start of the name, then the name's bytes.
    void SortForDisplay();

    std::size_t MemoryBytes() const;

private:
    std::vector<Place> m_places;
    std::string m_names;
    std::vector<std::string> m_admin1;
};

}  // namespace roadlyn
