#pragma once

#include <cstdint>
#include <string>

#include "dorvutil/text/string.h"

namespace roadlyn {

/// The size of a file that the library can take as a whole, less than 2 GiB. Throws InputError when it is something
/// else, larger, or not there.
std::uint32_t SizeOfInput(const std::string& path);

/// The same, and not empty.
void NeedContent(const std::string& path);

dorvutil::ORVustring LibraryPath(const std::string& path);

}  // namespace roadlyn
