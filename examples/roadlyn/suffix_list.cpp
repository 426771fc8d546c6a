#include "suffix_list.h"

#include <algorithm>
#include <cstring>

namespace roadlyn {

void TextBlock::Add(std::string_view text) {
    m_text += text;
    m_text += '\n';
    m_starts.push_back(static_cast<std::uint32_t>(m_text.size()));
}

std::uint32_t TextBlock::RowAt(std::size_t position, std::uint32_t from) const {
    // The row is mostly near: double the step until it is passed.
    std::size_t step = 1;
    std::size_t low = from;
    while (low + step < Count() && m_starts[low + step] <= position + 1) {
        low += step;
        step *= 2;
    }
    const auto begin = m_starts.begin() + static_cast<std::ptrdiff_t>(low);
    const auto end = m_starts.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(low + step, Count()));
    return static_cast<std::uint32_t>(std::upper_bound(begin, end, position + 1) - m_starts.begin() - 1);
}

std::uint64_t SuffixKey(std::string_view text) {
    std::uint64_t key = 0;
    for (std::size_t i = 0; i < 8; ++i) key = key << 8 | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0u);
    return key;
}

void SortSuffixes(const TextBlock& texts, std::vector<Suffix>& suffixes) {
    std::sort(suffixes.begin(), suffixes.end(), [&texts](const Suffix& a, const Suffix& b) {
        if (a.key != b.key) return a.key < b.key;
        if ((a.key & 0xFF) != 0) {  // eight bytes say no more
            const std::string_view textA = texts.Row(a.row).substr(a.offset + 8);
            const std::string_view textB = texts.Row(b.row).substr(b.offset + 8);
            if (const int order = textA.compare(textB); order != 0) return order < 0;
        }
        return a.row != b.row ? a.row < b.row : a.offset < b.offset;
    });
}

void SuffixList::Reserve(std::size_t count) {
    m_rows.reserve(count);
    m_offsets.reserve(count);
}

void SuffixList::Add(const Suffix& suffix) {
    m_rows.push_back(suffix.row);
    m_offsets.push_back(static_cast<std::uint16_t>(suffix.offset));
}

void SuffixList::Shrink() {
    m_rows.shrink_to_fit();
    m_offsets.shrink_to_fit();
}

std::pair<std::size_t, std::size_t> SuffixList::Find(const TextBlock& texts, std::string_view text) const {
    const auto search = [&](std::size_t low, std::size_t high, int least) {  // first suffix whose order is >= least
        while (low < high) {
            const std::size_t middle = low + (high - low) / 2;
            const std::string_view suffix = texts.Row(m_rows[middle]).substr(m_offsets[middle], text.size());
            const int order = suffix.compare(text);
            if ((order > 0) - (order < 0) >= least)
                high = middle;
            else
                low = middle + 1;
        }
        return low;
    };
    const std::size_t first = search(0, m_rows.size(), 0);
    return {first, search(first, m_rows.size(), 1)};
}

std::size_t SuffixList::MemoryBytes() const {
    return m_rows.capacity() * sizeof(m_rows[0]) + m_offsets.capacity() * sizeof(m_offsets[0]);
}

}  // namespace roadlyn
