#include "dorvutil/typeahead/list_builder.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string_view>

#include "dorvutil/text/chars.h"
#include "dorvutil/typeahead/match_grader.h"
#include "dorvutil/typeahead/orders.h"

namespace dorvutil {
namespace {

constexpr TypeAheadSourceID kRecentPlace = 11;
constexpr TypeAheadSourceID kRecentSearch = 12;

std::string_view NameOf(const TypeAheadResult& result) {
    return {result.GetDisplayString().c_str(), result.GetDisplayString().length()};
}

// The first bytes of the name as one number that orders as they do.
std::uint64_t NamePrefix(std::string_view name) {
    std::uint64_t prefix = 0;
    const std::size_t n = std::min<std::size_t>(name.size(), sizeof prefix);
    for (std::size_t i = 0; i < n; ++i) prefix |= std::uint64_t{static_cast<unsigned char>(name[i])} << (56 - 8 * i);
    return prefix;
}

// The number at the start of a name, as of a street number; at the limits of 32 bits where it exceeds them.
std::int32_t LeadingNumber(std::string_view name) {
    std::size_t i = 0;
    while (i < name.size() && custom_isspace(name[i])) ++i;
    const bool negative = i < name.size() && name[i] == '-';
    if (i < name.size() && (name[i] == '-' || name[i] == '+')) ++i;
    constexpr std::int64_t kBeyond = std::int64_t{1} << 31;
    std::int64_t value = 0;
    for (; i < name.size() && custom_isdigit(name[i]); ++i) value = std::min(value * 10 + (name[i] - '0'), kBeyond);
    if (negative) return static_cast<std::int32_t>(-value);
    return static_cast<std::int32_t>(std::min(value, kBeyond - 1));
}

template <class N>
int Order(N a, N b) {
    return a < b ? -1 : static_cast<int>(a > b);
}

// Everything the order asks for before numbers and names, the most important part in the highest bits. Ranks need 10
// bits, grades 3.
std::uint64_t DisplayKey(const TypeAheadResult& result, bool smart) {
    const std::uint64_t later = result.IsPermanent() ? 0 : 1;
    const std::uint64_t grade = smart ? MQ_PREFIX - std::min<std::uint32_t>(result.GetMatchQuality(), MQ_PREFIX) : 0;
    const auto relevance = static_cast<std::uint32_t>(result.GetRelevance()) ^ 0x80000000u;
    return later << 48 | grade << 44 | std::uint64_t{DisplayRank(result.GetSourceID())} << 32 | ~relevance;
}

bool IsOriginalOf(TypeAheadSourceID id, TypeAheadSourceID recent) {
    return recent == kRecentPlace ? id >= 1 && id <= 3 : id == 5;
}

}  // namespace

struct TypeAheadListBuilder::Named {
    std::uint64_t prefix;
    TypeAheadResult* result;
};

struct TypeAheadListBuilder::Ranked {
    std::uint64_t key;
    std::int64_t number;
    TypeAheadResult* result;
};

int TypeAheadListBuilder::CompareNamed(const Named* a, const Named* b) {
    if (a->prefix != b->prefix) return a->prefix < b->prefix ? -1 : 1;
    const int order = a->result->Compare(*b->result);
    return order != 0 ? order : Order(b->result->GetRelevance(), a->result->GetRelevance());
}

int TypeAheadListBuilder::CompareRanked(const Ranked* a, const Ranked* b) {
    if (a->key != b->key) return a->key < b->key ? -1 : 1;
    if (a->number != b->number) return a->number < b->number ? -1 : 1;
    return NameOf(*a->result).compare(NameOf(*b->result));
}

void TypeAheadListBuilder::RemoveDuplicates(TVector<TypeAheadResult*>& results) {
    if (results.Count() < 2) return;
    TVector<Named> named;
    if (!named.SetSize(results.Count())) return;
    for (TypeAheadResult* const result : results) named.Add(Named{NamePrefix(NameOf(*result)), result});
    named.QSort(CompareNamed);
    // Each entry is compared with its neighbour as sorted, whether that one stays or not.
    TVector<TypeAheadResult*> duplicates;
    std::uint32_t kept = 0;
    for (std::uint32_t i = 0; i < named.Count(); ++i) {
        TypeAheadResult* const result = named.Data()[i].result;
        const bool duplicate = i > 0 && named.Data()[i - 1].result->Compare(*result) == 0;
        if (!duplicate || duplicates.Add(result) < 0) results.Data()[kept++] = result;
    }
    while (results.Count() > kept) results.DeleteAt(results.Count() - 1);
    for (TypeAheadResult* const result : duplicates) result->Unref();
}

void TypeAheadListBuilder::Grade(TVector<TypeAheadResult*>& results, const ORVustring& input) {
    const MatchGrader grader(input);
    for (TypeAheadResult* const result : results) result->m_matchQuality = grader.Grade(result->m_display);
}

void TypeAheadListBuilder::Sort(TVector<TypeAheadResult*>& results, bool smart) {
    if (results.Count() < 2) return;
    TVector<Ranked> ranked;
    if (!ranked.SetSize(results.Count())) return;
    for (TypeAheadResult* const result : results) {
        ranked.Add(Ranked{DisplayKey(*result, smart), LeadingNumber(NameOf(*result)), result});
    }
    ranked.QSort(CompareRanked);
    for (std::uint32_t i = 0; i < ranked.Count(); ++i) results.Data()[i] = ranked.Data()[i].result;
}

// What happens behind the last entry that will be shown changes nothing that is seen.
void TypeAheadListBuilder::RemoveDuplicateRecents(TVector<TypeAheadResult*>& results) {
    for (std::uint32_t i = 0; i < results.Count() && i < kMaxEntries; ++i) {
        TypeAheadResult* const recent = results[i];
        const TypeAheadSourceID id = recent->GetSourceID();
        if (id != kRecentPlace && id != kRecentSearch) continue;
        for (std::uint32_t j = i + 1; j < results.Count(); ++j) {
            TypeAheadResult* const original = results[j];
            if (!IsOriginalOf(original->GetSourceID(), id) || NameOf(*original) != NameOf(*recent)) continue;
            results[i] = original;
            results.DeleteAt(j);
            recent->Unref();
            break;
        }
    }
}

void TypeAheadListBuilder::Cut(TVector<TypeAheadResult*>& results) {
    for (std::uint32_t i = kMaxEntries; i < results.Count(); ++i) results[i]->Unref();
    if (results.Count() > kMaxEntries) results.SetSize(kMaxEntries);
}

void TypeAheadListBuilder::Build(TVector<TypeAheadResult*>& results, const ORVustring* smartInput) {
    RemoveDuplicates(results);
    if (smartInput) Grade(results, *smartInput);
    Sort(results, smartInput != nullptr);
    RemoveDuplicateRecents(results);
    Cut(results);
}

}  // namespace dorvutil
