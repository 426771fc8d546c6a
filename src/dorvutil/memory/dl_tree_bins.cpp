#include "dorvutil/memory/dl_tree_bins.h"

namespace dorvutil::dl {
namespace {

// The best chunk seen so far for a size.
class Candidate {
public:
    explicit Candidate(std::size_t size) : m_size(size) {}

    void Consider(TreeChunk* chunk) {
        const std::size_t excess = chunk->Size() - m_size;  // wraps to something huge when the chunk is too small
        if (excess >= m_excess) return;
        m_chunk = chunk;
        m_excess = excess;
    }

    // Of several of the same size one that is no node: the tree then stays as it is.
    TreeChunk* Chosen() const { return m_chunk ? static_cast<TreeChunk*>(m_chunk->Next()) : nullptr; }
    bool IsExact() const { return m_excess == 0; }
    bool HasChunk() const { return m_chunk != nullptr; }

private:
    std::size_t m_size;
    std::size_t m_excess = std::numeric_limits<std::size_t>::max() / 2;
    TreeChunk* m_chunk = nullptr;
};

TreeChunk* SmallerSide(const TreeChunk* node) { return node->m_child[0] ? node->m_child[0] : node->m_child[1]; }

// The least size of a subtree is met on the way down its smaller side.
void ConsiderLeastOf(TreeChunk* tree, Candidate& best) {
    for (; tree; tree = SmallerSide(tree)) best.Consider(tree);
}

// Takes some leaf off the tree below `node`; null when nothing is below it.
TreeChunk* DetachLeaf(TreeChunk* node) {
    TreeChunk** link = nullptr;
    for (TreeChunk* at = node;;) {
        TreeChunk** const down = at->m_child[1] ? &at->m_child[1] : &at->m_child[0];
        if (!*down) break;
        link = down;
        at = *down;
    }
    if (!link) return nullptr;
    TreeChunk* const leaf = *link;
    *link = nullptr;
    return leaf;
}

}  // namespace

void TreeBins::Insert(TreeChunk* chunk, std::size_t size) {
    const unsigned bin = BinOf(size);
    chunk->m_child[0] = chunk->m_child[1] = nullptr;
    chunk->MakeRing();
    TreeChunk* at = m_roots[bin];
    if (!at) {
        m_map |= 1u << bin;
        m_roots[bin] = chunk->m_parent = chunk;
        return;
    }
    for (std::size_t key = size << KeyShift(bin); at->Size() != size; key <<= 1) {
        TreeChunk*& child = at->m_child[HighestBit(key)];
        if (!child) {
            child = chunk;
            chunk->m_parent = at;
            return;
        }
        at = child;
    }
    chunk->m_parent = nullptr;
    chunk->InsertAfter(at);
}

void TreeBins::Remove(TreeChunk* chunk, std::size_t size) {
    auto* const sibling = static_cast<TreeChunk*>(chunk->m_next);
    chunk->Unlink();
    if (!chunk->m_parent) return;
    Replace(chunk, sibling != chunk ? sibling : DetachLeaf(chunk), BinOf(size));
}

// Any chunk of the same size or from below may stand in the place of a node; none ends that branch.
void TreeBins::Replace(TreeChunk* chunk, TreeChunk* heir, unsigned bin) {
    TreeChunk* const parent = chunk->m_parent;
    if (parent == chunk) {
        m_roots[bin] = heir;
        if (!heir) m_map &= ~(1u << bin);
    } else {
        parent->m_child[parent->m_child[1] == chunk] = heir;
    }
    if (!heir) return;
    heir->m_parent = parent == chunk ? heir : parent;
    for (int side = 0; side < 2; ++side) {
        heir->m_child[side] = chunk->m_child[side];
        if (heir->m_child[side]) heir->m_child[side]->m_parent = heir;
    }
}

TreeChunk* TreeBins::Least() const {
    Candidate best(0);
    ConsiderLeastOf(m_roots[std::countr_zero(m_map)], best);
    return best.Chosen();
}

TreeChunk* TreeBins::BestFit(std::size_t size) const {
    Candidate best(size);
    const unsigned bin = BinOf(size);
    // Down the path of the size itself. What branches off it to the side of the ones is larger, and the less so the
    // further down.
    TreeChunk* larger = nullptr;
    TreeChunk* at = m_roots[bin];
    for (std::size_t key = size << KeyShift(bin); at; key <<= 1) {
        best.Consider(at);
        if (best.IsExact()) return best.Chosen();
        if (HighestBit(key) == 0 && at->m_child[1]) larger = at->m_child[1];
        at = at->m_child[HighestBit(key)];
    }
    if (!larger && !best.HasChunk()) {
        const std::uint32_t higherBins = m_map >> bin >> 1 << bin << 1;
        if (higherBins != 0) larger = m_roots[std::countr_zero(higherBins)];
    }
    ConsiderLeastOf(larger, best);
    return best.Chosen();
}

}  // namespace dorvutil::dl
