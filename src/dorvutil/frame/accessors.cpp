#include "dorvutil/frame/accessors.h"

#include "dorvutil/frame/registry.h"

namespace dorvutil {

COrvCacheMgr* GetCacheMgr() { return GetORVUtilGlobals()->GetCacheMgr(); }
CORVStringAllocator* GetStringAllocator() { return GetORVUtilGlobals()->GetStringAllocator(); }
CallbackMgr* GetCallbackMgr() { return GetORVUtilGlobals()->GetCallbackMgr(); }
COrvSMSHandler* GetSMSHandler() { return GetORVUtilGlobals()->GetSMSHandler(); }
COrvMMSHandler* GetMMSHandler() { return GetORVUtilGlobals()->GetMMSHandler(); }
CPhoneCallMonitor* GetPhoneCallMonitor() { return GetORVUtilGlobals()->GetPhoneCallMonitor(); }
CLogMgr* GetLogMgr() { return GetORVUtilGlobals()->GetLogMgr(); }
COrvGSensor* GetGSensor() { return GetORVUtilGlobals()->GetGSensor(); }
CTimeZoneUtil* GetTimeZoneUtil() { return GetORVUtilGlobals()->GetTimeZoneUtil(); }
CSysAttr* GetSysAttr() { return GetORVUtilGlobals()->GetSysAttr(); }
COrvCompass* GetMagneticCompass() { return GetORVUtilGlobals()->GetMagneticCompass(); }
COrvSystemMgrPc* GetSystemMgr() { return GetORVUtilGlobals()->GetSystemMgr(); }
COrvLowResTimerMgr* GetLowResTimerMgr() { return GetORVUtilGlobals()->GetLowResTimerMgr(); }

CFileMgr* GetFileMgr() { return GetORVUtilGlobals()->GetFileMgr(); }
CSpecialCharMgr* GetSpecCharMgr() { return GetORVUtilGlobals()->GetSpecCharMgr(); }
CLoadedLibraryHash* GetLoadedLibraryHash() { return GetORVUtilGlobals()->LibraryHash(); }
ProgressMgr* GetProgressMgr() { return GetORVUtilGlobals()->GetProgressMgr(); }

CLogMgr* LogMgrAsItIs() { return GetORVUtilGlobals()->LogMgrAsItIs(); }

Allocator* FileHandlePool() { return GetORVUtilGlobals()->FileHandlePool(); }
Allocator* TimerAgentPool() { return GetORVUtilGlobals()->TimerAgentPool(); }
Allocator* EventChainPool() { return GetORVUtilGlobals()->EventChainPool(); }

bool IsMouseDown() { return GetORVUtilGlobals()->GetMouseDown(); }
std::uint32_t HardwareDeviceKind() { return GetORVUtilGlobals()->GetHardwareInfo().m_deviceKind; }
bool HardwareSecondFlag() { return GetORVUtilGlobals()->GetHardwareInfo().m_secondFlag; }

}  // namespace dorvutil
