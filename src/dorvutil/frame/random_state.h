#pragma once

#include <cstdint>

#include "dorvutil/concurrency/sync.h"

namespace dorvutil {

/// State of ORVRand: 32 words under a lock, seeded at construction from the C library's generator, the tick, the thread
/// and two addresses.
class CRandState : public TCompactSync<critSec> {
public:
    static constexpr std::uint32_t kWords = 32;

    CRandState();
    /// Starts from `words` instead of a seed.
    explicit CRandState(const std::uint32_t (&words)[kWords]);

    /// The next number for the thread with this identifier.
    std::int32_t Next(std::uint32_t thread);

private:
    std::uint32_t m_words[kWords];
};

/// The one instance.
CRandState& RandomState();

}  // namespace dorvutil
