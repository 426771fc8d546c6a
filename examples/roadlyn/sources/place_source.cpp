#include "sources/place_source.h"

#include "place_file.h"

namespace roadlyn {

std::shared_ptr<const PlaceTable> PlaceSource::LoadTable(const ProgressFunction& progress) {
    Board().SetProgressEvent(GetCBDialog().GetEventID());
    auto table = std::make_shared<PlaceTable>(ReadPlaceFile(m_path, progress));
    table->SortForDisplay();
    return table;
}

Choice PlaceSource::ChoiceAt(std::uint32_t row) const { return PlaceChoice(Table(), row); }

Choice PlaceChoice(const PlaceTable& places, std::uint32_t row) {
    const Place& place = places.At(row);
    return {kPlaceSource,
            std::string(places.Name(place)),
            std::string(places.Country(place)),
            std::string(places.Admin1(place)),
            place.latE6,
            place.lonE6,
            place.population};
}

}  // namespace roadlyn
