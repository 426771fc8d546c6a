#pragma once

#include <algorithm>
#include <cstdint>
#include <list>
#include <memory>
#include <vector>

/// What a pool must do, written as plainly as possible: the available blocks in a list that is walked step by step.
class PoolModel {
public:
    struct Block {
        std::vector<bool> m_bits;
        std::uint32_t m_used = 0;
        char* m_base = nullptr;  ///< Where the real pool put element 0, once it is known.
    };

    explicit PoolModel(std::uint32_t elementsPerBlock) : m_perBlock(elementsPerBlock) {}

    /// The block and element that must come next.
    std::pair<Block*, std::uint32_t> Alloc() {
        if (m_available.empty()) {
            m_blocks.push_back(std::make_unique<Block>());
            m_blocks.back()->m_bits.assign(m_perBlock, false);
            m_available.push_front(m_blocks.back().get());
        }
        Block* const block = m_available.front();
        const auto bit = std::find(block->m_bits.begin(), block->m_bits.end(), false);
        *bit = true;
        if (++block->m_used == m_perBlock) m_available.pop_front();
        return {block, static_cast<std::uint32_t>(bit - block->m_bits.begin())};
    }

    void Free(Block* block, std::uint32_t index) {
        block->m_bits[index] = false;
        --block->m_used;
        auto at = std::find(m_available.begin(), m_available.end(), block);
        if (at == m_available.end()) {
            m_available.push_front(block);
            at = m_available.begin();
        }
        while (std::next(at) != m_available.end() && (*std::next(at))->m_used > block->m_used) {
            std::iter_swap(at, std::next(at));
            ++at;
        }
        const auto next = std::next(at);
        if (block->m_used != 0 || next == m_available.end() || (*next)->m_used != 0) return;
        std::erase_if(m_blocks, [released = *next](const auto& owned) { return owned.get() == released; });
        m_available.erase(next);
    }

    std::size_t BlockCount() const { return m_blocks.size(); }

private:
    std::uint32_t m_perBlock;
    std::vector<std::unique_ptr<Block>> m_blocks;
    std::list<Block*> m_available;
};
