#include "dorvutil/system/system_info.h"

#include <atomic>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/platform/mapping.h"

namespace dorvutil {
namespace {

constexpr std::int32_t kBuildNumber = 100;  // major * 10000 + minor * 100 + patch

constinit std::atomic<std::uint32_t> g_uiLocale{0};

// Calls a member of the manager; `otherwise` while there is none.
template <class R, class... Parameters, class... Arguments>
R Ask(R otherwise, R (COrvSystemMgrBase::*member)(Parameters...), Arguments&&... arguments) {
    COrvSystemMgrBase* const manager = GetSystemMgr();
    return manager ? (manager->*member)(arguments...) : otherwise;
}

}  // namespace

std::int32_t System_GetOSVersion(std::int32_t* platform, char16_t* text, std::int32_t size) {
    return Ask(-1, &COrvSystemMgrBase::GetOSVersion, platform, text, size);
}

std::int32_t System_GetDeviceName(char16_t* text, std::int32_t size) {
    return Ask(0, &COrvSystemMgrBase::GetDeviceName, text, size);
}

std::int32_t System_GetPlatformType(char16_t* text, std::int32_t size) {
    return Ask(0, &COrvSystemMgrBase::GetPlatformType, text, size);
}

bool System_GetMemoryStatus(double* availPhysKB, double* availVirtKB, double* freeDiskKB, const ORVustring& path) {
    return Ask(false, &COrvSystemMgrBase::GetMemoryStatus, availPhysKB, availVirtKB, freeDiskKB, path);
}

std::int32_t System_GetLocalNumberStr(const char* number, char* out, std::int32_t size, std::int32_t decimals,
                                      const char* decimalSep) {
    return Ask(0, &COrvSystemMgrBase::GetLocalNumberStr, number, out, size, decimals, decimalSep);
}

std::int32_t System_GetLocalNumberStrW(const char16_t* number, char16_t* out, std::int32_t size, std::int32_t decimals,
                                       const char16_t* decimalSep) {
    return Ask(0, &COrvSystemMgrBase::GetLocalNumberStrW, number, out, size, decimals, decimalSep);
}

void System_GetSystemInfo(std::uint32_t* processorType, std::uint16_t* revision, std::uint32_t* count,
                          std::uint32_t* oemId) {
    if (COrvSystemMgrBase* const manager = GetSystemMgr()) {
        manager->GetSystemInfo(processorType, revision, count, oemId);
    }
}

bool System_GetUNCPath(const char16_t* path, char16_t* out, std::int32_t size) {
    return Ask(false, &COrvSystemMgrBase::GetUNCPath, path, out, size);
}

bool System_HasPCMCIASupport() { return Ask(false, &COrvSystemMgrBase::HasPCMCIASupport); }

std::int32_t System_GetLocaleInfo(std::uint32_t locale, std::uint32_t type, char16_t* out, std::int32_t size) {
    return Ask(0, &COrvSystemMgrBase::GetLocaleInfo, locale, type, out, size);
}

bool System_GetFileVersion(const char16_t* file, char16_t* out, std::int32_t size) {
    return Ask(false, &COrvSystemMgrBase::GetFileVersion, file, out, size);
}

bool System_GetMACAddress(char* text, std::int32_t size) {
    return Ask(false, &COrvSystemMgrBase::GetMACAddress, text, size);
}

std::int32_t System_GetVolumeSerialNumber(const char16_t* path, std::uint32_t* serial) {
    return Ask(-1, &COrvSystemMgrBase::GetVolumeSerialNumber, path, serial);
}

std::int32_t System_GetHostName(char* name, char* address) {
    return Ask(-1, &COrvSystemMgrBase::GetHostName, name, address);
}

void* System_MemoryMapFile(const char* path, std::uint64_t* size) {
    return Ask(static_cast<void*>(nullptr), &COrvSystemMgrBase::MemoryMapFile, path, size);
}

bool System_MemoryUnMapFile(void* view) { return Ask(false, &COrvSystemMgrBase::MemoryUnMapFile, view); }

MemoryMapHandle System_CreateSharedMemMapping(const char* name, std::uint32_t size, MemoryMap_Protection protection) {
    return Ask(static_cast<void*>(nullptr), &COrvSystemMgrBase::CreateSharedMemMapping, name, size, protection);
}

void* System_MapMemView(MemoryMapHandle mapping) {
    return Ask(static_cast<void*>(nullptr), &COrvSystemMgrBase::MapMemView, mapping);
}

std::uint32_t System_GetProcessId() { return Ask(0u, &COrvSystemMgrBase::GetProcessId); }

bool System_IsTouchscreen() { return Ask(false, &COrvSystemMgrBase::IsTouchscreen); }

bool System_GetDisplayInfo(std::int32_t* width, std::int32_t* height, std::int32_t* bitsPerPixel) {
    return Ask(false, &COrvSystemMgrBase::GetDisplayInfo, width, height, bitsPerPixel);
}

bool System_GetMemorySize(std::uint32_t* storageBytes, std::uint32_t* ramBytes) {
    return Ask(false, &COrvSystemMgrBase::GetMemorySize, storageBytes, ramBytes);
}

bool System_GetPixelFormat(std::int32_t* format) { return Ask(false, &COrvSystemMgrBase::GetPixelFormat, format); }

bool System_GetIMEINumber(char16_t* text, std::int32_t size) {
    return Ask(false, &COrvSystemMgrBase::GetIMEINumber, text, size);
}

bool System_GetCarrier(char16_t* text, std::int32_t size) {
    return Ask(false, &COrvSystemMgrBase::GetCarrier, text, size);
}

const char* System_GetBundleId() { return Ask(static_cast<const char*>(nullptr), &COrvSystemMgrBase::GetBundleId); }

void System_CloseSharedMemMapping(MemoryMapHandle mapping) {
    platform::CloseSharedMemory(static_cast<platform::SharedMemoryObject*>(mapping));
}

void System_SetUILocaleID(std::uint32_t locale) { g_uiLocale.store(locale, std::memory_order_relaxed); }

std::uint32_t System_GetUILocaleID() { return g_uiLocale.load(std::memory_order_relaxed); }

std::int32_t System_GetBuildVersionNumber() { return kBuildNumber; }

bool System_HasSufficientMemory(std::uint32_t neededKB, const ORVustring& path) {
    double freeKB = 0;
    return System_GetMemoryStatus(nullptr, nullptr, &freeKB, path) && freeKB > neededKB;
}

std::int32_t System_FlashStatus() { return 0; }

std::int32_t System_SDStatus() { return 0; }

void System_LogUserEvent(const char*) {}

}  // namespace dorvutil
