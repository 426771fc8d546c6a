#include "place_table.h"

#include <algorithm>
#include <charconv>

namespace roadlyn {
namespace {

// The number that leading digits form, as a base-10 conversion reads them: blanks and one sign may precede them.
std::int64_t LeadingNumber(std::string_view name) {
    const std::size_t start = std::min(name.find_first_not_of(" \t\n\v\f\r"), name.size());
    name.remove_prefix(start);
    if (name.starts_with('+')) {
        name.remove_prefix(1);
        if (name.starts_with('-')) return 0;
    }
    std::int64_t number = 0;
    std::from_chars(name.data(), name.data() + name.size(), number);
    return number;
}

}  // namespace

void PlaceTable::Add(std::string_view name, Place place) {
    place.nameStart = static_cast<std::uint32_t>(m_names.size());
    place.nameLength = static_cast<std::uint16_t>(name.size());
    m_names += name;
    m_places.push_back(place);
}

std::uint32_t PlaceTable::AddAdmin1(std::string_view name) {
    m_admin1.emplace_back(name);
    return static_cast<std::uint32_t>(m_admin1.size() - 1);
}

void PlaceTable::SortForDisplay() {
    std::stable_sort(m_places.begin(), m_places.end(), [this](const Place& a, const Place& b) {
        if (Relevance(a) != Relevance(b)) return Relevance(a) > Relevance(b);
        const std::string_view nameA = Name(a);
        const std::string_view nameB = Name(b);
        const std::int64_t numberA = LeadingNumber(nameA);
        const std::int64_t numberB = LeadingNumber(nameB);
        return numberA != numberB ? numberA < numberB : nameA < nameB;
    });
}

std::size_t PlaceTable::MemoryBytes() const {
    std::size_t bytes = m_places.capacity() * sizeof(Place) + m_names.capacity();
    for (const std::string& name : m_admin1) bytes += sizeof(name) + name.capacity();
    return bytes;
}

}  // namespace roadlyn
