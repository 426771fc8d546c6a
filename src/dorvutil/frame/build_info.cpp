#include "dorvutil/frame/build_info.h"

namespace dorvutil {

const char* GetBuildInfo() { return DORVUTIL_BUILDER "\n" DORVUTIL_BUILD_KIND; }

}  // namespace dorvutil
