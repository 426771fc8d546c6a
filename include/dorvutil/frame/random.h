#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

namespace dorvutil {

/// A pseudo-random number, not negative except for the one value -2^31: a per-call variant of the four-component
/// combined Tausworthe generator LFSR113 (P. L'Ecuyer, 1999), seeded once when the library is loaded. Not for secrets.
/// Any thread; the calling thread's identifier chooses the state word that a call advances.
DORVUTIL_API std::int32_t ORVRand();

}  // namespace dorvutil
