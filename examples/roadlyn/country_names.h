#pragma once

#include <string_view>

namespace roadlyn {

/// The common English name of the country with a code of ISO 3166-1 (two capital letters); the code itself when there
/// is none.
std::string_view CountryName(std::string_view code);

/// The number of the country in ISO 3166-1, 1 to 999; 0 when it has none.
int CountryNumber(std::string_view code);

}  // namespace roadlyn
