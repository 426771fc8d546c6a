#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

namespace dorvutil {

class ORVustring;

/// How well a typed text matches a name; higher is better.
enum MatchQuality : std::uint32_t {
    MQ_NONE = 0,              ///< The input occurs nowhere.
    MQ_SANITIZED_INSIDE = 1,  ///< It occurs behind the start, and only when both are sanitized (text/sanitize.h).
    MQ_INSIDE = 2,            ///< It occurs inside a word.
    MQ_WORD_START = 4,        ///< Its first occurrence follows a blank, "-" or ".".
    MQ_SANITIZED_PREFIX = 5,  ///< The name starts with it when both are sanitized.
    MQ_PREFIX = 6,            ///< The name starts with it.
};

/// Grades `input` against `display`, without regard to case. An empty input is a prefix of every name but the empty
/// one, which matches nothing; an input without letters and digits is a sanitized prefix of every name with some.
/// Sanitized texts are compared up to 254 bytes. Plain ASCII is graded without allocating. Any thread that may read
/// both texts.
DORVUTIL_API MatchQuality GetTypeAheadMatchQuality(const ORVustring& input, const ORVustring& display);

}  // namespace dorvutil
