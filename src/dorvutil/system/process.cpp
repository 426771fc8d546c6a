#include "dorvutil/system/process.h"

#include "dorvutil/frame/accessors.h"
#include "dorvutil/platform/network.h"
#include "dorvutil/platform/process.h"
#include "dorvutil/system/system_mgr.h"

namespace dorvutil {
namespace {

constexpr char16_t kWindowClass[] = u"Roadlyn WndCls";
constexpr std::uint32_t kProbeTimeoutMs = 5000;
constexpr std::int32_t kLargestPort = 65535;

// "host:port", the host of an IPv6 address in brackets.
bool SplitAddress(const ORVustring& address, ORVustring& host, ORVustring& port) {
    const std::int32_t colon = address.find_last_of(":");
    if (colon <= 0) return false;
    host = address.substr(0, colon);
    port = address.substr(colon + 1);
    const bool bracketed = host[0] == '[' && host.length() > 2 && host.ends_with(ORVustring("]"));
    if (bracketed) host = host.substr(1, static_cast<std::int32_t>(host.length()) - 2);
    const std::int32_t number = port.to_long();
    const bool plainHost = bracketed || host.find_first_of("[]:/ ") < 0;
    return plainHost && port[0] >= '0' && port[0] <= '9' && port.IsNumeric() && number > 0 && number <= kLargestPort;
}

}  // namespace

void* PM_GetRoadlynWindow() { return platform::FindWindowOfClass(kWindowClass); }

std::int32_t PM_TerminateProcess() {
    void* const window = PM_GetRoadlynWindow();
    return window && platform::PostCloseToWindow(window) ? 0 : -1;
}

std::int32_t PM_CreateProcess(const char* exe, const char* folder, const char* args) {
    if (!exe) return kProcessWithoutName;
    const ORVwstring arguments(args, -1), file(exe, -1), start(folder, -1);
    return platform::StartProcess(arguments.T_str(), file.T_str(), start.T_str()) ? 0 : kProcessNotStarted;
}

std::uint32_t CheckIntConn() {
    COrvSystemMgrBase* const manager = GetSystemMgr();
    ORVustring host, port;
    if (manager) SplitAddress(manager->GetProbeAddress(), host, port);
    const std::uint32_t error = platform::ProbeConnection(host.c_str(), port.c_str(), kProbeTimeoutMs);
    return error == 0 ? 1 : error;
}

bool SetIntConnAddress(const char* address) {
    COrvSystemMgrBase* const manager = GetSystemMgr();
    const ORVustring text(address);
    ORVustring host, port;
    if (!manager || (!text.empty() && !SplitAddress(text, host, port))) return false;
    manager->SetProbeAddress(text);
    return true;
}

}  // namespace dorvutil
