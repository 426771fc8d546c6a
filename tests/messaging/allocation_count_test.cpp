#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <new>

#include "dorvutil/memory/heap_hook.h"
#include "messaging/allocation_count.h"

namespace {

thread_local bool t_watching = false;
thread_local std::size_t t_count = 0;
thread_local std::size_t t_firstToFail = 0;
thread_local std::size_t t_end = 0;

bool MayAllocate(std::size_t) {
    if (!t_watching) return true;
    const std::size_t number = t_count++;
    return number < t_firstToFail || number >= t_end;
}

}  // namespace

// Not inlined: the compiler would see malloc meet delete, and free meet new.
[[gnu::noinline]] void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return MayAllocate(bytes) ? std::malloc(bytes) : nullptr;
}
[[gnu::noinline]] void* operator new(std::size_t bytes) {
    if (void* const block = operator new(bytes, std::nothrow)) return block;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }

namespace dorvutil::testing_support {

AllocationWatch::AllocationWatch(std::size_t firstToFail, std::size_t end) {
    SetAllocationHook(MayAllocate);
    t_count = 0;
    t_firstToFail = firstToFail;
    t_end = end;
    t_watching = true;
}

AllocationWatch::~AllocationWatch() {
    t_watching = false;
    SetAllocationHook(nullptr);
}

std::size_t AllocationWatch::Count() const { return t_count; }

TEST(AllocationWatch, SeesAndRefusesAllocations) {
    const AllocationWatch watch(1, 2);
    const std::unique_ptr<int> first(new (std::nothrow) int);
    const std::unique_ptr<int> second(new (std::nothrow) int);
    const std::unique_ptr<int> third(new (std::nothrow) int);
    EXPECT_TRUE(first && !second && third);
    EXPECT_EQ(watch.Count(), 3u);
}

}  // namespace dorvutil::testing_support
