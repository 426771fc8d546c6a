#include "dorvutil/memory/heap.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "dorvutil/memory/heap_hook.h"
#include "dorvutil/memory/numbered_list.h"
#include "memory/failing_heap.h"

namespace dorvutil {
namespace {

TEST(HeapStrDup, CopiesUpToTheTerminator) {
    EXPECT_EQ(Mem_StrDup(nullptr), nullptr);
    EXPECT_EQ(Mem_WStrDup(nullptr), nullptr);
    for (const char* text : {"", "a", "Brandenburger Tor"}) {
        char* const copy = Mem_StrDup(text);
        EXPECT_NE(copy, text);
        EXPECT_STREQ(copy, text);
        Mem_Free(copy);
    }
    for (const char16_t* text : {u"", u"\u00C4\U0001F6A6"}) {
        char16_t* const copy = Mem_WStrDup(text);
        EXPECT_EQ(std::u16string(copy), text);
        Mem_Free(copy);
    }
    const FailingHeap heap(1);
    EXPECT_EQ(Mem_StrDup("x"), nullptr);
}

TEST(Heap, OverflowingCallocFails) {
    EXPECT_EQ(Mem_Calloc(SIZE_MAX / 2, 3), nullptr);
    auto* const zeros = static_cast<unsigned char*>(Mem_Calloc(3, 5));
    for (int i = 0; i < 15; ++i) EXPECT_EQ(zeros[i], 0);
    Mem_Free(zeros);
}

TEST(HeapHook, SeesEveryAllocation) {
    const FailingHeap heap(0);
    void* p = Mem_Malloc(1);
    p = Mem_Realloc(p, 2);
    Mem_Free(p);
    Mem_Free(Mem_Calloc(1, 1));
    EXPECT_EQ(FailingHeap::Calls(), 3);
}

TEST(GlobalHeap, IsReservedOnce) {
    EXPECT_EQ(GlobalHeapBase(), nullptr);
    CP_AllocateGlobalHeap();
    void* const base = GlobalHeapBase();
    EXPECT_NE(base, nullptr);
    CP_AllocateGlobalHeap();
    EXPECT_EQ(GlobalHeapBase(), base);
    CP_FreeGlobalHeap();
    EXPECT_EQ(GlobalHeapBase(), nullptr);
    CP_FreeGlobalHeap();
}

TEST(CustomHeap, ForwardsToTheRuntime) {
    CCustomHeap heap(4096, ts_critSec, false);
    auto* p = static_cast<char*>(heap.ReallocEntry(nullptr, 4));
    p[3] = 'x';
    p = static_cast<char*>(heap.ReallocEntry(p, 4000));
    EXPECT_EQ(p[3], 'x');
    EXPECT_FALSE(heap.Contains(p));
    EXPECT_TRUE(heap.FreeEntry(p));
    EXPECT_TRUE(heap.FreeEntry(heap.MallocEntry(1)));
    EXPECT_EQ(heap.CreateBlock(), nullptr);
    std::uint32_t index = 77;
    EXPECT_EQ(heap.FindEntry(p, index), nullptr);
    EXPECT_EQ(index, 77u);
    CCustomHeap copy(heap);
    copy = heap;
    const HeapAllocMgr heaps;
    EXPECT_EQ(CSharedMemoryReserve(123).Size(), 123u);
}

TEST(NumberedPointList, HasNoSelectionUnlessTheListSaysSo) {
    struct Points : NumberedPointList {
        std::uint32_t PointCount() const override { return 0; }
        std::int32_t PointNumber(std::uint32_t) const override { return 0; }
        bool PointAt(std::uint32_t, std::int32_t&, std::int32_t&) const override { return false; }
    } points;
    points.LockList();
    EXPECT_EQ(points.GetSelectedIndex(), -1);
    EXPECT_FALSE(points.SetSelectedIndex(0));
    EXPECT_EQ(points.GetSelectedIndex(), -1);
    points.UnlockList();
}

}  // namespace
}  // namespace dorvutil
