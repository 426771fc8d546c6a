#include "dorvutil/text/sanitize.h"
#include "dorvutil/text/string.h"

namespace dorvutil {
namespace {

constexpr std::int32_t kBufferSize = 255;

}  // namespace

ORVustring SanitizeString(const ORVustring& text) {
    char buffer[kBufferSize];
    const auto source = static_cast<std::int32_t>(text.length());
    const std::int32_t length = SanitizeString(buffer, kBufferSize, text.c_str(), source);
    return ORVustring(buffer, length);
}

ORVwstring SanitizeString(const ORVwstring& text) {
    char16_t buffer[kBufferSize];
    const auto source = static_cast<std::int32_t>(text.length());
    const std::int32_t length = SanitizeString(buffer, kBufferSize, text.T_str(), source);
    return ORVwstring(buffer, length);
}

}  // namespace dorvutil
