#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace roadlyn {

/// Texts of all rows in one block, each between two line feeds (which no text contains), so that one scan of the block
/// meets the rows in their order.
class TextBlock {
public:
    TextBlock() : m_text("\n"), m_starts{1} {}

    void Add(std::string_view text);
    std::uint32_t Count() const { return static_cast<std::uint32_t>(m_starts.size() - 1); }
    std::string_view Row(std::uint32_t row) const {
        return {m_text.data() + m_starts[row], m_starts[row + 1] - m_starts[row] - 1};
    }
    /// The block itself; it begins with a line feed.
    std::string_view All() const { return m_text; }
    /// First row at or after `from` whose text, or the line feed before it, holds byte `position` of the block.
    std::uint32_t RowAt(std::size_t position, std::uint32_t from) const;
    std::size_t MemoryBytes() const { return m_text.capacity() + m_starts.capacity() * sizeof(m_starts[0]); }

private:
    std::string m_text;
    std::vector<std::uint32_t> m_starts;
};

/// One place in a text of a block.
struct Suffix {
    std::uint64_t key;  ///< The first eight bytes, for sorting.
    std::uint32_t row;
    std::uint32_t offset;
};

/// Sorts by text; equal texts by row.
void SortSuffixes(const TextBlock& texts, std::vector<Suffix>& suffixes);

/// The first eight bytes of a text as a number that sorts like the text.
std::uint64_t SuffixKey(std::string_view text);

/// Suffixes in text order, so that all that begin with some text are neighbours. 6 bytes each.
class SuffixList {
public:
    void Reserve(std::size_t count);
    void Add(const Suffix& suffix);
    void Shrink();
    /// Positions [first, second) of the suffixes that begin with `text`.
    std::pair<std::size_t, std::size_t> Find(const TextBlock& texts, std::string_view text) const;
    const std::uint32_t* Rows() const { return m_rows.data(); }
    std::size_t MemoryBytes() const;

private:
    std::vector<std::uint32_t> m_rows;
    std::vector<std::uint16_t> m_offsets;
};

}  // namespace roadlyn
