#pragma once

#include <cstddef>

#include "dorvutil/security/sha1.h"

namespace dorvutil {

/// SHA1Update for any length that memory can have.
void AddBytes(SHA1Context& context, const void* data, std::size_t length);

}  // namespace dorvutil
