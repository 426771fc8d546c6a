#include <memory>
#include <new>

#include "dorvutil/text/name_casing.h"
#include "dorvutil/text/name_casing_words.h"
#include "dorvutil/text/string.h"

namespace dorvutil {

ORVustring FixNameCasing(const ORVustring& text) {
    const auto length = static_cast<std::size_t>(text.length());
    char small[512];  // enough for any real name
    std::unique_ptr<char[]> large;
    char* out = small;
    if (length > sizeof small) {
        large.reset(new (std::nothrow) char[length]);
        if (large == nullptr) return ORVustring();
        out = large.get();
    }
    const std::size_t written = FixNameCasingBytes(text.c_str(), length, out);
    return ORVustring(out, static_cast<std::int32_t>(written));
}

}  // namespace dorvutil
