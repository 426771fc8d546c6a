#include "dorvutil/system/text_out.h"

#include <cstddef>

namespace dorvutil {

bool CopyOut(std::u16string_view text, char16_t* out, std::int32_t size) {
    if (!out || size <= 0) return false;
    const auto room = static_cast<std::size_t>(size) - 1;
    std::size_t length = text.size();
    if (length > room) {
        length = room;
        if (length != 0 && (text[length] & 0xFC00) == 0xDC00 && (text[length - 1] & 0xFC00) == 0xD800) --length;
    }
    text.copy(out, length);
    out[length] = u'\0';
    return true;
}

std::int32_t CopyWhole(std::u16string_view text, char16_t* out, std::int32_t size) {
    const auto needed = static_cast<std::int32_t>(text.size()) + 1;
    if (size == 0) return needed;
    if (!out || size < needed) return 0;
    CopyOut(text, out, size);
    return needed;
}

}  // namespace dorvutil
