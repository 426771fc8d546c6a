#pragma once

#include <cstddef>

namespace dorvutil {

/// FixNameCasing on buffers: `text` has `length` bytes (a zero byte is no white space here), `out` room for as many.
/// Returns the number of bytes written, never more than `length`; nothing is terminated.
std::size_t FixNameCasingBytes(const char* text, std::size_t length, char* out);

}  // namespace dorvutil
