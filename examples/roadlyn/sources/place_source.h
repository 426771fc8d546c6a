#pragma once

#include "sources/name_source.h"

namespace roadlyn {

/// The places of a place file. A result's data is the row in the table, in decimal.
class PlaceSource : public NameSource {
public:
    PlaceSource(SourceBoard& board, std::string path) : NameSource(kPlaceSource, board), m_path(std::move(path)) {}

protected:
    std::shared_ptr<const PlaceTable> LoadTable(const ProgressFunction& progress) override;
    void OnLoaded() override { Board().SetPlaces(TablePointer()); }
    Choice ChoiceAt(std::uint32_t row) const override;
    std::string KeyOf(std::uint32_t row) const override { return std::to_string(row); }

private:
    const std::string m_path;
};

/// What a row of a table of places stands for.
Choice PlaceChoice(const PlaceTable& places, std::uint32_t row);

}  // namespace roadlyn
