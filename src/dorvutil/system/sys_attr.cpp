#include "dorvutil/system/sys_attr.h"

#include <new>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/system/system_info.h"

namespace dorvutil {
namespace {

constexpr std::int32_t kTextSize = 1023;  // units of a text on its way into a line
constexpr char kTopLine[] = ",-------------------------------------------------------------------------------\r\n";
constexpr char kBottomLine[] = "`-------------------------------------------------------------------------------\r\n";

using Getter = std::int32_t (CSysAttr::*)(ORVustring&) const;
constexpr Getter kGetters[] = {
    &CSysAttr::GetAppVersionString, &CSysAttr::GetDeviceString, &CSysAttr::GetHwIDString,    &CSysAttr::GetCPUString,
    &CSysAttr::GetOSString,         &CSysAttr::GetMemoryString, &CSysAttr::GetDisplayString,
};

}  // namespace

std::int32_t CSysAttr::GetAppVersionString(ORVustring& text) const {
    COrvSystemMgrBase* const manager = GetSystemMgr();
    const ORVustring version = manager ? manager->GetAppVersion() : ORVustring();
    text = ORVustring::printf("AppVersion = %s", version.c_str());
    return 0;
}

std::int32_t CSysAttr::GetDeviceString(ORVustring& text) const {
    char16_t type[kTextSize] = {}, name[kTextSize] = {};
    System_GetPlatformType(type, kTextSize);
    System_GetDeviceName(name, kTextSize);
    text = ORVustring::printf("Platform = %S, DeviceName = %S", type, name);
    return 0;
}

std::int32_t CSysAttr::GetHwIDString(ORVustring& text) const {
    COrvSystemMgrBase* const manager = GetSystemMgr();
    const ORVustring id = manager ? manager->GetDeviceId() : ORVustring();
    text = ORVustring::printf("DeviceID = %s", id.c_str());
    return 0;
}

std::int32_t CSysAttr::GetCPUString(ORVustring& text) const {
    std::uint32_t type = 0, count = 0, oemId = 0;
    std::uint16_t revision = 0;
    System_GetSystemInfo(&type, &revision, &count, &oemId);
    text = ORVustring::printf("CPUType = %d, CPURevision = %d, NumberOfCPUs = %d, CPU_OEM_ID = %d", type, revision,
                              count, oemId);
    return 0;
}

std::int32_t CSysAttr::GetOSString(ORVustring& text) const {
    char16_t name[kTextSize] = {};
    std::int32_t code = 0;
    System_GetOSVersion(&code, name, kTextSize);
    text = ORVustring::printf("OSName = %S, OSVersionID = %d", name, code);
    return 0;
}

std::int32_t CSysAttr::GetMemoryString(ORVustring& text) const {
    std::uint32_t storage = 0, memory = 0;
    System_GetMemorySize(&storage, &memory);
    text = ORVustring::printf("RAMSize = %d, FlashStorageSize = %d", memory, storage);
    return 0;
}

std::int32_t CSysAttr::GetDisplayString(ORVustring& text) const {
    std::int32_t width = 0, height = 0, depth = 0;
    System_GetDisplayInfo(&width, &height, &depth);
    text = ORVustring::printf("Display = %d x %d x %d bpp", width, height, depth);
    return 0;
}

std::int32_t CSysAttr::DumpAllSysAttrStrings(ORVustring& text) const {
    text = kTopLine;
    ORVustring line;
    for (const Getter getter : kGetters) {
        (this->*getter)(line);
        text += "| ";
        text += line;
        text += "\r\n";
    }
    text += kBottomLine;
    return 0;
}

CSysAttr* CreateSysAttr() { return new (std::nothrow) CSysAttr; }

}  // namespace dorvutil
