#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"
#include "dorvutil/time/records.h"

/// File times: comparison, conversion, arithmetic, text, and those of files. Where the result is an int, it is non-zero
/// on success; on failure, which a null pointer is too, the outputs are as before. Input and output may be the same
/// record. Any thread.
namespace dorvutil {

class COrvFileHandleBase;

/// What TIME_GetDateDiff counts; any other value: units of 100 nanoseconds.
enum ETimeDiffReturnType : std::int32_t {
    eTimeDiffDays = 0,
    eTimeDiffHours = 1,
    eTimeDiffMinutes = 2,
    eTimeDiffSeconds = 3,
    eTimeDiffMilliseconds = 4,
};

/// -1, 0 or 1 as the first is earlier, equal or later; 0 when one is null.
DORVUTIL_API std::int32_t TIME_CompareFileTime(const ORV_FILETIME* a, const ORV_FILETIME* b);
DORVUTIL_API std::int32_t TIME_ORV_FILETIME_Compare(const ORV_FILETIME& a, const ORV_FILETIME& b);
DORVUTIL_API bool operator<(const ORV_FILETIME& a, const ORV_FILETIME& b);

/// From seconds since 1 January 1970 UTC; wraps outside the range of the count.
DORVUTIL_API void TIME_FileTimeToORVFileTime(const std::int64_t& seconds, ORV_FILETIME* time);

/// Shifts between UTC and the current zone, by the bias in force now, whichever time is converted. Fails where the
/// result would leave the range of the count.
DORVUTIL_API std::int32_t TIME_FileTimeToLocalFileTime(const ORV_FILETIME* utc, ORV_FILETIME* local);
DORVUTIL_API std::int32_t TIME_LocalFileTimeToFileTime(const ORV_FILETIME* local, ORV_FILETIME* utc);
/// Calendar form in UTC; fails from 2^63 on (September 30828).
DORVUTIL_API std::int32_t TIME_FileTimeToSystemTime(const ORV_FILETIME* time, ORV_SYSTEMTIME* calendar);
/// Calendar form in the current zone.
DORVUTIL_API std::int32_t TIME_FileTimeToLocalTime(const ORV_FILETIME* time, ORV_SYSTEMTIME* calendar);
/// The reverse of TIME_FileTimeToSystemTime, for the years 1601 to 30827; wDayOfWeek is not looked at.
DORVUTIL_API std::int32_t TIME_SystemTimeToFileTime(const ORV_SYSTEMTIME* calendar, ORV_FILETIME* time);
/// By the bias in force now. False, with `local` as before, when the zone cannot be had or a pointer is null; a `utc`
/// that is no time is copied as it is.
DORVUTIL_API bool TIME_ORVSystemTimeToORVLocalTime(const ORV_SYSTEMTIME* utc, ORV_SYSTEMTIME* local);

/// Moves `time` on, or back for negative numbers. Unchanged when it, or what it would become, is no time.
DORVUTIL_API void TIME_AddTime(ORV_SYSTEMTIME* time, std::int32_t hours, std::int32_t minutes);
/// `out` = `in` plus `days`, modulo 2^64 units. Both may be the same record.
DORVUTIL_API void TIME_AddDaysToDate(const ORV_FILETIME& in, std::int32_t days, ORV_FILETIME& out);
/// `b` - `a`, cut to whole units of `unit` towards zero. Beyond 0x7FFFFFFF the result is 0; of a negative difference
/// it is the low 32 bits.
DORVUTIL_API std::int32_t TIME_GetDateDiff(const ORV_FILETIME& a, const ORV_FILETIME& b, ETimeDiffReturnType unit);

/// Writes "MM/DD/YYYY hh:mm:ss GMT", cut to `size` - 1 characters, and a terminator; every field is 0 for a time that
/// has no calendar form. Nothing for a null buffer or a size below 1.
DORVUTIL_API void TIME_FileTimeToString(ORV_FILETIME time, char* buffer, std::int32_t size);

/// The times of a file or folder, to whole seconds; each output may be null. 1, or 0 when it cannot be examined. Paths
/// are UTF-8 or UTF-16; a wide path given as a pointer is cut at 259 bytes of UTF-8.
DORVUTIL_API std::int32_t TIME_GetFileTime(const char* path, ORV_FILETIME* created, ORV_FILETIME* accessed,
                                           ORV_FILETIME* written);
DORVUTIL_API std::int32_t TIME_GetFileTime(const char16_t* path, ORV_FILETIME* created, ORV_FILETIME* accessed,
                                           ORV_FILETIME* written);
DORVUTIL_API std::int32_t TIME_GetFileTime(const ORVustring& path, ORV_FILETIME* created, ORV_FILETIME* accessed,
                                           ORV_FILETIME* written);
DORVUTIL_API std::int32_t TIME_GetFileTime(const ORVwstring& path, ORV_FILETIME* created, ORV_FILETIME* accessed,
                                           ORV_FILETIME* written);
/// Not supported: 0.
DORVUTIL_API std::int32_t TIME_SetFileTime(COrvFileHandleBase* file, const ORV_FILETIME* created,
                                           const ORV_FILETIME* accessed, const ORV_FILETIME* written);

}  // namespace dorvutil
