#include "dorvutil/memory/heap.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

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

TEST(Heap, OverflowingCallocFailsAndTheHookSeesEveryAllocation) {
    EXPECT_EQ(Mem_Calloc(SIZE_MAX / 2, 3), nullptr);
    const FailingHeap heap(0);
    auto* const zeros = static_cast<unsigned char*>(Mem_Calloc(3, 5));
    for (int i = 0; i < 15; ++i) EXPECT_EQ(zeros[i], 0);
    Mem_Free(Mem_Realloc(zeros, 20));
    Mem_Free(Mem_Malloc(1));
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
    void* const p = heap.ReallocEntry(heap.ReallocEntry(nullptr, 4), 4000);
    EXPECT_FALSE(heap.Contains(p) || heap.CreateBlock());
    EXPECT_TRUE(heap.FreeEntry(p) && heap.FreeEntry(heap.MallocEntry(1)));
    std::uint32_t index = 77;
    EXPECT_EQ(heap.FindEntry(p, index), nullptr);
    EXPECT_EQ(index, 77u);
}

}  // namespace
}  // namespace dorvutil
