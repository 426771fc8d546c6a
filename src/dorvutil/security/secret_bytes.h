#pragma once

#include <cstddef>
#include <cstdint>

#include "dorvutil/memory/heap.h"
#include "dorvutil/security/secure_clear.h"

namespace dorvutil {

/// Bytes that are cleared when they die.
template <std::size_t n>
struct SecretBytes {
    SecretBytes() = default;
    SecretBytes(const SecretBytes&) = delete;
    SecretBytes& operator=(const SecretBytes&) = delete;
    ~SecretBytes() { SecureClear(m_bytes, n); }

    std::uint8_t m_bytes[n];
};

/// Owns a block from the heap, null or not, and clears `length` bytes of it before it goes back.
class SecretBlock {
public:
    SecretBlock(std::uint8_t* block, std::size_t length) : m_block(block), m_length(length) {}
    SecretBlock(const SecretBlock&) = delete;
    SecretBlock& operator=(const SecretBlock&) = delete;
    ~SecretBlock() {
        if (m_block) SecureClear(m_block, m_length);
        Mem_Free(m_block);
    }

    std::uint8_t* Data() const { return m_block; }

private:
    std::uint8_t* m_block;
    std::size_t m_length;
};

}  // namespace dorvutil
