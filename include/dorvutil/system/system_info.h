#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/system/system_mgr.h"

/// The system manager for callers of plain functions. Those of the first group forward to the member of the same name
/// (system/system_mgr.h has the contracts) and report failure while there is no manager: false, -1, null, or 0 where
/// the result is a count. Any thread.
namespace dorvutil {

extern "C" {

DORVUTIL_API std::int32_t System_GetOSVersion(std::int32_t* platform, char16_t* text, std::int32_t size);
DORVUTIL_API std::int32_t System_GetDeviceName(char16_t* text, std::int32_t size);
DORVUTIL_API std::int32_t System_GetPlatformType(char16_t* text, std::int32_t size);
DORVUTIL_API bool System_GetMemoryStatus(double* availPhysKB, double* availVirtKB, double* freeDiskKB,
                                         const ORVustring& path = ORVustring());
DORVUTIL_API std::int32_t System_GetLocalNumberStr(const char* number, char* out, std::int32_t size,
                                                   std::int32_t decimals = -1, const char* decimalSep = nullptr);
DORVUTIL_API std::int32_t System_GetLocalNumberStrW(const char16_t* number, char16_t* out, std::int32_t size,
                                                    std::int32_t decimals = -1, const char16_t* decimalSep = nullptr);
DORVUTIL_API void System_GetSystemInfo(std::uint32_t* processorType, std::uint16_t* revision, std::uint32_t* count,
                                       std::uint32_t* oemId);
DORVUTIL_API bool System_GetUNCPath(const char16_t* path, char16_t* out, std::int32_t size);
DORVUTIL_API bool System_HasPCMCIASupport();
DORVUTIL_API std::int32_t System_GetLocaleInfo(std::uint32_t locale, std::uint32_t type, char16_t* out,
                                               std::int32_t size);
DORVUTIL_API bool System_GetFileVersion(const char16_t* file, char16_t* out, std::int32_t size);
DORVUTIL_API bool System_GetMACAddress(char* text, std::int32_t size);
DORVUTIL_API std::int32_t System_GetVolumeSerialNumber(const char16_t* path, std::uint32_t* serial);
DORVUTIL_API std::int32_t System_GetHostName(char* name, char* address);
[[nodiscard]] DORVUTIL_API void* System_MemoryMapFile(const char* path, std::uint64_t* size = nullptr);
DORVUTIL_API bool System_MemoryUnMapFile(void* view);
[[nodiscard]] DORVUTIL_API MemoryMapHandle System_CreateSharedMemMapping(const char* name, std::uint32_t size,
                                                                         MemoryMap_Protection protection);
[[nodiscard]] DORVUTIL_API void* System_MapMemView(MemoryMapHandle mapping);
DORVUTIL_API std::uint32_t System_GetProcessId();
DORVUTIL_API bool System_IsTouchscreen();
DORVUTIL_API bool System_GetDisplayInfo(std::int32_t* width, std::int32_t* height, std::int32_t* bitsPerPixel);
DORVUTIL_API bool System_GetMemorySize(std::uint32_t* storageBytes, std::uint32_t* ramBytes);
DORVUTIL_API bool System_GetPixelFormat(std::int32_t* format);
DORVUTIL_API bool System_GetIMEINumber(char16_t* text, std::int32_t size);
DORVUTIL_API bool System_GetCarrier(char16_t* text, std::int32_t size);
DORVUTIL_API const char* System_GetBundleId();

/// The rest needs no manager of its own.

/// Lets go of a shared memory block; its views live on. Null is allowed.
DORVUTIL_API void System_CloseSharedMemMapping(MemoryMapHandle mapping);
/// The locale of the user interface, process-wide; 0 until it is set. The library only keeps it.
DORVUTIL_API void System_SetUILocaleID(std::uint32_t locale);
DORVUTIL_API std::uint32_t System_GetUILocaleID();
DORVUTIL_API std::int32_t System_GetBuildVersionNumber();
/// True when the drive of `path` (empty: of the current folder) has more than `neededKB` free.
DORVUTIL_API bool System_HasSufficientMemory(std::uint32_t neededKB, const ORVustring& path = ORVustring());
DORVUTIL_API std::int32_t System_FlashStatus();            ///< 0
DORVUTIL_API std::int32_t System_SDStatus();               ///< 0
DORVUTIL_API void System_LogUserEvent(const char* event);  ///< Nothing.

}  // extern "C"

}  // namespace dorvutil
