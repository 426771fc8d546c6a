#pragma once

#include <cstddef>

#include "dorvutil/memory/dl_heap.h"

/// A walk over a whole heap that compares all that is known in two places. For tests, and for a debugger's prompt.
namespace dorvutil::dl {

struct HeapReport {
    const char* m_fault = nullptr;  ///< The first thing found wrong; null for a sound heap.
    std::size_t m_segments = 0;
    std::size_t m_chunksInUse = 0;  ///< Not those on pages of their own.
    std::size_t m_freeChunks = 0;   ///< In bins, and the victim; not the top.
    std::size_t m_freeBytes = 0;
    std::size_t m_topBytes = 0;
};

/// The caller keeps others away from the heap.
HeapReport CheckHeap(const Heap& heap);

/// That of dlmalloc, under its lock.
HeapReport CheckSharedHeap();

}  // namespace dorvutil::dl
