#include "dorvutil/frame/random.h"

#include <algorithm>

#include "dorvutil/frame/random_state.h"
#include "dorvutil/platform/thread.h"

namespace dorvutil {
namespace {

struct Component {
    std::uint32_t q, p, r, mask;
};
constexpr Component kComponents[4] = {
    {6, 13, 18, 0xFFFFFFFEu}, {2, 27, 2, 0xFFFFFFF8u}, {13, 21, 7, 0xFFFFFFF0u}, {3, 12, 13, 0xFFFFFF80u}};

}  // namespace

CRandState::CRandState(const std::uint32_t (&words)[kWords]) { std::copy_n(words, kWords, m_words); }

std::int32_t CRandState::Next(std::uint32_t thread) {
    const Component& c = kComponents[thread % 4];
    const TScopedLock<CBaseSync> lock(*this);
    std::uint32_t& word = m_words[thread % kWords];
    const std::uint32_t b = ((word << c.q) ^ word) >> c.p;
    word = ((word & c.mask) << c.r) ^ b;
    const std::uint32_t mixed =
        word ^ m_words[(thread + 1) % kWords] ^ m_words[(thread + 2) % kWords] ^ m_words[(thread + 3) % kWords];
    // The absolute value in unsigned arithmetic: -2^31 has none and stays.
    return static_cast<std::int32_t>((mixed & 0x80000000u) != 0 ? 0u - mixed : mixed);
}

std::int32_t ORVRand() { return RandomState().Next(platform::CurrentThreadId()); }

}  // namespace dorvutil
