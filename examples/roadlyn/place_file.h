#pragma once

#include <functional>
#include <string>

#include "place_table.h"

namespace roadlyn {

/// Told how far a long step has come, in thousandths; answers whether to go on.
using ProgressFunction = std::function<bool(unsigned permille)>;

/// Reads a place file: UTF-8 text, one line a place, fields separated by one tab, without quoting. The first line names
/// the columns; name, country, admin1, lat_e6, lon_e6 and population must be among them, in any order, and others are
/// passed over. Rows keep the order of the file. Throws InputError for anything that does not fit, so that no damaged
/// file is searched in part. An empty table when `progress` said stop.
PlaceTable ReadPlaceFile(const std::string& path, const ProgressFunction& progress);

/// The same from text in memory; `path` is what errors name.
PlaceTable ParsePlaces(const std::string& path, std::string_view text, const ProgressFunction& progress);

}  // namespace roadlyn
