#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "dorvutil/memory/heap.h"
#include "dorvutil/security/encryption.h"

namespace dorvutil {

using ByteVector = std::vector<std::uint8_t>;

/// Written apart from the library's own functions.
inline ByteVector BytesOf(const std::string& digits) {
    ByteVector bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

inline std::string ToHex(const std::uint8_t* bytes, std::size_t n) {
    std::string digits;
    for (std::size_t i = 0; i < n; ++i) {
        digits += "0123456789abcdef"[bytes[i] >> 4];
        digits += "0123456789abcdef"[bytes[i] & 15];
    }
    return digits;
}

/// ByteVector without a pattern, the same in every run.
inline ByteVector Noise(std::size_t n, std::uint32_t seed = 1) {
    ByteVector bytes(n);
    for (std::uint8_t& byte : bytes) {
        seed = seed * 1664525u + 1013904223u;
        byte = static_cast<std::uint8_t>(seed >> 24);
    }
    return bytes;
}

inline std::uint32_t Size(const ByteVector& bytes) { return static_cast<std::uint32_t>(bytes.size()); }

/// What EncryptData or DecryptData handed out, given back to the heap.
struct Result {
    bool done;
    ByteVector bytes;
};
template <class Function, class... Input>
Result Call(Function function, const ByteVector& key, Input... input) {
    std::uint8_t untouched = 0;
    std::uint8_t* out = &untouched;
    std::uint32_t length = 0;
    const bool done = function(input..., &out, &length, key.data(), Size(key));
    Result result{done, out ? ByteVector(out, out + length) : ByteVector()};
    Mem_Free(out);
    return result;
}

}  // namespace dorvutil
