#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

namespace dorvutil {

class ORVustring;
class ORVwstring;

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

/// Shows `text` as an exclamation captioned "Message" and returns the button pressed: through the host's producer when
/// the user interface is ready and one is installed, else as a system message box. Any thread.
DORVUTIL_API std::int32_t MessageScreen(const ORVustring& text);
/// The same with caption and style of one's own; the further arguments are those of ORVUtilGlobals::MessageScreen.
DORVUTIL_API std::int32_t MessageScreen(const ORVustring& text, const ORVustring& caption, std::uint32_t style,
                                        bool quit, bool useProducer);
DORVUTIL_API std::int32_t MessageScreen(const ORVustring& text, const char* caption, std::uint32_t style, bool quit,
                                        bool useProducer);
DORVUTIL_API std::int32_t MessageScreen(const ORVwstring& text, const char* caption, std::uint32_t style, bool quit,
                                        bool useProducer);
/// Shows `text` as the first form and quits: the producer's screen posts a quit request with code -1 and raises message
/// 0, the message box ends the process with exit code -1 and does not return.
DORVUTIL_API std::int32_t MessageScreenQuit(const ORVustring& text);
DORVUTIL_API std::int32_t MessageScreenQuit(const ORVwstring& text);

}  // namespace dorvutil
