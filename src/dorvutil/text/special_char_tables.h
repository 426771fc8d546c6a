#pragma once

#include <array>
#include <cstdint>

#include "dorvutil/text/special_chars.h"

namespace dorvutil {

/// Every character with a case, a plain text or a look-alike lies below this code point, so the tables are indexed by
/// it.
inline constexpr std::uint32_t kTableEnd = 0x800;

using CodePointMap = std::array<std::uint16_t, kTableEnd>;

/// All the tables; a character without entry maps to itself. ASCII is in them too (by rule), so that a loop needs no
/// second case for it. No case pair changes the length of the UTF-8 form.
struct SpecialCharTables {
    CodePointMap same;                              ///< each character itself
    CodePointMap upper;                             ///< to upper case
    CodePointMap lower;                             ///< to lower case
    CodePointMap folded;                            ///< first character of the plain text
    CodePointMap upperFolded;                       ///< first character of the plain text of the upper-case form
    std::array<std::uint8_t, kTableEnd> foldIndex;  ///< index of the plain text; 0: none
    std::array<char, kTableEnd> lookAlike;          ///< Latin letter of the same shape; 0: none
};

extern const SpecialCharTables kSpecialCharTables;

/// Plain text for an index from SpecialCharTables::foldIndex other than 0; constant and zero-terminated.
const char* FoldTextOf(std::uint32_t foldIndex);

/// The tables, or null while there is no manager.
const SpecialCharTables* SpecialCharTablesInUse();

}  // namespace dorvutil
