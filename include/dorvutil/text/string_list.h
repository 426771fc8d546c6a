#pragma once

#include "dorvutil/memory/list.h"

/// Included by text/string.h alone. How the containers treat strings: an owning list of strings copies what is added to
/// it, and sorted lists order by TOrvString::compare.
namespace dorvutil {

template <class T>
struct DefaultListOrder;

template <>
inline constexpr bool kListCopiesItems<ORVustring> = true;
template <>
inline constexpr bool kListCopiesItems<ORVwstring> = true;

template <>
struct DefaultListOrder<ORVustring> {
    static int Compare(ORVustring* const* a, ORVustring* const* b) { return (*a)->compare(**b); }
};
template <>
struct DefaultListOrder<ORVwstring> {
    static int Compare(ORVwstring* const* a, ORVwstring* const* b) { return (*a)->compare(**b); }
};

}  // namespace dorvutil
