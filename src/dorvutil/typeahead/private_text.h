#pragma once

#include "dorvutil/text/string.h"

namespace dorvutil {

/// A string with storage of its own, made without touching the reference count of the original's.
inline ORVustring PrivateText(const ORVustring& text) {
    return ORVustring(text.c_str(), static_cast<std::int32_t>(text.length()));
}

}  // namespace dorvutil
