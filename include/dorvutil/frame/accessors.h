#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

/// The way to every manager of the process: forward declarations and accessors, nothing else, so that any header may
/// include it. The managers are created together by the first accessor call and owned by the registry
/// (frame/registry.h). An accessor returns null while set-up is still under way on the same thread, after tear-down,
/// and for managers that this build does not have: callers test the pointer. Any thread may call them.
namespace dorvutil {

class Allocator;
class CallbackMgr;
class CFileMgr;
class CLoadedLibraryHash;
class CLogMgr;
class COrvAssertTracker;
class OrvBacklight;
class COrvBluetoothMgr;
class COrvCacheMgr;
class COrvCompass;
class COrvGSensor;
class COrvLowResTimerMgr;
class COrvMMSHandler;
class COrvSMSHandler;
class CORVStringAllocator;
class COrvSystemMgrPc;
class CPhoneCallMonitor;
class CSpecialCharMgr;
class CSysAttr;
class CTimeZoneUtil;
class ORVUtilGlobals;
class ProgressMgr;

/// The one registry of the process. Never null and never creates a manager.
DORVUTIL_API ORVUtilGlobals* GetORVUtilGlobals();

DORVUTIL_API COrvCacheMgr* GetCacheMgr();
DORVUTIL_API CORVStringAllocator* GetStringAllocator();
DORVUTIL_API CallbackMgr* GetCallbackMgr();
DORVUTIL_API COrvSMSHandler* GetSMSHandler();           ///< Always null.
DORVUTIL_API COrvMMSHandler* GetMMSHandler();           ///< Always null.
DORVUTIL_API CPhoneCallMonitor* GetPhoneCallMonitor();  ///< Always null.
DORVUTIL_API CLogMgr* GetLogMgr();
DORVUTIL_API COrvGSensor* GetGSensor();
DORVUTIL_API CTimeZoneUtil* GetTimeZoneUtil();
DORVUTIL_API CSysAttr* GetSysAttr();
DORVUTIL_API COrvCompass* GetMagneticCompass();
DORVUTIL_API COrvSystemMgrPc* GetSystemMgr();
DORVUTIL_API COrvLowResTimerMgr* GetLowResTimerMgr();

/// Library-internal accessors: same behaviour, not exported.
CFileMgr* GetFileMgr();
CSpecialCharMgr* GetSpecCharMgr();
CLoadedLibraryHash* GetLoadedLibraryHash();
ProgressMgr* GetProgressMgr();

/// The log manager as it stands, without setting anything up: null before set-up and after tear-down.
CLogMgr* LogMgrAsItIs();

/// The registry's object pools as they stand, without setting anything up: null before set-up and after tear-down.
/// Storage that may come from one of them or from the general heap goes back where Allocator::Contains says it lies.
Allocator* FileHandlePool();
Allocator* TimerAgentPool();
Allocator* EventChainPool();

/// Plain members of the registry that lower layers read; nothing is set up.
bool IsMouseDown();
std::uint32_t HardwareDeviceKind();
bool HardwareSecondFlag();

}  // namespace dorvutil
