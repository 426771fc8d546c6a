#include "dorvutil/concurrency/semaphore.h"

#include <new>

namespace dorvutil {
namespace {

using Guard = TScopedLock<TCompactSync<critSec>>;

}  // namespace

std::int32_t TSem<critSec>::Wait(std::uint32_t milliseconds) {
    Node* node = nullptr;
    {
        const Guard lock(*this);
        if (m_available != 0) {
            --m_available;
            return 1;
        }
        void* const storage = milliseconds != 0 ? AllocEventChain<critSec>() : nullptr;
        if (!storage) return 0;
        node = ::new (storage) Node;
        Node** link = &m_head;
        while (*link) link = &(*link)->m_next;
        *link = node;
    }
    std::int32_t result = node->WaitForEvent(milliseconds);
    if (result != 1) {
        const Guard lock(*this);
        // Gone from the chain: a releaser has handed this thread a unit in the meantime, which it must not lose.
        if (!Unlink(node)) result = 1;
    }
    Drop(node);
    return result;
}

void TSem<critSec>::Release(std::uint32_t count) {
    const Guard lock(*this);
    m_available = count <= m_maximum - m_available ? m_available + count : m_maximum;
    while (m_available != 0 && m_head) {
        Node* const served = m_head;
        served->SignalEvent(true);
        m_head = served->m_next;
        Drop(served);
        --m_available;
    }
}

bool TSem<critSec>::Unlink(Node* node) {
    Node** link = &m_head;
    while (*link && *link != node) link = &(*link)->m_next;
    if (!*link) return false;
    *link = node->m_next;
    Drop(node);
    return true;
}

void TSem<critSec>::Drop(Node* node) {
    if (node->Decrement() != 0) return;
    node->~Node();
    FreeEventChain<critSec>(node);
}

}  // namespace dorvutil
