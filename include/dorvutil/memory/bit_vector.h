#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/memory/vector.h"

namespace dorvutil {

/// Array of bits in 32-bit words: bit i is bit i mod 32, counted from the least significant, of word i / 32. Callers
/// keep indices below the size; bits beyond the last word read as clear and setting them does nothing. Copying copies
/// the words. Not synchronised.
class DORVUTIL_API CBitVector {
public:
    CBitVector() = default;
    /// `bits` bits, all of them `value`.
    CBitVector(std::uint32_t bits, bool value);
    /// Reads binary digits, the last character being bit 0: '1' sets a bit, white space is skipped, anything else is a
    /// clear bit. Null gives no bits.
    explicit CBitVector(const char* text);

    /// Gives every bit, old and new, the value; no bits when memory runs out.
    void SetSize(std::uint32_t bits, bool value);

    void Set();
    void Set(std::uint32_t i) { Put(i, 1, true); }
    void Set(std::uint32_t i, std::uint32_t n) { Put(i, n, true); }  ///< Bits i to i + n - 1.
    void Clear();
    void Clear(std::uint32_t i) { Put(i, 1, false); }
    void Clear(std::uint32_t i, std::uint32_t n) { Put(i, n, false); }

    bool operator[](std::uint32_t i) const {
        const std::uint32_t word = i / 32;
        return word < m_words.Count() && (m_words.Data()[word] >> (i % 32) & 1) != 0;
    }
    /// Whether at least one, respectively every bit of i to i + n - 1 is set; false for n = 0.
    bool Or(std::uint32_t i, std::uint32_t n) const;
    bool And(std::uint32_t i, std::uint32_t n) const;
    /// Always true: indices are not checked.
    bool CheckRange(std::uint32_t i, std::uint32_t n) const;

private:
    void Put(std::uint32_t i, std::uint32_t n, bool value);
    std::uint64_t BitsHeld() const { return std::uint64_t{m_words.Count()} * 32; }

    TVector<std::uint32_t> m_words;
};

}  // namespace dorvutil
