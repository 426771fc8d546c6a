#include "dorvutil/system/system_mgr.h"

namespace dorvutil {
namespace {

// A copy that shares nothing with the string it came from, so that each may go its own way on its own thread.
ORVustring PrivateCopy(const ORVustring& text) { return ORVustring(text.c_str()); }

}  // namespace

COrvSystemMgrBase::~COrvSystemMgrBase() = default;

bool COrvSystemMgrBase::GetUNCPath(const char16_t*, char16_t*, std::int32_t) { return false; }

bool COrvSystemMgrBase::HasPCMCIASupport() { return false; }

std::int32_t COrvSystemMgrBase::GetLocaleInfo(std::uint32_t, std::uint32_t, char16_t*, std::int32_t) { return 0; }

bool COrvSystemMgrBase::GetFileVersion(const char16_t*, char16_t* out, std::int32_t size) {
    if (out && size > 0) *out = u'\0';
    return false;
}

bool COrvSystemMgrBase::GetMACAddress(char*, std::int32_t) { return false; }

std::int32_t COrvSystemMgrBase::GetVolumeSerialNumber(const char16_t*, std::uint32_t* serial) {
    if (serial) *serial = 0;
    return -1;
}

std::int32_t COrvSystemMgrBase::GetHostName(char*, char*) { return -1; }

void* COrvSystemMgrBase::MemoryMapFile(const char*, std::uint64_t*) { return nullptr; }

bool COrvSystemMgrBase::MemoryUnMapFile(void*) { return false; }

MemoryMapHandle COrvSystemMgrBase::CreateSharedMemMapping(const char*, std::uint32_t, MemoryMap_Protection) {
    return nullptr;
}

void* COrvSystemMgrBase::MapMemView(MemoryMapHandle) { return nullptr; }

std::uint32_t COrvSystemMgrBase::GetProcessId() { return 0; }

bool COrvSystemMgrBase::IsTouchscreen() { return false; }

bool COrvSystemMgrBase::GetDisplayInfo(std::int32_t*, std::int32_t*, std::int32_t*) { return false; }

bool COrvSystemMgrBase::GetMemorySize(std::uint32_t*, std::uint32_t*) { return false; }

bool COrvSystemMgrBase::ClearStatusByte(std::uint8_t* status) {
    if (status) *status = 0;
    return false;
}

bool COrvSystemMgrBase::GetPixelFormat(std::int32_t*) { return false; }

bool COrvSystemMgrBase::GetIMEINumber(char16_t*, std::int32_t) { return false; }

bool COrvSystemMgrBase::GetCarrier(char16_t*, std::int32_t) { return false; }

void COrvSystemMgrBase::OpenDocumentAndQuit(const ORVustring&) {}

void COrvSystemMgrBase::PlatformIdle() {}

const char* COrvSystemMgrBase::GetBundleId() { return ""; }

ORVustring COrvSystemMgrBase::GetAppVersion() { return {}; }

void COrvSystemMgrBase::Reserved() {}

ORVustring COrvSystemMgrBase::GetDeviceId() {
    const TScopedLock<critSec> hold(m_lock);
    char mac[13];
    if (m_deviceId.empty() && GetMACAddress(mac, sizeof(mac))) m_deviceId = mac;
    return PrivateCopy(m_deviceId);
}

void COrvSystemMgrBase::SetDeviceId(const ORVustring& id) {
    const TScopedLock<critSec> hold(m_lock);
    m_deviceId = id.c_str();
}

ORVustring COrvSystemMgrBase::GetProbeAddress() const {
    const TScopedLock<critSec> hold(m_lock);
    return PrivateCopy(m_probeAddress);
}

void COrvSystemMgrBase::SetProbeAddress(const ORVustring& address) {
    const TScopedLock<critSec> hold(m_lock);
    m_probeAddress = address.c_str();
}

}  // namespace dorvutil
