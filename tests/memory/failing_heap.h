#pragma once

#include <atomic>
#include <cstddef>

#include "dorvutil/memory/heap_hook.h"

/// While it lives, the `n`-th allocation of the library (counted from 1) and all later ones fail; 0 lets all pass and
/// only counts them.
class FailingHeap {
public:
    explicit FailingHeap(int n) {
        s_failFrom = n;
        s_calls = 0;
        dorvutil::SetAllocationHook(&Allow);
    }
    ~FailingHeap() { dorvutil::SetAllocationHook(nullptr); }
    FailingHeap(const FailingHeap&) = delete;
    FailingHeap& operator=(const FailingHeap&) = delete;

    static int Calls() { return s_calls; }

private:
    static bool Allow(std::size_t) {
        const int call = ++s_calls;
        return s_failFrom == 0 || call < s_failFrom;
    }

    static inline std::atomic<int> s_failFrom{0};
    static inline std::atomic<int> s_calls{0};
};
