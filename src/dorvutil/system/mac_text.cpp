#include "dorvutil/system/mac_text.h"

#include <cstdio>
#include <cstring>

namespace dorvutil {

bool FirstMacText(const platform::EthernetAddress* addresses, std::size_t count, char (&text)[kMacTextSize]) {
    static constexpr std::uint8_t kZero[6] = {};
    static constexpr char kDest[] = "DEST";  // the end mark is part of the pattern
    for (std::size_t i = 0; i < count; ++i) {
        const auto& b = addresses[i].bytes;
        if (std::memcmp(b, kZero, sizeof(kZero)) == 0 || std::memcmp(b, kDest, sizeof(kDest)) == 0) continue;
        std::snprintf(text, kMacTextSize, "%02x%02x%02x%02x%02x%02x", b[0], b[1], b[2], b[3], b[4], b[5]);
        return true;
    }
    return false;
}

}  // namespace dorvutil
