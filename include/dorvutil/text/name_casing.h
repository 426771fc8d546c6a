#pragma once

#include "dorvutil/frame/export.h"

/// Capitalisation of names.
namespace dorvutil {

class ORVustring;

/// A street, place or organisation name, typically given in capitals, in mixed case: MCDONALD RD becomes McDonald Rd,
/// while acronyms, Roman numerals and Canadian province codes stay in capitals. At most 10 words of at most 127 bytes
/// are kept; only ASCII letters change, and the first letter of a word is not raised. Empty for an empty text. Any
/// thread.
DORVUTIL_API ORVustring FixNameCasing(const ORVustring& text);

}  // namespace dorvutil
