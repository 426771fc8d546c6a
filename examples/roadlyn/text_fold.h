#pragma once

#include <string>
#include <string_view>

/// The three forms of a text that the search compares. All take valid UTF-8 and may be called from any thread.
///
/// LowerText keeps the letters apart that the library's match quality keeps apart; FoldedText does not. Each form is
/// made character by character, so that whatever occurs in a text still occurs in it after the same treatment of both.
namespace roadlyn {

/// The text in lower case as the library lowers it; its length stays.
std::string LowerText(std::string_view text);

/// Letters, digits and multi-byte characters only.
std::string SanitizedText(std::string_view text);

/// Lower case, plain letters for accented ones, then only letters, digits and multi-byte characters. Beyond the
/// library's European letters it knows the Latin letters of the extended blocks, combining marks (dropped) and
/// typographic apostrophes (dropped as the plain one is).
std::string FoldedText(std::string_view text);

/// Position of the first byte that is not well-formed UTF-8 (RFC 3629: no overlong form, no surrogate, nothing above
/// U+10FFFF), or npos.
std::size_t FindInvalidUtf8(std::string_view text);

/// Length of the character that starts at `position` of valid UTF-8; at least 1.
std::size_t CharacterLength(std::string_view text, std::size_t position);

}  // namespace roadlyn
