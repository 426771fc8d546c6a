#include "dorvutil/frame/message_screen.h"

#include <cstdlib>

#include "dorvutil/frame/registry.h"
#include "dorvutil/messaging/callback.h"
#include "dorvutil/platform/host.h"
#include "dorvutil/text/string.h"

namespace dorvutil {
namespace {

constexpr std::int32_t kQuitCode = -1;
constexpr EMsgID kQuitMessage{0};
constexpr char kCaption[] = "Message";
constexpr std::uint32_t kExclamationStyle = 48;

}  // namespace

MessageScreenProducer::~MessageScreenProducer() = default;

bool TakePostedQuit(std::int32_t& exitCode) { return platform::PostedQuit(exitCode); }

std::int32_t ORVUtilGlobals::MessageScreen(const ORVustring& text, bool quit, const ORVustring& caption,
                                           std::uint32_t type, bool useProducer) {
    if (m_uiReady && useProducer && m_messageScreenProducer.load()) {
        return ShowThroughProducer(text, quit, caption, type);
    }
    const std::int32_t result = platform::ShowMessageBox(text.wc_str(false), caption.wc_str(false), type);
    if (quit) std::exit(kQuitCode);
    return result;
}

std::int32_t ORVUtilGlobals::ShowThroughProducer(const ORVustring& text, bool quit, const ORVustring& caption,
                                                 std::uint32_t type) {
    const std::int32_t result = m_messageScreenProducer.load()->ShowMessageScreen(type, text, caption);
    if (quit) {
        platform::PostQuit(kQuitCode);
        DORV_InvokeCallback(kQuitMessage, nullptr);
    }
    return result;
}

std::int32_t MessageScreen(const ORVustring& text) {
    return MessageScreen(text, kCaption, kExclamationStyle, false, true);
}

std::int32_t MessageScreen(const ORVustring& text, const ORVustring& caption, std::uint32_t style, bool quit,
                           bool useProducer) {
    return GetORVUtilGlobals()->MessageScreen(text, quit, caption, style, useProducer);
}

std::int32_t MessageScreen(const ORVustring& text, const char* caption, std::uint32_t style, bool quit,
                           bool useProducer) {
    return MessageScreen(text, ORVustring(caption), style, quit, useProducer);
}

std::int32_t MessageScreen(const ORVwstring& text, const char* caption, std::uint32_t style, bool quit,
                           bool useProducer) {
    return MessageScreen(ORVustring(text), caption, style, quit, useProducer);
}

std::int32_t MessageScreenQuit(const ORVustring& text) {
    return MessageScreen(text, kCaption, kExclamationStyle, true, true);
}

std::int32_t MessageScreenQuit(const ORVwstring& text) { return MessageScreenQuit(ORVustring(text)); }

}  // namespace dorvutil
