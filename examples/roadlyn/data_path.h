#pragma once

#include <string>

namespace roadlyn {

/// Where a file of bundled data lies: beside the program as installed, else in the source tree it was built from. The
/// first of the two when it is in neither.
std::string DataPath(const std::string& name);

}  // namespace roadlyn
