#include "dorvutil/memory/vector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "dorvutil/memory/heap.h"
#include "memory/failing_heap.h"

namespace dorvutil {
namespace {

using Numbers = TVector<std::uint32_t>;
using Model = std::vector<std::uint32_t>;

Numbers Made(const Model& values) {
    Numbers v;
    v.Add(values.data(), static_cast<std::uint32_t>(values.size()));
    return v;
}

Model Held(const Numbers& v) { return Model(v.begin(), v.end()); }

TEST(VectorGrowth, RaisesTheCapacityByHalf) {
    static constexpr struct {
        std::uint32_t chunk, count, capacity;
    } kCases[] = {{8, 1, 8},   {8, 8, 8},    {8, 9, 12}, {8, 13, 18}, {8, 19, 27}, {8, 28, 41}, {8, 42, 62},
                  {8, 63, 93}, {8, 94, 140}, {1, 2, 2},  {1, 3, 3},   {1, 4, 5},   {32, 1, 32}, {0, 1, 8}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << "chunk " << c.chunk << ", count " << c.count);
        Numbers v;
        v.SetChunkSize(c.chunk);
        for (std::uint32_t i = 1; i <= c.count; ++i) EXPECT_EQ(v.Add(i), static_cast<std::int32_t>(i));
        EXPECT_EQ(v.Capacity(), c.capacity);
    }
}

TEST(VectorGrowth, HostileSizesFail) {
    static constexpr std::uint32_t kHuge[] = {0x80000000u, 0xFFFFFFFFu, 0xFFFFFFFEu};
    Numbers v = Made({1, 2});
    const std::uint32_t item = 7;
    for (const std::uint32_t n : kHuge) {
        SCOPED_TRACE(n);
        EXPECT_EQ(v.Add(&item, n), -1);
        EXPECT_EQ(v.Insert(&item, n, 1), -1);
        EXPECT_EQ(v.Insert(&item, 1, n), -1);
        EXPECT_FALSE(v.Replace(&item, 0, n));
        EXPECT_FALSE(v.Replace(item, n));
        EXPECT_FALSE(v.SetSize(n));
        EXPECT_EQ(Held(v), (Model{1, 2}));
    }
    EXPECT_FALSE(v.Shift(0x7FFFFFFF));
    EXPECT_EQ(v.Add(nullptr, 1), -1);
    EXPECT_EQ(Held(v), (Model{1, 2}));
}

TEST(VectorForeignMemory, IsNeverResizedOrFreed) {
    std::uint32_t memory[] = {1, 2, 3};
    Numbers v(memory, 3, false);
    EXPECT_EQ(v.ChunkSize(), 3u);
    EXPECT_EQ(v.Add(9u), -1);
    EXPECT_EQ(v.Add(v), -1);
    EXPECT_EQ(v.InsertAt(0, 9u), -1);
    EXPECT_FALSE(v.Replace(9u, 3));
    EXPECT_FALSE(v.SetSize(2));
    EXPECT_FALSE(v.SetSize(3));
    EXPECT_FALSE(v.Shift(1));
    EXPECT_EQ(Held(v), (Model{1, 2, 3}));
    EXPECT_TRUE(v.DeleteAt(1));
    EXPECT_EQ(v.Add(8u), 3) << "room that is there may be used";
    EXPECT_EQ(memory[2], 8u);
    Numbers copy(v);
    EXPECT_FALSE(copy.OwnsMemory());
    EXPECT_EQ(copy.Data(), memory);
    v.Empty();
    EXPECT_TRUE(v.OwnsMemory());
    EXPECT_EQ(v.Add(1u), 1);
}

TEST(VectorConstruction, NullDataStaysEmptyAndOwning) {
    Numbers v(nullptr, 5, false);
    EXPECT_EQ(v.Count(), 0u);
    EXPECT_EQ(v.ChunkSize(), 5u);
    EXPECT_TRUE(v.OwnsMemory());
    EXPECT_STREQ(v.Name(), "unnamed");
    EXPECT_TRUE(v.FastFill());
    EXPECT_FALSE(v.Private());
}

TEST(VectorConstruction, AdoptedMemoryIsFreedAndGrown) {
    auto* const data = static_cast<std::uint32_t*>(Mem_Malloc(8));
    data[0] = 4;
    data[1] = 5;
    Numbers v(data, 2);
    EXPECT_EQ(v.Capacity(), 2u);
    EXPECT_EQ(v.Add(6u), 3);
    EXPECT_EQ(Held(v), (Model{4, 5, 6}));
    EXPECT_EQ(v.Capacity(), 3u);
}

TEST(VectorCopy, CopiesElementsAndAttributes) {
    Numbers v = Made({1, 2, 3});
    v.SetDefault(0x01020304u);
    v.SetName("routes");
    v.SetPrivate(true);
    v.SetChunkSize(21);
    const Numbers copy(v);
    EXPECT_EQ(copy, v);
    EXPECT_EQ(copy.Capacity(), 3u);
    EXPECT_STREQ(copy.Name(), "routes");
    EXPECT_TRUE(copy.Private());
    EXPECT_EQ(copy.ChunkSize(), 21u);
    EXPECT_FALSE(copy.FastFill());
    Numbers target = Made({9});
    target = v;
    EXPECT_EQ(target, v);
    EXPECT_EQ(target.Default(), 0x01020304u);
    EXPECT_STREQ(target.Name(), "unnamed");
    EXPECT_FALSE(target.Private());
    EXPECT_EQ(target.ChunkSize(), 8u);
    const Numbers& same = target;
    target = same;
    EXPECT_EQ(target.Count(), 3u);
}

TEST(VectorCopy, OutOfMemoryGivesAnEmptyVector) {
    const Numbers v = Made({1, 2, 3});
    Numbers target = Made({9});
    const FailingHeap heap(1);
    const Numbers copy(v);
    EXPECT_EQ(copy.Count() + copy.Capacity(), 0u);
    target = v;
    EXPECT_EQ(target.Count() + target.Capacity(), 0u);
}

TEST(VectorTransfer, TakesEverythingAndLeavesAnEmptyOwner) {
    std::uint32_t memory[] = {1, 2};
    Numbers wrapped(memory, 2, false);
    Numbers v = Made({5, 6, 7});
    v.Transfer(wrapped);
    EXPECT_EQ(Held(v), (Model{1, 2}));
    EXPECT_FALSE(v.OwnsMemory());
    EXPECT_TRUE(wrapped.OwnsMemory());
    EXPECT_EQ(wrapped.Count(), 0u);
    v.Transfer(wrapped);
    EXPECT_EQ(v.Count(), 0u);
    EXPECT_TRUE(v.OwnsMemory());
    v.Add(3u);
    v.Transfer(v);
    EXPECT_EQ(Held(v), Model{3});
}

TEST(VectorAccess, MissingElementsReadTheDefaultAndSwallowWrites) {
    Numbers v = Made({1});
    v.SetDefault(42);
    const Numbers& fixed = v;
    EXPECT_EQ(fixed[1], 42u);
    v[1] = 7;
    EXPECT_EQ(v.Default(), 42u);
    EXPECT_EQ(v[1], 42u);
    v.Empty();
    v.Last() = 8;
    EXPECT_EQ(fixed.Last(), 42u);
    EXPECT_EQ(fixed[0xFFFFFFFFu], 42u);
}

TEST(VectorAccess, DefaultFillsGapsByValueOrByByte) {
    static constexpr struct {
        std::uint32_t value;
        bool uniform;
    } kCases[] = {{0, true}, {0x05050505u, true}, {0xFFFFFFFFu, true}, {5, false}, {0x01020304u, false}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.value);
        Numbers v = Made({1});
        v.SetDefault(c.value);
        EXPECT_EQ(v.FastFill(), c.uniform);
        EXPECT_EQ(v.Insert(9u, 70), 70);
        EXPECT_EQ(v.Count(), 71u);
        EXPECT_EQ(static_cast<std::size_t>(std::count(v.begin(), v.end(), c.value)), 69u);
        EXPECT_EQ(v.Last(), 9u);
    }
    Numbers forced;
    forced.SetDefault(0x01020304u);
    forced.SetFastFill(true);
    EXPECT_EQ(forced.Insert(9u, 1), 1);
    EXPECT_EQ(forced[0], 0x04040404u) << "the first byte, in memory order";
}

