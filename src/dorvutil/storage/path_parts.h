#pragma once

#include <new>
#include <type_traits>

#include "dorvutil/memory/list.h"
#include "dorvutil/text/string.h"

/// Path and list work that several files of the storage layer share.
namespace dorvutil {

inline constexpr char kSeparators[] = "\\/";

constexpr bool IsSeparator(char c) { return c == '\\' || c == '/'; }

/// `name` in `dir`; the bare name when `dir` is empty, which is the current folder.
inline ORVustring JoinPath(const ORVustring& dir, const ORVustring& name) {
    ORVustring path(dir);
    if (!path.empty()) path.appendSlash();
    path += name;
    return path;
}

/// Adds a copy of `text`; of a list that does not own its items the caller destroys the copies.
template <class S>
void AddText(ListMgr<S>& list, std::type_identity_t<S> text) {
    if (list.OwnsItems()) {
        list.Add(&text);
        return;
    }
    S* const copy = new (std::nothrow) S(text);
    if (copy && list.Add(copy) < 0) delete copy;
}

}  // namespace dorvutil
