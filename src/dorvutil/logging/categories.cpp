#include "dorvutil/logging/categories.h"

namespace dorvutil {

bool IsGeocodeLoggingEnabled() { return true; }
bool IsLangLoggingEnabled() { return true; }
bool IsUILoggingEnabled() { return true; }

bool IsAndroidLoggingEnabled() { return false; }
bool IsAppLayerLoggingEnabled() { return false; }
bool IsHashTableStatsLoggingEnabled() { return false; }
bool IsMultiTouchLoggingEnabled() { return false; }
bool IsOTADataLoggingEnabled() { return false; }
bool IsPOILoggingEnabled() { return false; }
bool IsPerfIntervalLoggingEnabled() { return false; }
bool IsStreamingLoggingEnabled() { return false; }
bool IsWikipediaLoggingEnabled() { return false; }

}  // namespace dorvutil
