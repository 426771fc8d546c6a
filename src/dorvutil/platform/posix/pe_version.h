#pragma once

#include <cstdint>

namespace dorvutil::platform {

/// Reads the file version from the version resource of a Windows program or library. False when `file`, an open
/// descriptor, is none, has none, or is damaged.
bool ReadPeVersion(int file, std::uint16_t (&parts)[4]);

}  // namespace dorvutil::platform
