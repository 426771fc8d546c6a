#pragma once

#include <cstdint>
#include <string>

namespace roadlyn {

/// Kinds of search source; the numbers are the library's source ids, which fix the order of loading and of showing.
enum SourceKind : std::int32_t { kPlaceSource = 2, kCountrySource = 3, kRecentSource = 11 };

/// A place or country by its own, as a result list shows it and as it is remembered.
struct Choice {
    SourceKind kind = kPlaceSource;  ///< kPlaceSource or kCountrySource.
    std::string name;
    std::string country;  ///< Code of two letters, or empty.
    std::string admin1;   ///< Region; empty for a country.
    std::int32_t latE6 = 0;
    std::int32_t lonE6 = 0;  ///< A country has no coordinates: both are 0.
    std::int32_t population = 0;

    bool operator==(const Choice&) const = default;
    /// The same thing, even if its figures have changed since.
    bool IsSame(const Choice& other) const {
        return kind == other.kind && name == other.name && country == other.country && admin1 == other.admin1 &&
               latE6 == other.latE6 && lonE6 == other.lonE6;
    }
};

}  // namespace roadlyn
