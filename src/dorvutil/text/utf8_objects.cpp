#include "dorvutil/text/string.h"
#include "dorvutil/text/utf8.h"

namespace dorvutil {

std::int32_t StrCharCount(const ORVustring& text) { return StrCharCount(text.c_str()); }

std::int32_t StrByteCount(const ORVustring& text) { return StrByteCount(text.c_str()); }

}  // namespace dorvutil
