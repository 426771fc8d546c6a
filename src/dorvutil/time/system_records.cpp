#include "dorvutil/time/system_records.h"

#include <bit>

namespace dorvutil {
namespace {

// The two kinds of record are the same, byte for byte.
template <class From, class To>
void Copy(const From* from, To* to) {
    if (from && to) *to = std::bit_cast<To>(*from);
}

}  // namespace

void TIME_ORVFileTimeToFileTime(const ORV_FILETIME* from, FILETIME* to) { Copy(from, to); }
void TIME_FileTimeToORVFileTime(const FILETIME* from, ORV_FILETIME* to) { Copy(from, to); }
void TIME_ORVSystemTimeToSystemTime(const ORV_SYSTEMTIME* from, SYSTEMTIME* to) { Copy(from, to); }
void TIME_SystemTimeToORVSystemTime(const SYSTEMTIME* from, ORV_SYSTEMTIME* to) { Copy(from, to); }
void TIME_ORVTimeZoneInfoToTimeZoneInfo(const ORV_TIME_ZONE_INFORMATION* from, TIME_ZONE_INFORMATION* to) {
    Copy(from, to);
}
void TIME_TimeZoneInfoToORVTimeZoneInfo(const TIME_ZONE_INFORMATION* from, ORV_TIME_ZONE_INFORMATION* to) {
    Copy(from, to);
}

}  // namespace dorvutil
