// The self-tests that travel in the library: short checks of the containers on the machine it runs on.
#include <algorithm>
#include <cstdint>
#include <iterator>

#include "dorvutil/frame/unit_test.h"
#include "dorvutil/memory/bit_vector.h"
#include "dorvutil/memory/list.h"
#include "dorvutil/memory/pool.h"
#include "dorvutil/memory/priority_queue.h"
#include "dorvutil/memory/sorted.h"
#include "dorvutil/memory/vector.h"
#include "dorvutil/text/string.h"

namespace dorvutil {
namespace {

using Numbers = TVector<std::int32_t>;

Numbers Make(std::initializer_list<std::int32_t> values) {
    Numbers numbers;
    numbers.Add(values.begin(), static_cast<std::uint32_t>(values.size()));
    return numbers;
}

bool Holds(const Numbers& numbers, std::initializer_list<std::int32_t> expected) {
    return std::equal(numbers.begin(), numbers.end(), expected.begin(), expected.end());
}

bool VectorAddGrowsByHalf() {
    static constexpr struct { std::uint32_t count, capacity; } kSteps[] = {{1, 8}, {8, 8}, {9, 12}, {13, 18}, {19, 27}};
    Numbers numbers;
    for (const auto& step : kSteps) {
        const std::int32_t value = 7;
        while (numbers.Count() < step.count) numbers.Add(&value, 1);
        if (numbers.Capacity() != step.capacity) return false;
    }
    return true;
}

bool VectorAddOfItself() {
    Numbers numbers = Make({1, 2, 3});
    numbers.SetSize();
    return numbers.Add(numbers.Data(), numbers.Count()) == 6 && Holds(numbers, {1, 2, 3, 1, 2, 3});
}

bool VectorInsertBehindTheEnd() {
    Numbers numbers = Make({1, 2});
    return numbers.Insert(9, 5u) == 5 && Holds(numbers, {1, 2, 0, 0, 0, 9});
}

bool VectorBinSearchFirst() {
    const Numbers numbers = Make({1, 2, 2, 2, 3});
    return numbers.BinSearch(2, true, CompareByLong) == 1 &&
           numbers.BinSearch(7, true, CompareByLong) == kVectorNotFound;
}

bool VectorRemoveDuplicates() {
    Numbers numbers = Make({3, 1, 3, 2, 1});
    numbers.RemoveDuplicates(CompareByLong, nullptr);
    return Holds(numbers, {1, 2, 3}) && numbers.Capacity() == 3;
}

bool VectorRemoveOverlap() {
    Numbers numbers = Make({3, 1, 1, 2}), other = Make({1, 5});
    numbers.RemoveOverlap(CompareByLong, other);
    return Holds(numbers, {2, 3});
}

bool VectorShift() {
    Numbers numbers = Make({7});
    return numbers.Shift(2) && Holds(numbers, {0, 0, 7}) && numbers.Shift(-10) && numbers.Count() == 0 &&
           !numbers.Shift(-1);
}

bool ListAddCopiesStrings() {
    ListMgr<ORVustring> list;
    const ORVustring name("Ulm");
    return list.Add(const_cast<ORVustring*>(&name)) == 1 && list[0] != &name && *list[0] == name;
}

bool ListStealList() {
    ListMgr<ORVustring> from, to;
    ORVustring name("Ulm");
    from.Add(&name);
    to.StealList(from);
    return from.Count() == 0 && to.Count() == 1 && *to[0] == name;
}

bool SortedVectorAdd() {
    TSortedVector<std::int32_t> sorted;
    for (const std::int32_t value : {5, 1, 3}) sorted.Add(value);
    return sorted.Count() == 3 && sorted[0] == 1 && sorted[2] == 5;
}

bool SortedVectorFind() {
    TSortedVector<std::int32_t> sorted;
    for (const std::int32_t value : {5, 1, 3}) sorted.Add(value);
    return sorted.BinSearch(3, false) == 1 && sorted.BinSearch(4, false) == kVectorNotFound;
}

struct Job {
    const void* m_key;
    const void* Key() const { return m_key; }
};

bool PriorityQueueReplaces() {
    PriorityQueue_TS<Job> queue;
    int keys[2];
    queue.Add(new Job{&keys[0]});
    queue.Add(new Job{&keys[1]});
    if (queue.Add(new Job{&keys[0]}) != 0 || queue.Count() != 2) return false;
    Job* const first = queue.TakeFront();
    const bool inPlace = first && first->m_key == &keys[0];
    delete first;
    return inPlace;
}

bool BitVectorRange() {
    CBitVector bits(64, false);
    bits.Set(30, 4);
    return bits.And(30, 4) && !bits.Or(34, 10) && !bits[29] && bits[33];
}

bool PoolGeometry() {
    Allocator pool(92, ts_nullSync, 4096, nullptr, false, false);
    void* taken[45];
    for (void*& element : taken) element = pool.Alloc();
    const bool all = std::all_of(std::begin(taken), std::end(taken), [](void* p) { return p != nullptr; });
    for (void* element : taken) pool.Free(element);
    return all && pool.ElemSize() == 92;
}

constexpr struct {
    const char* name;
    UnitTestMgr::CaseFunction run;
} kCases[] = {
    {"TVector_AddGrowth", VectorAddGrowsByHalf},
    {"TVector_AddSelf", VectorAddOfItself},
    {"TVector_Insert", VectorInsertBehindTheEnd},
    {"TVector_BinSearch", VectorBinSearchFirst},
    {"TVector_RemoveDuplicates", VectorRemoveDuplicates},
    {"TVector_RemoveOverlap", VectorRemoveOverlap},
    {"TVector_Shift", VectorShift},
    {"ListMgr_Add", ListAddCopiesStrings},
    {"ListMgr_StealList", ListStealList},
    {"TSortedVector_Add", SortedVectorAdd},
    {"TSortedVector_Find", SortedVectorFind},
    {"PriorityQueue_TS_Replace", PriorityQueueReplaces},
    {"CBitVector_Range", BitVectorRange},
    {"Allocator_Geometry", PoolGeometry},
};

}  // namespace

void DorvutilUnitTestMgr::SetupTests() {
    for (const auto& test : kCases) AddCase(test.name, test.run);
}

}  // namespace dorvutil
