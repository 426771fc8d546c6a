#include "dorvutil/time/file_time.h"

#include <cstdio>
#include <iterator>

#include "dorvutil/platform/file.h"
#include "dorvutil/text/encoding.h"
#include "dorvutil/time/calendar.h"
#include "dorvutil/time/current_zone.h"

namespace dorvutil {
namespace {

using calendar::FileTime;
using calendar::Ticks;

// Shifts by the current bias, times `sign`.
std::int32_t Shift(const ORV_FILETIME* from, ORV_FILETIME* to, std::int32_t sign) {
    std::int32_t bias = 0;
    if (!from || !to || !CurrentBias(bias)) return 0;
    std::uint64_t ticks = Ticks(*from);
    if (!calendar::MoveTicks(ticks, std::int64_t{bias} * 60 * sign)) return 0;
    *to = FileTime(ticks);
    return 1;
}

// File systems differ in how finely they keep times: whole seconds are common to all.
void StoreSeconds(std::uint64_t ticks, ORV_FILETIME* time) {
    TIME_FileTimeToORVFileTime(calendar::SecondsOf(ticks), time);
}

}  // namespace

std::int32_t TIME_CompareFileTime(const ORV_FILETIME* a, const ORV_FILETIME* b) {
    return a && b ? TIME_ORV_FILETIME_Compare(*a, *b) : 0;
}

std::int32_t TIME_ORV_FILETIME_Compare(const ORV_FILETIME& a, const ORV_FILETIME& b) {
    return Ticks(a) < Ticks(b) ? -1 : Ticks(a) > Ticks(b) ? 1 : 0;
}

bool operator<(const ORV_FILETIME& a, const ORV_FILETIME& b) { return Ticks(a) < Ticks(b); }

void TIME_FileTimeToORVFileTime(const std::int64_t& seconds, ORV_FILETIME* time) {
    if (!time) return;
    *time = FileTime((static_cast<std::uint64_t>(seconds) + calendar::kSecondsTo1970) * calendar::kTicksPerSecond);
}

std::int32_t TIME_FileTimeToLocalFileTime(const ORV_FILETIME* utc, ORV_FILETIME* local) {
    return Shift(utc, local, -1);
}

std::int32_t TIME_LocalFileTimeToFileTime(const ORV_FILETIME* local, ORV_FILETIME* utc) { return Shift(local, utc, 1); }

std::int32_t TIME_FileTimeToSystemTime(const ORV_FILETIME* time, ORV_SYSTEMTIME* calendar) {
    return time && calendar && calendar::FromTicks(Ticks(*time), *calendar) ? 1 : 0;
}

std::int32_t TIME_FileTimeToLocalTime(const ORV_FILETIME* time, ORV_SYSTEMTIME* calendar) {
    ORV_FILETIME local;
    return TIME_FileTimeToLocalFileTime(time, &local) != 0 ? TIME_FileTimeToSystemTime(&local, calendar) : 0;
}

std::int32_t TIME_SystemTimeToFileTime(const ORV_SYSTEMTIME* calendar, ORV_FILETIME* time) {
    std::uint64_t ticks = 0;
    if (!calendar || !time || !calendar::ToTicks(*calendar, ticks)) return 0;
    *time = FileTime(ticks);
    return 1;
}

bool TIME_ORVSystemTimeToORVLocalTime(const ORV_SYSTEMTIME* utc, ORV_SYSTEMTIME* local) {
    std::int32_t bias = 0;
    if (!utc || !local || !CurrentBias(bias)) return false;
    *local = *utc;
    if (bias != 0) TIME_AddTime(local, 0, -bias);
    return true;
}

void TIME_AddTime(ORV_SYSTEMTIME* time, std::int32_t hours, std::int32_t minutes) {
    std::uint64_t ticks = 0;
    if (!time || !calendar::ToTicks(*time, ticks)) return;
    if (calendar::MoveTicks(ticks, std::int64_t{hours} * 3600 + std::int64_t{minutes} * 60))
        calendar::FromTicks(ticks, *time);
}

void TIME_AddDaysToDate(const ORV_FILETIME& in, std::int32_t days, ORV_FILETIME& out) {
    constexpr std::uint64_t kTicksPerDay = calendar::kTicksPerSecond * calendar::kSecondsPerDay;
    out = FileTime(Ticks(in) + static_cast<std::uint64_t>(std::int64_t{days}) * kTicksPerDay);
}

std::int32_t TIME_GetDateDiff(const ORV_FILETIME& a, const ORV_FILETIME& b, ETimeDiffReturnType unit) {
    static constexpr std::int64_t kTicksPerUnit[] = {864'000'000'000, 36'000'000'000, 600'000'000, 10'000'000, 10'000};
    const auto ticks = static_cast<std::int64_t>(Ticks(b) - Ticks(a));
    const auto index = static_cast<std::uint32_t>(unit);
    const std::int64_t units = index < std::size(kTicksPerUnit) ? ticks / kTicksPerUnit[index] : ticks;
    return units > INT32_MAX ? 0 : static_cast<std::int32_t>(static_cast<std::uint32_t>(units));
}

void TIME_FileTimeToString(ORV_FILETIME time, char* buffer, std::int32_t size) {
    if (!buffer || size < 1) return;
    ORV_SYSTEMTIME t;
    TIME_FileTimeToSystemTime(&time, &t);  // leaves the zeros where it fails
    std::snprintf(buffer, static_cast<std::size_t>(size), "%02d/%02d/%02d %02d:%02d:%02d GMT", t.wMonth, t.wDay,
                  t.wYear, t.wHour, t.wMinute, t.wSecond);
}

std::int32_t TIME_GetFileTime(const char* path, ORV_FILETIME* created, ORV_FILETIME* accessed, ORV_FILETIME* written) {
    platform::FileStatus status;
    if (!path || !platform::GetFileStatus(path, status)) return 0;
    StoreSeconds(status.m_created, created);
    StoreSeconds(status.m_accessed, accessed);
    StoreSeconds(status.m_written, written);
    return 1;
}

std::int32_t TIME_GetFileTime(const char16_t* path, ORV_FILETIME* created, ORV_FILETIME* accessed,
                              ORV_FILETIME* written) {
    if (!path || *path == 0) return 0;
    constexpr std::uint32_t kMaxPath = 259;  // bytes, terminator not counted
    std::uint32_t units = 0;
    while (units <= kMaxPath + 1 && path[units] != 0) ++units;  // not to part the pair that exceeds the limit
    char narrow[kMaxPath + 1] = {};
    // What is no UTF-16 names no file; what is merely too long names the one that its beginning names.
    if (!ORVConvertUTF16toUTF8(path, units, narrow, kMaxPath) && GetNumBytesConvertedToUTF8(path, units) <= kMaxPath)
        return 0;
    return TIME_GetFileTime(narrow, created, accessed, written);
}

std::int32_t TIME_GetFileTime(const ORVustring& path, ORV_FILETIME* created, ORV_FILETIME* accessed,
                              ORV_FILETIME* written) {
    return TIME_GetFileTime(path.c_str(), created, accessed, written);
}

std::int32_t TIME_GetFileTime(const ORVwstring& path, ORV_FILETIME* created, ORV_FILETIME* accessed,
                              ORV_FILETIME* written) {
    return TIME_GetFileTime(path.uString(), created, accessed, written);
}

std::int32_t TIME_SetFileTime(COrvFileHandleBase*, const ORV_FILETIME*, const ORV_FILETIME*, const ORV_FILETIME*) {
    return 0;
}

}  // namespace dorvutil
