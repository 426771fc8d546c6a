#include "dorvutil/memory/vector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "dorvutil/memory/heap.h"
#include "memory/failing_heap.h"
#include "memory/vector_support.h"

namespace dorvutil {
namespace {

using test::Held;
using test::Made;
using Longs = TVector<std::int32_t>;
using Model = std::vector<std::int32_t>;

constexpr std::int32_t kItems[] = {7, 8, 9};
const Model kFull = {1, 2, 3, 4, 5, 6, 7, 8};  // the capacity of the first growth
constexpr auto kSort = CompareByLong;

int ByHalves(const std::int32_t* a, const std::int32_t* b) { return *a / 2 - *b / 2; }

bool RefusesHostileSizes(Longs& v) {
    bool refused = !v.Shift(INT32_MAX) && v.Add(nullptr, 1) == -1;
    for (const std::uint32_t n : {0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        refused = refused && v.Add(kItems, n) == -1 && v.Insert(kItems, n, 1) == -1 && v.Insert(kItems, 1, n) == -1;
        refused = refused && !v.Replace(kItems, 0, n) && !v.Replace(7, n) && !v.SetSize(n);
    }
    return refused;
}

const struct {
    const char* name;
    Model before;
    bool (*run)(Longs&);  // whether the results were right
    Model after;
} kOperations[] = {
    {"add itself when full", {1, 2}, [](Longs& v) { return v.SetSize() && v.Add(v) == 4; }, {1, 2, 1, 2}},
    {"add a reference into itself", {5, 6}, [](Longs& v) { return v.SetSize() && v.Add(v[0]) == 3; }, {5, 6, 5}},
    {"insert behind a gap", {1, 2}, [](Longs& v) { return v.Insert(9, 5) == 5; }, {1, 2, 0, 0, 0, 9}},
    {"insert at", {1, 2}, [](Longs& v) { return v.InsertAt(1, 9) == 1; }, {1, 9, 2}},
    {"replace inside", {1, 2}, [](Longs& v) { return v.Replace(kItems, 0, 2); }, {7, 8}},
    {"replace past the count", {1, 2}, [](Longs& v) { return v.Replace(kItems, 1, 3); }, {1, 7, 8, 9}},
    {"replace with a gap", {1, 2}, [](Longs& v) { return v.Replace(7, 4); }, {1, 2, 0, 0, 7}},
    {"replace across the capacity",
     kFull,
     [](Longs& v) { return v.Replace(kItems, 6, 3); },
     {1, 2, 3, 4, 5, 6, 7, 8, 9}},
    {"replace at the capacity", {1}, [](Longs& v) { return v.Replace(7, 8); }, {1, 0, 0, 0, 0, 0, 0, 0, 7}},
    {"replace nothing, with a gap", {1, 2}, [](Longs& v) { return v.Replace(kItems, 3, 0); }, {1, 2, 0}},
    {"replace by its own", {1, 2}, [](Longs& v) { return v.SetSize() && v.Replace(v.Data(), 1, 2); }, {1, 1, 2}},
    {"delete", {1, 2, 3}, [](Longs& v) { return v.DeleteAt(1) && !v.DeleteAt(2); }, {1, 3}},
    {"shift by nothing", {1, 2}, [](Longs& v) { return v.Shift(0); }, {1, 2}},
    {"shift up", {7}, [](Longs& v) { return v.Shift(2); }, {0, 0, 7}},
    {"shift up, empty", {}, [](Longs& v) { return v.Shift(2); }, {0, 0}},
    {"shift down", {1, 2, 3}, [](Longs& v) { return v.Shift(-1); }, {2, 3}},
    {"shift down past the end", {1, 2, 3}, [](Longs& v) { return v.Shift(-10); }, {}},
    {"shift down by the minimum", {1}, [](Longs& v) { return v.Shift(INT32_MIN); }, {}},
    {"shift down, empty", {}, [](Longs& v) { return !v.Shift(-1); }, {}},
    {"reverse", {1, 2, 3}, [](Longs& v) { return v.Reverse(), true; }, {3, 2, 1}},
    {"fill", {1, 2}, [](Longs& v) { return v.Fill(6), v.Capacity() == 8; }, {6, 6}},
    {"find the last", {4, 5, 4}, [](Longs& v) { return v.FindR(4) == 2 && v.FindR(6) == kVectorNotFound; }, {4, 5, 4}},
    {"duplicates",
     {3, 1, 3, 2, 1},
     [](Longs& v) { return v.RemoveDuplicates(kSort, nullptr), v.Capacity() == 3; },
     {1, 2, 3}},
    {"no duplicates", {2, 1}, [](Longs& v) { return v.RemoveDuplicates(kSort, nullptr), v.Capacity() == 8; }, {1, 2}},
    {"first of equals", {3, 2, 1}, [](Longs& v) { return v.RemoveDuplicates(kSort, ByHalves), true; }, {1, 2}},
    {"overlap in itself", {3, 1, 3, 2, 1}, [](Longs& v) { return v.RemoveOverlap(kSort), true; }, {2}},
    {"overlap of one", {1}, [](Longs& v) { return v.RemoveOverlap(kSort), true; }, {1}},
    {"overlap of all", {2, 2, 2}, [](Longs& v) { return v.RemoveOverlap(kSort), true; }, {}},
    {"overlap with itself", {1, 2}, [](Longs& v) { return v.RemoveOverlap(kSort, v), true; }, {}},
    {"hostile sizes", {1, 2}, RefusesHostileSizes, {1, 2}},
};

TEST(VectorOperation, GivesTheRightResultAndContent) {
    for (const auto& c : kOperations) {
        SCOPED_TRACE(c.name);
        Longs v = Made(c.before);
        EXPECT_TRUE(c.run(v));
        EXPECT_EQ(Held(v), c.after);
    }
}

TEST(VectorOperation, OverlapWithAnotherIsRemovedAndBothAreSorted) {
    static const struct {
        Model values, other, left;
    } kCases[] = {{{3, 1, 1, 2}, {5, 1}, {2, 3}}, {{1, 2}, {}, {1, 2}},       {{}, {1}, {}},
                  {{9, 8}, {2, 1}, {8, 9}},       {{1, 2, 3}, {3, 2, 1}, {}}, {{1, 5, 9}, {5, 5}, {1, 9}}};
    for (const auto& c : kCases) {
        Longs v = Made(c.values), other = Made(c.other);
        v.RemoveOverlap(kSort, other);
        EXPECT_EQ(Held(v), c.left);
        EXPECT_TRUE(std::is_sorted(other.begin(), other.end()));
        EXPECT_EQ(other.Count(), c.other.size());
    }
}

TEST(VectorFailure, NoMemoryOrForeignMemoryLeavesTheVectorAsItWas) {
    static constexpr struct {
        const char* name;
        bool (*fails)(Longs&);
    } kCases[] = {
        {"add", [](Longs& v) { return v.Add(9) == -1; }},
        {"add itself", [](Longs& v) { return v.Add(v) == -1; }},
        {"insert", [](Longs& v) { return v.Insert(9, 1) == -1; }},
        {"insert with a gap", [](Longs& v) { return v.Insert(9, 40) == -1; }},
        {"insert itself", [](Longs& v) { return v.Insert(v, 1) == -1; }},
        {"replace", [](Longs& v) { return !v.Replace(v.Data(), 2, 3); }},
        {"replace beyond", [](Longs& v) { return !v.Replace(9, 3); }},
        {"shift", [](Longs& v) { return !v.Shift(1); }},
        {"grow", [](Longs& v) { return !v.SetSize(100); }},
        {"shrink", [](Longs& v) { return !v.SetSize(1); }},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        std::int32_t memory[] = {1, 2, 3};
        Longs foreign(memory, 3, false), owning = Made<std::int32_t>({1, 2, 3});
        owning.SetSize();
        for (int allocation = 1; allocation <= 2; ++allocation) {
            EXPECT_TRUE(c.fails(foreign));
            const FailingHeap heap(allocation);
            const bool failed = c.fails(owning);
            EXPECT_TRUE(failed || allocation == 2);
            for (const Longs* v : {&foreign, failed ? &owning : &foreign}) {
                EXPECT_EQ(Held(*v), (Model{1, 2, 3}));
                EXPECT_EQ(v->Capacity(), 3u);
            }
        }
    }
}

TEST(VectorGrowth, RaisesTheCapacityByHalf) {
    static constexpr struct {
        std::uint32_t chunk, count, capacity;
    } kCases[] = {{8, 1, 8},   {8, 8, 8},    {8, 9, 12}, {8, 13, 18}, {8, 19, 27}, {8, 28, 41}, {8, 42, 62},
                  {8, 63, 93}, {8, 94, 140}, {1, 2, 2},  {1, 3, 3},   {1, 4, 5},   {32, 1, 32}, {0, 1, 8}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << "chunk " << c.chunk << ", count " << c.count);
        Longs v;
        v.SetChunkSize(c.chunk);
        for (std::uint32_t i = 1; i <= c.count; ++i) EXPECT_EQ(v.Add(7), static_cast<std::int32_t>(i));
        EXPECT_EQ(v.Capacity(), c.capacity);
    }
}

TEST(VectorOwnership, ForeignMemoryIsUsedButNeverFreedAndAdoptedMemoryIsItsOwn) {
    std::int32_t memory[] = {1, 2, 3};
    Longs v(memory, 3, false);
    EXPECT_TRUE(v.DeleteAt(1));
    EXPECT_EQ(v.Add(8), 3) << "room that is there may be used";
    EXPECT_EQ(memory[2], 8);
    const Longs copy(v);
    EXPECT_FALSE(copy.OwnsMemory());
    EXPECT_EQ(copy.Data(), memory);
    v.Empty();
    EXPECT_TRUE(v.OwnsMemory());
    EXPECT_EQ(v.Add(1), 1);
    Longs adopted(static_cast<std::int32_t*>(Mem_Calloc(2, 4)), 2);
    EXPECT_EQ(adopted.Add(6), 3);
    EXPECT_EQ(Held(adopted), (Model{0, 0, 6}));
    const Longs null(nullptr, 5, false);
    EXPECT_EQ(null.Count(), 0u);
    EXPECT_EQ(null.ChunkSize(), 5u);
    EXPECT_TRUE(null.OwnsMemory());
}

TEST(VectorOwnership, TransferTakesEverythingAndLeavesAnEmptyOwner) {
    std::int32_t memory[] = {1, 2};
    Longs wrapped(memory, 2, false), v = Made<std::int32_t>({5, 6, 7});
    v.Transfer(wrapped);
    EXPECT_EQ(Held(v), (Model{1, 2}));
    EXPECT_FALSE(v.OwnsMemory());
    EXPECT_TRUE(wrapped.OwnsMemory());
    v.Transfer(wrapped);
    EXPECT_EQ(v.Count(), 0u);
    EXPECT_TRUE(v.OwnsMemory());
    v.Add(3);
    v.Transfer(v);
    EXPECT_EQ(Held(v), Model{3});
}

TEST(VectorCopy, CopiesElementsAndAttributesOrIsEmptyWithoutMemory) {
    Longs v = Made<std::int32_t>({1, 2, 3});
    v.SetDefault(0x01020304);
    v.SetName("routes");
    v.SetPrivate(true);
    v.SetChunkSize(21);
    const Longs copy(v);
    EXPECT_TRUE(copy == v && copy != Longs());
    EXPECT_EQ(copy.Capacity(), 3u);
    EXPECT_STREQ(copy.Name(), "routes");
    EXPECT_TRUE(copy.Private() && !copy.FastFill());
    EXPECT_EQ(copy.ChunkSize(), 21u);
    Longs target = Made<std::int32_t>({9});
    target = v;
    target = static_cast<const Longs&>(target);
    EXPECT_EQ(target, v);
    EXPECT_EQ(target.Default(), 0x01020304);
    EXPECT_STREQ(target.Name(), "unnamed");
    EXPECT_FALSE(target.Private());
    EXPECT_EQ(target.ChunkSize(), 8u);
    const FailingHeap heap(1);
    const Longs failed(v);
    target = v;
    EXPECT_EQ(failed.Count() + failed.Capacity() + target.Count() + target.Capacity(), 0u);
}

TEST(VectorDefault, IsReadForMissingElementsWhichSwallowWrites) {
    Longs v = Made<std::int32_t>({1});
    v.SetDefault(42);
    v[1] = 7;
    EXPECT_EQ(v.Default(), 42);
    EXPECT_EQ(std::as_const(v)[1], 42);
    v.Empty();
    v.Last() = 8;
    EXPECT_EQ(v.Last(), 42);
    EXPECT_EQ(std::as_const(v)[0xFFFFFFFFu], 42);
}

TEST(VectorDefault, FillsGapsByValueOrByByte) {
    static constexpr struct {
        std::int32_t value, filled;
        bool uniform, forced;
    } kCases[] = {{0, 0, true, false},
                  {0x05050505, 0x05050505, true, false},
                  {-1, -1, true, false},
                  {5, 5, false, false},
                  {0x01020304, 0x04040404, false, true}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.value);
        Longs v = Made<std::int32_t>({1});
        v.SetDefault(c.value);
        EXPECT_EQ(v.FastFill(), c.uniform);
        if (c.forced) v.SetFastFill(true);
        EXPECT_EQ(v.Insert(9, 70), 70);
        EXPECT_EQ(std::count(v.begin(), v.end(), c.filled), 69);
        EXPECT_EQ(v.Count(), 71u);
    }
}

TEST(VectorInsert, ItemsInsideTheVectorKeepTheirValues) {
    for (std::uint32_t size = 1; size <= 9; ++size) {
        for (std::uint32_t combination = 0; combination < (size + 1) * size * 2; ++combination) {
            const std::uint32_t at = combination / 2 % (size + 1), from = combination / 2 / (size + 1);
            Model model(size);
            for (std::uint32_t i = 0; i < size; ++i) model[i] = static_cast<std::int32_t>(100 + i);
            Longs v = Made(model);
            v.SetSize(combination % 2 != 0 ? 2 * size : size);
            const Model items(model.begin() + from, model.end());
            model.insert(model.begin() + at, items.begin(), items.end());
            ASSERT_EQ(v.Insert(v.Data() + from, at, size - from), static_cast<std::int32_t>(at));
            ASSERT_EQ(Held(v), model) << size << ' ' << combination;
        }
    }
}

}  // namespace
}  // namespace dorvutil
