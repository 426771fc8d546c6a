#include "dorvutil/memory/dl_segment.h"

#include <algorithm>
#include <new>

#include "dorvutil/platform/host.h"
#include "dorvutil/platform/pages.h"

namespace dorvutil::dl {
namespace {

// Addresses cost nothing where there are plenty.
constexpr std::size_t kUsualReserve = sizeof(void*) == 8 ? std::size_t{64} << 20 : std::size_t{4} << 20;

// As much as usual, or as near to it as the system grants.
void* Reserve(std::size_t least, std::size_t& reserved) {
    for (reserved = std::max(kUsualReserve, least);; reserved = std::max(RoundUp(reserved / 2, kStep), least)) {
        void* const base = platform::ReserveRange(reserved);
        if (base || reserved == least) return base;
    }
}

}  // namespace

Segment* Segment::Create(std::size_t size) {
    const std::size_t committed = RoundUp(size + sizeof(Segment) + kLeastChunk, kStep);
    std::size_t reserved = 0;
    void* const base = Reserve(committed, reserved);
    if (!base) return nullptr;
    if (!platform::CommitPages(base, committed)) {
        platform::ReleaseRange(base, reserved);
        return nullptr;
    }
    auto* const segment = ::new (base) Segment(reserved);
    segment->m_committed = committed;
    return segment;
}

void Segment::Destroy() {
    const std::size_t reserved = m_reserved;
    platform::DecommitPages(this, m_committed);
    platform::ReleaseRange(this, reserved);
}

bool Segment::Grow(std::size_t size) {
    if (size > m_reserved - m_committed || !platform::CommitPages(Place(m_committed), size)) return false;
    m_committed += size;
    return true;
}

bool Segment::Shrink(std::size_t size) {
    if (!platform::DecommitPages(Place(m_committed - size), size)) return false;
    m_committed -= size;
    return true;
}

void Segment::PutFence() {
    auto* const fence = static_cast<Fence*>(End());
    fence->m_head = Chunk::kInUse;
    fence->m_segment = this;
}

}  // namespace dorvutil::dl
