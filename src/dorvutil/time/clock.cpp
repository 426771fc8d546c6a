#include "dorvutil/time/clock.h"

#include "dorvutil/platform/clock.h"
#include "dorvutil/time/calendar.h"
#include "dorvutil/time/file_time.h"
#include "dorvutil/time/packed.h"

namespace dorvutil {

void TIME_GetCurrentFileTime(ORV_FILETIME& now) { now = calendar::FileTime(platform::FileTimeNow()); }

void TIME_GetSystemTime(ORV_SYSTEMTIME* now) {
    if (now) calendar::FromTicks(platform::FileTimeNow(), *now);
}

void TIME_GetLocalTime(ORV_SYSTEMTIME* now) {
    const ORV_FILETIME utc = calendar::FileTime(platform::FileTimeNow());
    // Without a zone the time is that of UTC.
    if (TIME_FileTimeToLocalTime(&utc, now) == 0) TIME_FileTimeToSystemTime(&utc, now);
}

std::int32_t TIME_SetSystemTime(const ORV_SYSTEMTIME* time) {
    std::uint64_t ticks = 0;
    return time && calendar::ToTicks(*time, ticks) && platform::SetFileTimeNow(ticks) ? 1 : 0;
}

std::int32_t TIME_SetLocalTime(const ORV_SYSTEMTIME* time) {
    ORV_FILETIME local, utc;
    if (TIME_SystemTimeToFileTime(time, &local) == 0 || TIME_LocalFileTimeToFileTime(&local, &utc) == 0) return 0;
    return platform::SetFileTimeNow(calendar::Ticks(utc)) ? 1 : 0;
}

std::uint32_t TIME_GetTickCount() { return platform::TickCount(); }

std::int32_t TIME_GetEpochTimeStamp() {
    return static_cast<std::int32_t>(calendar::SecondsOf(platform::FileTimeNow()));
}

void TIME_EncodeUTCDate(std::int32_t* date, std::int32_t* time) {
    const std::int64_t now = calendar::SecondsOf(platform::FileTimeNow());
    if (date) *date = TIME_UTCTimeToDDMMYY(now);
    if (time) *time = TIME_UTCTimeToHHMMSS(now);
}

void TIME_CurrentTimeToUTC(std::int32_t* date, std::int32_t* time) { TIME_EncodeUTCDate(date, time); }

bool TIME_GetCurrentUTCDateTime(ORV_UTCTIMESTAMP* now) {
    if (!now) return false;
    TIME_EncodeUTCDate(&now->m_date, &now->m_time);
    return true;
}

}  // namespace dorvutil
