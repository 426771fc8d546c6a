#pragma once

#include <cstddef>
#include <cstring>

namespace dorvutil {

/// Zeroes what must not outlive its use. The compiler cannot drop it as a store that nobody reads.
inline void SecureClear(void* p, std::size_t n) {
    std::memset(p, 0, n);
    __asm__ volatile("" : : "r"(p) : "memory");
}

}  // namespace dorvutil
