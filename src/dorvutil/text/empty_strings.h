#pragma once

#include "dorvutil/text/string.h"

namespace dorvutil {

/// What an empty or unconvertible text gives in the other width: one object for the process, never written (its own
/// other width is its twin) and never destroyed, so that strings may outlive the static objects.
struct EmptyStrings {
    template <class S>
    union Holder {
        S m_text;
        constexpr Holder() : m_text(S::EmptyBlock(), nullptr) {}
        constexpr ~Holder() {}
    };
    static Holder<ORVustring> s_narrow;
    static Holder<ORVwstring> s_wide;
};

}  // namespace dorvutil
