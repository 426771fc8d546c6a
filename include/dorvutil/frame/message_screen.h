#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

namespace dorvutil {

class ORVustring;

/// What a host installs in the registry to show message screens in its own style.
class DORVUTIL_API MessageScreenProducer {
public:
    /// Shows `text` under `caption` in the style of a system message box and returns the button pressed. Called on the
    /// thread that asked for the screen.
    virtual std::int32_t ShowMessageScreen(std::uint32_t style, const ORVustring& text, const ORVustring& caption) = 0;

    virtual ~MessageScreenProducer();  // behind the operation, whose slot comes first
};

/// For hosts without a system message queue: takes a quit request that a message screen posted. True, with its exit
/// code, once for each request. Any thread.
DORVUTIL_API bool TakePostedQuit(std::int32_t& exitCode);

}  // namespace dorvutil
