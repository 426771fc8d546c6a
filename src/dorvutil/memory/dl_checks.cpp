#include "dorvutil/memory/dl_checks.h"

namespace dorvutil::dl {

class HeapCheck {
public:
    explicit HeapCheck(const Heap& heap) : m_heap(heap) {}

    HeapReport Run() {
        for (const Segment* segment = m_heap.m_segments; segment; segment = segment->m_older) WalkSegment(*segment);
        for (unsigned bin = 0; bin < kSmallBins; ++bin) WalkSmallBin(bin);
        for (unsigned bin = 0; bin < TreeBins::kBins; ++bin) WalkTreeBin(bin);
        CheckVictim();
        Expect(m_binned == m_report.m_freeChunks, "a free chunk is in no bin");
        Expect(m_binnedBytes == m_report.m_freeBytes, "a bin holds another size than the segments");
        return m_report;
    }

private:
    void Expect(bool sound, const char* fault) {
        if (!sound && !m_report.m_fault) m_report.m_fault = fault;
    }

    void WalkSegment(const Segment& segment) {
        ++m_report.m_segments;
        bool previousInUse = true;
        Chunk* chunk = segment.First();
        const bool hasTop = segment.Holds(m_heap.m_top);
        Expect(hasTop == (&segment == m_heap.m_segments), "the top is not in the newest segment");
        while (chunk != segment.End() && chunk != m_heap.m_top) {
            Expect(chunk->IsPreviousInUse() == previousInUse, "a chunk is wrong about the one before it");
            const std::size_t size = chunk->Size();
            if (size < kLeastChunk || !segment.Holds(chunk->At(size)))
                return Expect(false, "a chunk's size is damaged");
            if (chunk->IsInUse()) {
                CheckUsed(*chunk);
            } else {
                Expect(previousInUse, "two free chunks touch");
                CheckFree(*chunk);
            }
            previousInUse = chunk->IsInUse();
            chunk = chunk->At(size);
        }
        Expect(chunk->IsPreviousInUse() == previousInUse, "the last chunk is not known as what it is");
        if (hasTop) {
            CheckTop(segment);
        } else {
            Expect(Fence::SegmentAt(chunk) == &segment && chunk->IsInUse(), "a fence is damaged");
        }
    }

    void CheckUsed(const Chunk& chunk) {
        ++m_report.m_chunksInUse;
        Expect(!chunk.IsMapped(), "a mapped chunk lies in a segment");
        if (kSealed) Expect(chunk.At(chunk.Size())->m_foot == chunk.Seal(), "a seal is broken");
    }

    void CheckFree(const Chunk& chunk) {
        ++m_report.m_freeChunks;
        m_report.m_freeBytes += chunk.Size();
        Expect(chunk.At(chunk.Size())->m_foot == chunk.Size(), "head and foot of a free chunk differ");
    }

    void CheckTop(const Segment& segment) {
        m_report.m_topBytes = m_heap.m_topSize;
        Expect(m_heap.m_topSize >= kLeastChunk && m_heap.m_top->Size() == m_heap.m_topSize, "the top's size is wrong");
        Expect(m_heap.m_top->At(m_heap.m_topSize) == segment.End(), "the top does not end with its segment");
    }

    void CheckBinned(const Chunk& chunk, bool isTheirs) {
        ++m_binned;
        m_binnedBytes += chunk.Size();
        Expect(isTheirs, "a chunk is in a wrong bin");
        Expect(!chunk.IsInUse() && chunk.IsPreviousInUse(), "a chunk in a bin is not free");
        Expect(&chunk != m_heap.m_victim && &chunk != m_heap.m_top, "a bin holds the victim or the top");
    }

    void WalkSmallBin(unsigned bin) {
        const Links& ring = m_heap.m_small.m_rings[bin];
        Expect((ring.m_next != &ring) == ((m_heap.m_small.m_map >> bin & 1) != 0), "the map of small bins is wrong");
        for (const Links* at = ring.m_next; at != &ring && !m_report.m_fault; at = at->m_next) {
            Expect(at->m_next->m_previous == at, "a ring of chunks is broken");
            CheckBinned(*static_cast<const FreeChunk*>(at),
                        static_cast<const FreeChunk*>(at)->Size() == bin * kAlignment);
        }
    }

    void WalkTreeBin(unsigned bin) {
        const TreeChunk* const root = m_heap.m_trees.m_roots[bin];
        Expect((root != nullptr) == ((m_heap.m_trees.m_map >> bin & 1) != 0), "the map of tree bins is wrong");
        if (!root) return;
        Expect(root->m_parent == root, "a root is not marked");
        WalkTree(*root, bin, 0, root->Size() << TreeBins::KeyShift(bin));
    }

    // `path` is a key of the sizes that belong here; only its first `depth` bits count.
    void WalkTree(const TreeChunk& node, unsigned bin, unsigned depth, std::size_t path) {
        const std::size_t size = node.Size();
        const std::size_t key = size << TreeBins::KeyShift(bin);
        constexpr unsigned kBits = sizeof(std::size_t) * 8;
        Expect(depth == 0 || (key ^ path) >> (kBits - depth) == 0, "a tree holds a chunk on a wrong branch");
        const Links* at = &node;
        do {
            const auto& chunk = *static_cast<const TreeChunk*>(at);
            CheckBinned(chunk, TreeBins::BinOf(chunk.Size()) == bin && chunk.Size() == size);
            Expect(&chunk == &node || !chunk.m_parent, "a chunk on a ring claims a place in the tree");
            Expect(at->m_next->m_previous == at, "a ring of chunks is broken");
            at = at->m_next;
        } while (at != &node && !m_report.m_fault);
        for (unsigned side = 0; side < 2 && !m_report.m_fault; ++side) {
            const TreeChunk* const child = node.m_child[side];
            if (!child) continue;
            Expect(child->m_parent == &node, "a chunk in a tree does not know its parent");
            const std::size_t bit = std::size_t{1} << (kBits - 1 - depth);
            WalkTree(*child, bin, depth + 1, side != 0 ? path | bit : path & ~bit);
        }
    }

    void CheckVictim() {
        Expect((m_heap.m_victim != nullptr) == (m_heap.m_victimSize != 0), "the victim is half forgotten");
        if (!m_heap.m_victim) return;
        ++m_binned;
        m_binnedBytes += m_heap.m_victimSize;
        Expect(!m_heap.m_victim->IsInUse() && m_heap.m_victim->Size() == m_heap.m_victimSize, "the victim is not free");
    }

    const Heap& m_heap;
    HeapReport m_report;
    std::size_t m_binned = 0;
    std::size_t m_binnedBytes = 0;
};

HeapReport CheckHeap(const Heap& heap) { return HeapCheck(heap).Run(); }

}  // namespace dorvutil::dl