TEST(VectorInsert, ItemsInsideTheVectorKeepTheirValues) {
    for (std::uint32_t size = 1; size <= 9; ++size) {
        for (std::uint32_t at = 0; at <= size; ++at) {
            for (std::uint32_t from = 0; from < size; ++from) {
                for (const bool room : {false, true}) {
                    Model model(size);
                    for (std::uint32_t i = 0; i < size; ++i) model[i] = 100 + i;
                    Numbers v = Made(model);
                    v.SetSize(room ? 2 * size : size);
                    const std::uint32_t n = size - from;
                    const Model items(model.begin() + from, model.end());
                    model.insert(model.begin() + at, items.begin(), items.end());
                    ASSERT_EQ(v.Insert(v.Data() + from, at, n), static_cast<std::int32_t>(at));
                    ASSERT_EQ(Held(v), model) << size << ' ' << at << ' ' << from << ' ' << room;
                }
            }
        }
    }
}

TEST(VectorAdd, AFullVectorDoublesItself) {
    Numbers v = Made({1, 2, 3, 4, 5, 6, 7, 8});
    ASSERT_EQ(v.Count(), v.Capacity());
    EXPECT_EQ(v.Add(v.Data(), v.Count()), 16);
    EXPECT_EQ(Held(v), (Model{1, 2, 3, 4, 5, 6, 7, 8, 1, 2, 3, 4, 5, 6, 7, 8}));
    v.SetSize();
    EXPECT_EQ(v.Add(v[3]), 17) << "a reference into the array";
    EXPECT_EQ(v.Last(), 4u);
}

