#pragma once

#include "dorvutil/frame/export.h"

/// Whether a category of diagnostics is on: ask before putting a costly line together. The answers are fixed.
namespace dorvutil {

DORVUTIL_API bool IsGeocodeLoggingEnabled();  ///< True.
DORVUTIL_API bool IsLangLoggingEnabled();     ///< True.
DORVUTIL_API bool IsUILoggingEnabled();       ///< True.

DORVUTIL_API bool IsAndroidLoggingEnabled();         ///< False, as all that follow.
DORVUTIL_API bool IsAppLayerLoggingEnabled();        ///< False.
DORVUTIL_API bool IsHashTableStatsLoggingEnabled();  ///< False.
DORVUTIL_API bool IsMultiTouchLoggingEnabled();      ///< False.
DORVUTIL_API bool IsOTADataLoggingEnabled();         ///< False.
DORVUTIL_API bool IsPOILoggingEnabled();             ///< False.
DORVUTIL_API bool IsPerfIntervalLoggingEnabled();    ///< False.
DORVUTIL_API bool IsStreamingLoggingEnabled();       ///< False.
DORVUTIL_API bool IsWikipediaLoggingEnabled();       ///< False.

}  // namespace dorvutil
