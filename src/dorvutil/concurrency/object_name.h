#pragma once

#include <memory>

namespace dorvutil {

/// The wide form of a lock's narrow name: UTF-8, or Latin-1 byte by byte where it is not. Null for a null or empty name
/// and when memory ran out; `failed` tells the last. (The text conversions proper lie above the locks.)
std::unique_ptr<char16_t[]> WideObjectName(const char* name, bool& failed);

}  // namespace dorvutil
