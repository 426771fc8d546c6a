#pragma once

namespace dorvutil::dl {

/// Ends the process for a heap that is not what it should be, with one line on standard error: what is wrong, and with
/// which block or place.
[[noreturn]] void HeapFault(const char* what, const void* where);

}  // namespace dorvutil::dl
