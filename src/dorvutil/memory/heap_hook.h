#pragma once

#include <cstddef>

/// Ways into the heap layer for tests.
namespace dorvutil {

/// Asked before every allocation through Mem_*; false makes that allocation fail. Called by any allocating thread.
using AllocationHook = bool (*)(std::size_t bytes);

/// Null removes the hook.
void SetAllocationHook(AllocationHook hook);

/// The range CP_AllocateGlobalHeap reserved; null when there is none.
void* GlobalHeapBase();

}  // namespace dorvutil
