#include "dorvutil/memory/bit_vector.h"

#include <algorithm>
#include <cstring>

namespace dorvutil {
namespace {

constexpr std::uint32_t kAllOnes = 0xFFFFFFFFu;

constexpr std::uint32_t WordsFor(std::uint32_t bits) { return bits / 32 + (bits % 32 != 0); }

// Calls `visit(word index, mask of the bits meant)` for every word that bits `begin` to `end` - 1 touch, until it
// answers false.
template <class F>
bool ForWords(std::uint64_t begin, std::uint64_t end, F visit) {
    while (begin < end) {
        const auto first = static_cast<std::uint32_t>(begin % 32);
        const auto bits = static_cast<std::uint32_t>(std::min<std::uint64_t>(32 - first, end - begin));
        if (!visit(static_cast<std::uint32_t>(begin / 32), (kAllOnes >> (32 - bits)) << first)) return false;
        begin += bits;
    }
    return true;
}

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

}  // namespace

CBitVector::CBitVector(std::uint32_t bits, bool value) {
    m_words.SetChunkSize(WordsFor(bits));
    SetSize(bits, value);
}

CBitVector::CBitVector(const char* text) {
    const std::size_t length = text ? std::strlen(text) : 0;
    if (length > kAllOnes) return;
    m_words.SetChunkSize(WordsFor(static_cast<std::uint32_t>(length)));
    SetSize(static_cast<std::uint32_t>(length), false);
    std::uint32_t bit = 0;
    for (std::size_t i = length; i-- > 0;) {
        if (IsSpace(text[i])) continue;
        if (text[i] == '1') Set(bit);
        ++bit;
    }
}

void CBitVector::SetSize(std::uint32_t bits, bool value) {
    const std::uint32_t words = WordsFor(bits);
    m_words.SetDefault(value ? kAllOnes : 0);
    if (!m_words.SetSize(words)) m_words.Empty();
    if (m_words.Capacity() != 0 && m_words.Count() < words) m_words.Replace(m_words.Default(), words - 1);
    m_words.Fill(m_words.Default());
}

void CBitVector::Set() { m_words.Fill(kAllOnes); }

void CBitVector::Clear() { m_words.Fill(0); }

void CBitVector::Put(std::uint32_t i, std::uint32_t n, bool value) {
    std::uint32_t* const words = m_words.Data();
    ForWords(i, std::min(std::uint64_t{i} + n, BitsHeld()), [=](std::uint32_t word, std::uint32_t mask) {
        words[word] = value ? words[word] | mask : words[word] & ~mask;
        return true;
    });
}

bool CBitVector::Or(std::uint32_t i, std::uint32_t n) const {
    const std::uint32_t* const words = m_words.Data();
    return !ForWords(i, std::min(std::uint64_t{i} + n, BitsHeld()),
                     [=](std::uint32_t word, std::uint32_t mask) { return (words[word] & mask) == 0; });
}

bool CBitVector::And(std::uint32_t i, std::uint32_t n) const {
    const std::uint32_t* const words = m_words.Data();
    const std::uint64_t end = std::uint64_t{i} + n;
    return n != 0 && end <= BitsHeld() &&
           ForWords(i, end, [=](std::uint32_t word, std::uint32_t mask) { return (words[word] & mask) == mask; });
}

bool CBitVector::CheckRange(std::uint32_t, std::uint32_t) const { return true; }

}  // namespace dorvutil
