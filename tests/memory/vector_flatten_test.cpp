#include <gtest/gtest.h>

#include <cstring>

#include "dorvutil/storage/memory_handle.h"
#include "memory/vector_support.h"

namespace dorvutil {
namespace {

using test::Held;
using test::Made;
using Numbers = TVector<std::uint32_t>;
using Model = std::vector<std::uint32_t>;
using Bytes = std::vector<unsigned char>;

struct MemoryFile : COrvFileHandleMemory {
    MemoryFile() : COrvFileHandleMemory(eAccessReadWrite) { Open(); }
    explicit MemoryFile(const Bytes& content)
        : COrvFileHandleMemory(content.data(), static_cast<std::uint32_t>(content.size()), true, eAccessRead) {
        Open();
    }
    Bytes Written() const { return Bytes(ByteArray().begin(), ByteArray().end()); }
};

Bytes Header(std::uint32_t value, bool fast, std::uint32_t chunk, bool isPrivate, std::uint32_t capacity,
             std::uint32_t count, std::size_t elementBytes) {
    Bytes bytes(18 + elementBytes, 0x11);
    for (const auto& [at, word] : {std::pair{0, value}, {5, chunk}, {10, capacity}, {14, count}}) {
        std::memcpy(&bytes[static_cast<std::size_t>(at)], &word, 4);
    }
    bytes[4] = fast;
    bytes[9] = isPrivate;
    return bytes;
}

TEST(VectorFlatten, BothFormsWriteAndReadTheSame) {
    for (const Model& values : {Model{}, Model{1, 2, 0xFFFFFFFFu}}) {
        Numbers v = Made(values);
        v.SetDefault(0x01020304u);
        v.SetPrivate(true);
        v.SetChunkSize(11);
        MemoryFile block, items;
        EXPECT_TRUE(v.FlattenMe(&block) && v.FlattenMeByItem(&items));
        EXPECT_EQ(block.Written(), items.Written());
        Bytes expected = Header(0x01020304u, false, 11, true, v.Capacity(), v.Count(), v.ByteCount());
        if (!values.empty()) std::memcpy(&expected[18], values.data(), v.ByteCount());
        EXPECT_EQ(block.Written(), expected);
        for (const bool byItem : {false, true}) {
            MemoryFile file(block.Written());
            Numbers back = Made<std::uint32_t>({9, 9, 9, 9, 9, 9, 9, 9, 9});
            EXPECT_TRUE(byItem ? back.UnflattenMeByItem(&file) : back.UnflattenMe(&file));
            MemoryFile again;
            EXPECT_TRUE(back.FlattenMe(&again));
            EXPECT_EQ(again.Written(), expected);
        }
    }
}

TEST(VectorUnflatten, TakesTheHeaderAsStored) {
    MemoryFile file(Header(0x01020304u, true, 0, true, 5, 3, 0));
    std::uint32_t memory[] = {1, 2};
    Numbers v(memory, 2, false);
    EXPECT_TRUE(v.UnflattenMeAdmin(&file, false));
    EXPECT_TRUE(v.OwnsMemory());
    EXPECT_EQ(v.ChunkSize(), 2u) << "a stored 0 leaves it";
    EXPECT_EQ(v.Capacity(), 5u);
    EXPECT_EQ(Held(v), (Model{0x04040404u, 0x04040404u, 0x04040404u})) << "the stored flag rules the fill";
    EXPECT_EQ(memory[0], 1u);
    file.Seek(0, eSeekSet);
    Numbers keeping = Made<std::uint32_t>({7, 8, 9, 10});
    keeping.SetDefault(5);
    EXPECT_TRUE(keeping.UnflattenMeAdmin(&file, true));
    EXPECT_EQ(keeping.Default(), 5u);
    EXPECT_EQ(Held(keeping), (Model{7, 8, 9}));
}

TEST(VectorUnflatten, DamagedInputGivesAnEmptyVectorOrNone) {
    static const struct {
        const char* name;
        Bytes bytes;
        std::uint32_t left;
    } kCases[] = {
        {"nothing", {}, 1},
        {"half a header", Bytes(17, 0), 1},
        {"capacity of all ones", Header(0, true, 8, false, 0xFFFFFFFFu, 1, 4), 0},
        {"capacity beyond reason", Header(0, true, 8, false, 0x7FFFFFFFu, 1, 4), 0},
        {"count of all ones", Header(0, true, 8, false, 1, 0xFFFFFFFFu, 4), 0},
        {"chunk beyond reason", Header(0, true, 0xFFFFFFFFu, false, 1, 1, 4), 0},
        {"one element short", Header(0, true, 8, false, 8, 3, 8), 0},
        {"one byte short", Header(0, true, 8, false, 8, 3, 11), 0},
    };
    for (const auto& c : kCases) {
        for (const bool byItem : {false, true}) {
            SCOPED_TRACE(c.name);
            MemoryFile file(c.bytes);
            Numbers v = Made<std::uint32_t>({42});
            EXPECT_FALSE(byItem ? v.UnflattenMeByItem(&file) : v.UnflattenMe(&file));
            EXPECT_EQ(v.Count(), c.left);
            EXPECT_EQ(v.Add(1u), static_cast<std::int32_t>(c.left + 1)) << "still usable";
        }
    }
    MemoryFile more(Header(0, true, 8, false, 1, 3, 12));
    Numbers v;
    EXPECT_TRUE(v.UnflattenMe(&more)) << "a count above the capacity grows";
    EXPECT_EQ(Held(v), (Model{0x11111111u, 0x11111111u, 0x11111111u}));
}

TEST(VectorFile, WritesRanges) {
    static constexpr struct {
        std::uint32_t start, n;
        bool result;
        std::size_t bytes;
    } kCases[] = {{0, 0, true, 12}, {1, 1, true, 4}, {1, 99, true, 8}, {2, 0, true, 4}, {3, 0, false, 0}};
    const Numbers v = Made<std::uint32_t>({1, 2, 3});
    for (const auto& c : kCases) {
        MemoryFile file;
        EXPECT_EQ(v.WriteToFile(&file, c.start, c.n), c.result);
        EXPECT_EQ(file.Written().size(), c.bytes);
    }
    EXPECT_FALSE(v.WriteToFile(nullptr, 0, 0));
}

TEST(VectorFile, ReadsWhatIsThere) {
    const Bytes bytes = {1, 0, 0, 0, 2, 0, 0, 0, 3, 0};
    static const struct {
        std::uint32_t n;
        bool append, result;
        Model held;
    } kCases[] = {{0, false, true, {1, 2}},
                  {1, false, true, {1}},
                  {0, true, true, {42, 1, 2}},
                  {3, false, false, {1, 2, 7}},
                  {0x7FFFFFFFu, true, false, {42}}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.n);
        MemoryFile file(bytes);
        Numbers v = Made<std::uint32_t>({42});
        v.SetDefault(7);
        EXPECT_EQ(v.ReadFromFile(&file, c.n, c.append), c.result);
        EXPECT_EQ(Held(v), c.held);
        EXPECT_EQ(v.Capacity(), c.n > 9 ? 8 : v.Count());
    }
    Numbers v = Made<std::uint32_t>({42});
    EXPECT_FALSE(v.ReadFromFile(nullptr, 0, false));
    std::uint32_t memory[] = {5};
    Numbers wrapped(memory, 1, false);
    MemoryFile file(bytes);
    EXPECT_FALSE(wrapped.ReadFromFile(&file, 0, false));
    EXPECT_EQ(Held(wrapped), Model{5});
}

}  // namespace
}  // namespace dorvutil
