#pragma once

#include <cstddef>

/// Every allocation of the calling thread, by operator new and by the library's heap layer: counted, and made to fail
/// on demand.
namespace dorvutil::testing_support {

/// Counts, and fails, within its scope.
class AllocationWatch {
public:
    static constexpr std::size_t kNone = ~std::size_t{0};

    /// Lets the allocations from number `firstToFail` (0: the first) to before `end` fail.
    explicit AllocationWatch(std::size_t firstToFail = kNone, std::size_t end = kNone);
    ~AllocationWatch();
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;

    std::size_t Count() const;
};

}  // namespace dorvutil::testing_support
