#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"

namespace dorvutil {

/// The system in lines of text, for the head of a log file. Each getter replaces `text` and returns 0; what nobody can
/// tell is missing, or 0, in the line. There is one instance, owned by the registry (GetSysAttr). It has no state: any
/// thread.
class DORVUTIL_API CSysAttr {
public:
    std::int32_t GetAppVersionString(ORVustring& text) const;  ///< "AppVersion = 1.2.3.4"
    std::int32_t GetDeviceString(ORVustring& text) const;      ///< "Platform = …, DeviceName = …"
    std::int32_t GetHwIDString(ORVustring& text) const;        ///< "DeviceID = …"
    std::int32_t GetCPUString(ORVustring& text) const;         ///< Type, revision, number and architecture.
    std::int32_t GetOSString(ORVustring& text) const;          ///< "OSName = …, OSVersionID = …"
    std::int32_t GetMemoryString(ORVustring& text) const;      ///< Bytes, as signed 32-bit numbers.
    std::int32_t GetDisplayString(ORVustring& text) const;     ///< "Display = width x height x depth bpp"
    /// All of them in a frame, lines ended by CR LF.
    std::int32_t DumpAllSysAttrStrings(ORVustring& text) const;
};

/// A new object; null when memory ran out. The caller owns it.
[[nodiscard]] DORVUTIL_API CSysAttr* CreateSysAttr();

}  // namespace dorvutil
