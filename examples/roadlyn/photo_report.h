#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "dorvutil/system/jpeg_exif.h"

namespace roadlyn {

/// What a photo tells of itself.
struct PhotoFacts {
    std::string noPosition;  ///< Why it has none; empty: it has one.
    std::int32_t latE6 = 0;  ///< Millionths of a degree, south and west negative.
    std::int32_t lonE6 = 0;
    char latRef = 0;    ///< 'N' or 'S'
    char lonRef = 0;    ///< 'E' or 'W'
    std::string title;  ///< Empty: none.
};

/// Puts numbers and letters of the library together.
PhotoFacts FactsOf(const dorvutil::JpegExifInfo& info);

/// Reads a photo. Throws InputError, with the file's name, when it cannot be read.
PhotoFacts ReadPhoto(const std::string& path);

/// The line of column names for WritePhoto with `tsv`.
void WritePhotoHeader(std::ostream& out);

/// One line with `tsv`; else a line for a reader and, where there is a position, the command that tells the country.
void WritePhoto(std::ostream& out, const std::string& path, const PhotoFacts& facts, bool tsv);

}  // namespace roadlyn
