#pragma once

#include "dorvutil/text/basic_string.h"
#include "dorvutil/text/string_file.h"

/// TOrvString: its form in files.
namespace dorvutil {

template <class T>
bool TOrvString<T>::FlattenMe(COrvFileHandleBase* file) const {
    const std::uint32_t n = length();
    const char header[2] = {static_cast<char>(n & 0xFF), static_cast<char>(n >> 8)};
    return WriteUnits(file, header, 2) && (n == 0 || WriteUnits(file, m_guts->m_data, n));
}

// The characters go into a block of their own, which becomes the text with as many as the file had.
template <class T>
bool TOrvString<T>::UnflattenMe(COrvFileHandleBase* file) {
    char header[2] = {};
    if (ReadUnits(file, header, 2) != 2) return false;
    const std::uint32_t n =
        static_cast<unsigned char>(header[0]) | static_cast<std::uint32_t>(static_cast<unsigned char>(header[1])) << 8;
    if (n == 0) return true;
    Guts* const block = Guts::Create(n);
    if (block == nullptr) return false;
    const std::uint32_t got = ReadUnits(file, block->m_data, n);
    block->m_length = static_cast<std::uint16_t>(got);
    block->zerofill();
    Release(m_guts);
    m_guts = block;
    return got == n;
}

}  // namespace dorvutil
