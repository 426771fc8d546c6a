#include "dorvutil/platform/local_time.h"

#include <time.h>

namespace dorvutil::platform {

std::int32_t LocalOffsetSeconds(std::int64_t secondsSince1970) {
    const time_t moment = secondsSince1970;
    tm local{};
    return ::localtime_r(&moment, &local) ? static_cast<std::int32_t>(local.tm_gmtoff) : 0;
}

}  // namespace dorvutil::platform
