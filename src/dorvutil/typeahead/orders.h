#pragma once

#include <cstdint>

#include "dorvutil/typeahead/source.h"

namespace dorvutil {

/// Place of a kind of source in the order of preloading and of display; smaller first.
std::uint32_t PreloadRank(TypeAheadSourceID id);
std::uint32_t DisplayRank(TypeAheadSourceID id);

/// For TVector::QSort.
int ComparePreloadOrder(TypeAheadSource* const* a, TypeAheadSource* const* b);

}  // namespace dorvutil
