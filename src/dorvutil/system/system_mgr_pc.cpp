#include "dorvutil/messaging/callback.h"
#include "dorvutil/platform/host.h"
#include "dorvutil/platform/process.h"
#include "dorvutil/platform/system_facts.h"
#include "dorvutil/system/system_mgr.h"
#include "dorvutil/system/text_out.h"

namespace dorvutil {
namespace {

constexpr std::u16string_view kDeviceName = u"Win32 Desktop";
constexpr char kBundleId[] = "dorvutil.roadlyn";
constexpr EMsgID kQuitMessage{0};
constexpr std::int32_t kVersionTextSize = 24;

}  // namespace

std::int32_t COrvSystemMgrPc::GetDeviceName(char16_t* text, std::int32_t size) {
    return CopyOut(kDeviceName, text, size) ? 1 : 0;
}

std::int32_t COrvSystemMgrPc::GetPlatformType(char16_t* text, std::int32_t size) { return GetDeviceName(text, size); }

bool COrvSystemMgrPc::OpenDocument(const ORVustring& target) {
    return !target.empty() && platform::OpenWithDesktop(ORVwstring(target).T_str());
}

bool COrvSystemMgrPc::IsTouchscreen() { return platform::HasTouchscreen(); }

bool COrvSystemMgrPc::GetDisplayInfo(std::int32_t* width, std::int32_t* height, std::int32_t* bitsPerPixel) {
    platform::DisplayFacts display;
    if (platform::QueryDisplay(display)) {
        if (width) *width = display.width;
        if (height) *height = display.height;
        if (bitsPerPixel) *bitsPerPixel = display.bitsPerPixel;
    }
    return false;
}

void COrvSystemMgrPc::OpenDocumentAndQuit(const ORVustring& target) {
    OpenDocument(target);
    DORV_InvokeCallback(kQuitMessage, nullptr);
}

const char* COrvSystemMgrPc::GetBundleId() { return kBundleId; }

ORVustring COrvSystemMgrPc::GetAppVersion() {
    char16_t version[kVersionTextSize];
    if (!GetFileVersion(platform::ModulePath().c_str(), version, kVersionTextSize)) return {};
    return ORVustring(version, -1);
}

}  // namespace dorvutil
