#include "sources/country_source.h"

#include <map>

#include "country_names.h"

namespace roadlyn {

// The library preloads this source after the places. Without them there are no countries either.
std::shared_ptr<const PlaceTable> CountrySource::LoadTable(const ProgressFunction& /*progress*/) {
    auto table = std::make_shared<PlaceTable>();
    const SourceBoard::PlacesPointer places = Board().Places();
    if (!places) return table;
    std::map<std::string_view, std::int64_t> populations;
    for (std::uint32_t row = 0; row < places->Count(); ++row) {
        const Place& place = places->At(row);
        if (place.country[0] != '\0') populations[places->Country(place)] += place.population;
    }
    const std::uint32_t noRegion = table->AddAdmin1("");
    for (const auto& [code, population] : populations) {
        Place country{};
        country.country[0] = code[0];
        country.country[1] = code[1];
        country.admin1 = noRegion;
        country.population = static_cast<std::int32_t>(std::min<std::int64_t>(population, PlaceTable::kMaxRelevance));
        table->Add(CountryName(code), country);
    }
    table->SortForDisplay();
    return table;
}

Choice CountrySource::ChoiceAt(std::uint32_t row) const {
    const Place& country = Table().At(row);
    return {kCountrySource,    std::string(Table().Name(row)), std::string(Table().Country(country)), "", 0, 0,
            country.population};
}

}  // namespace roadlyn
