#include "dorvutil/typeahead/orders.h"

#include <iterator>

namespace dorvutil {
namespace {

constexpr std::uint16_t kRankOfOthers = 1000;

struct Ranks {
    std::uint16_t preload;
    std::uint16_t display;
};

constexpr Ranks kRanks[] = {
    {5, 11}, {13, 9}, {9, 9}, {14, 9}, {12, 10}, {7, 6},     {100, 100}, {100, 100}, {100, 100},  {11, 7},
    {6, 7},  {4, 5},  {3, 4}, {2, 2},  {1, 1},   {100, 100}, {15, 3},    {100, 100}, {1000, 100},
};

Ranks RanksOf(TypeAheadSourceID id) {
    const auto index = static_cast<std::uint32_t>(id);
    return index < std::size(kRanks) ? kRanks[index] : Ranks{kRankOfOthers, kRankOfOthers};
}

}  // namespace

std::uint32_t PreloadRank(TypeAheadSourceID id) { return RanksOf(id).preload; }

std::uint32_t DisplayRank(TypeAheadSourceID id) { return RanksOf(id).display; }

int ComparePreloadOrder(TypeAheadSource* const* a, TypeAheadSource* const* b) {
    return static_cast<int>(PreloadRank((*a)->GetSourceID())) - static_cast<int>(PreloadRank((*b)->GetSourceID()));
}

}  // namespace dorvutil
