#include "dorvutil/memory/vector.h"

namespace dorvutil {

int CompareByLong(const std::int32_t* a, const std::int32_t* b) { return (*a > *b) - (*a < *b); }

template class TVector<std::uint32_t>;

}  // namespace dorvutil