TEST(VectorReplace, GrowsWithinAndBeyondTheCapacity) {
    static constexpr std::uint32_t kItems[] = {7, 8, 9};
    static constexpr struct {
        const char* name;
        std::uint32_t index, n;
        Model (*expected)();
    } kCases[] = {
        {"inside", 0, 2,
         [] {
             return Model{7, 8};
         }},
        {"past the count", 1, 3,
         [] {
             return Model{1, 7, 8, 9};
         }},
        {"with a gap", 4, 1,
         [] {
             return Model{1, 2, 0, 0, 7};
         }},
        {"across the capacity", 7, 3, [] { return Model{1, 2, 0, 0, 0, 0, 0, 7, 8, 9}; }},
        {"at the capacity", 8, 1, [] { return Model{1, 2, 0, 0, 0, 0, 0, 0, 7}; }},
        {"nothing, with a gap", 3, 0,
         [] {
             return Model{1, 2, 0};
         }},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Numbers v = Made({1, 2});
        EXPECT_TRUE(v.Replace(kItems, c.index, c.n));
        EXPECT_EQ(Held(v), c.expected());
    }
    Numbers own = Made({1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_TRUE(own.Replace(own.Data(), 4, 8)) << "its own elements, with growth";
    EXPECT_EQ(Held(own), (Model{1, 2, 3, 4, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(VectorShift, MovesBothWays) {
    static const struct {
        const char* name;
        Model before;
        std::int32_t k;
        bool result;
        Model after;
    } kCases[] = {
        {"nothing", {1, 2}, 0, true, {1, 2}},
        {"up", {7}, 2, true, {0, 0, 7}},
        {"up, empty", {}, 2, true, {0, 0}},
        {"down", {1, 2, 3}, -1, true, {2, 3}},
        {"down past the end", {1, 2, 3}, -10, true, {}},
        {"down by the minimum", {1}, INT32_MIN, true, {}},
        {"down, empty", {}, -1, false, {}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Numbers v = Made(c.before);
        EXPECT_EQ(v.Shift(c.k), c.result);
        EXPECT_EQ(Held(v), c.after);
    }
}

TEST(VectorEquality, ComparesBytesOnly) {
    Numbers a = Made({1, 2});
    Numbers b = Made({1, 2});
    b.SetDefault(9);
    b.SetName("b");
    EXPECT_TRUE(a == b);
    b[1] = 3;
    EXPECT_TRUE(a != b);
    EXPECT_TRUE(Numbers() == Numbers());
    EXPECT_FALSE(a == Numbers());
}

TEST(VectorIterate, VisitsInOrderAndSkipsNullPointersOnlyWhenAsked) {
    struct Sum : TIterator<std::uint32_t> {
        void OnElement(std::uint32_t* element) override { m_seen.push_back(*element); }
        Model m_seen;
    } sum;
    Numbers v = Made({3, 1, 2});
    v.Iterate(sum);
    sum.Visit(nullptr);
    EXPECT_EQ(sum.m_seen, (Model{3, 1, 2}));
}

TEST(VectorModel, RandomOperationsMatch) {
    const std::uint32_t seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    Numbers v;
    Model model;
    for (int step = 0; step < 20000; ++step) {
        const auto value = static_cast<std::uint32_t>(random());
        const auto size = static_cast<std::uint32_t>(model.size());
        const std::uint32_t at = value / 64 % (size + 1);
        const auto place = model.begin() + at;
        switch (random() % 8) {
            case 0:
            case 1:
                model.push_back(value);
                v.Add(value);
                break;
            case 2:
                model.insert(place, value);
                v.Insert(value, at);
                break;
            case 3:
                model.insert(place, 3, value);
                v.Insert(Made({value, value, value}), at);
                break;
            case 4:
            case 5:
                EXPECT_EQ(v.DeleteAt(at), at < size);
                if (at < size) model.erase(place);
                break;
            case 6:
                std::reverse(model.begin(), model.end());
                v.Reverse();
                break;
            case 7:
                v.SetSize(value % 60);
                if (model.size() > value % 60) model.resize(value % 60);
                break;
        }
        ASSERT_LE(v.Count(), v.Capacity());
        ASSERT_EQ(Held(v), model) << "step " << step;
    }
}

TEST(VectorFailure, NoMemoryLeavesTheVectorAsItWas) {
    static constexpr struct {
        const char* name;
        bool (*fails)(Numbers&);
    } kCases[] = {
        {"add", [](Numbers& v) { return v.Add(9u) == -1; }},
        {"add itself", [](Numbers& v) { return v.Add(v) == -1; }},
        {"insert", [](Numbers& v) { return v.Insert(9u, 1) == -1; }},
        {"insert with a gap", [](Numbers& v) { return v.Insert(9u, 40) == -1; }},
        {"insert itself", [](Numbers& v) { return v.Insert(v, 1) == -1; }},
        {"replace", [](Numbers& v) { return !v.Replace(v.Data(), 2, 3); }},
        {"shift", [](Numbers& v) { return !v.Shift(1); }},
        {"grow", [](Numbers& v) { return !v.SetSize(100); }},
        {"shrink", [](Numbers& v) { return !v.SetSize(1); }},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Numbers v = Made({1, 2, 3});
        ASSERT_TRUE(v.SetSize());
        const FailingHeap heap(1);
        EXPECT_TRUE(c.fails(v));
        EXPECT_EQ(Held(v), (Model{1, 2, 3}));
        EXPECT_EQ(v.Capacity(), 3u);
    }
}

}  // namespace
}  // namespace dorvutil
