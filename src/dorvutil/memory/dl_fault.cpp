#include "dorvutil/memory/dl_fault.h"

#include <cstdio>
#include <cstdlib>

namespace dorvutil::dl {

void HeapFault(const char* what, const void* where) {
    std::fprintf(stderr, "dorvutil heap: %s (%p)\n", what, where);
    std::abort();
}

}  // namespace dorvutil::dl
