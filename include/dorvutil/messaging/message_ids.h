#pragma once

#include <cstdint>

namespace dorvutil {

/// Identifier of a message: 0 to kMessageCount - 1. Their meaning is the host's, but for kUIMessage.
enum EMsgID : std::uint32_t {
    kUIMessage = 1,       ///< Goes to the host's UI-message callback and to nobody else.
    kMessageCount = 203,  ///< The first value that is no identifier: everything ignores it and those above.
};

}  // namespace dorvutil
