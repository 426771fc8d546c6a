#pragma once

#include "sources/name_source.h"

namespace roadlyn {

/// The countries that the loaded places lie in, by their English names. Its relevance, and what is shown as its
/// population, is that of its places together. A result's data is its line in the form of the recent file.
class CountrySource : public NameSource {
public:
    explicit CountrySource(SourceBoard& board) : NameSource(kCountrySource, board) {}

protected:
    std::shared_ptr<const PlaceTable> LoadTable(const ProgressFunction& progress) override;
    Choice ChoiceAt(std::uint32_t row) const override;
};

}  // namespace roadlyn
