#pragma once

#include "dorvutil/text/string.h"
#include "dorvutil/typeahead/match_quality.h"

namespace dorvutil {

/// GetTypeAheadMatchQuality for one input and many names: what depends on the input alone is done once.
class MatchGrader {
public:
    explicit MatchGrader(const ORVustring& input);

    MatchQuality Grade(const ORVustring& display) const;

private:
    struct Positions;

    Positions Find(const ORVustring& display) const;
    Positions FindByCopies(const ORVustring& display) const;

    ORVustring m_input;      // lower case
    ORVustring m_sanitized;  // lower case
};

}  // namespace dorvutil
