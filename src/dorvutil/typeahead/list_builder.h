#pragma once

#include <cstdint>

#include "dorvutil/memory/vector.h"
#include "dorvutil/typeahead/result.h"

namespace dorvutil {

/// Makes the list the user sees of the results as they arrived. Each result in a vector stands for one reference, which
/// is dropped with the result. Does without what memory does not suffice for.
class TypeAheadListBuilder {
public:
    static constexpr std::uint32_t kMaxEntries = 100;

    /// Removes duplicates, sorts, merges recent entries and cuts to kMaxEntries. `smartInput`: the text to grade every
    /// result against and to sort by the grades; null: sort without them, grades stay as they are.
    static void Build(TVector<TypeAheadResult*>& results, const ORVustring* smartInput);

private:
    struct Named;
    struct Ranked;

    static int CompareNamed(const Named* a, const Named* b);
    static int CompareRanked(const Ranked* a, const Ranked* b);
    static void RemoveDuplicates(TVector<TypeAheadResult*>& results);
    static void Grade(TVector<TypeAheadResult*>& results, const ORVustring& input);
    static void Sort(TVector<TypeAheadResult*>& results, bool smart);
    static void RemoveDuplicateRecents(TVector<TypeAheadResult*>& results);
    static void Cut(TVector<TypeAheadResult*>& results);
};

}  // namespace dorvutil
