#pragma once

#include <array>
#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/memory/vector.h"

namespace dorvutil {

/// The caches of the application.
enum EOrvCache : std::int32_t {
    EGridCache = 0,
    EImageCache = 1,
    EPolygonCache = 2,
    EImagePreloadCache = 3,
    ELinkCache = 4,
};
inline constexpr std::int32_t kCacheCount = 5;

/// What a call of LogPerfInterval marks.
enum EPerfInterval : std::int32_t {
    EPerfBegin = 0,
    EPerfEnd = 1,
    EPerfReport = 2,
};

/// Says how much memory each of the application's caches may use, from the memory the system has free, what the
/// application needs anyway, and a coarse memory level; and writes a profile of time and memory to the log. The caches
/// live in the host, which asks. There is one instance, owned by the registry (GetCacheMgr). Not synchronised: one
/// thread uses it.
///
/// While the application starts up the budgets are computed once; afterwards every query that may, computes anew.
class DORVUTIL_API COrvCacheMgr {
public:
    COrvCacheMgr() = default;
    COrvCacheMgr(const COrvCacheMgr&) = default;
    COrvCacheMgr& operator=(const COrvCacheMgr&) = default;
    ~COrvCacheMgr() = default;

    /// The device's size in three factors, the baseline being their product; `d` is kept, `e` ignored.
    void InitDeviceSpecs(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d, std::int32_t e);
    /// Replaces the measured free memory during and after start-up; no effect unless both are not 0.
    void ForceMemory(std::int32_t startupKB, std::int32_t runningKB);
    /// What the application needs beside its caches, in KB.
    std::int32_t GetBaselineMemoryReqKB() const;
    /// 0 (little memory) to 4. The last one computed with `cachedOnly` (-1: none yet), and during start-up.
    std::int32_t GetMemoryLevel(bool cachedOnly);
    /// Computes all budgets. They stay as they were when there is not even the baseline.
    void ResizeCaches();
    /// The budget of a cache in KB: as it stands with `cachedOnly`, and during start-up once it has been computed;
    /// otherwise computed anew. 0 for no such cache.
    std::int32_t GetCacheSizeKB(EOrvCache cache, bool cachedOnly);
    void SetStartupComplete() { m_startingUp = false; }
    /// The first free memory ever computed, in KB; 0 before.
    std::int32_t GetInitialMemoryAvailKB() const { return m_initialFreeKB; }

    /// Marks the begin or end of an interval, which may lie inside another, or writes a report of the caches; `kind` is
    /// an EPerfInterval, others count as a call and do nothing. `detail` (may be null) follows `name` in parentheses.
    /// Lines go to the log, cut to 511 bytes; without a log manager nowhere. From call 10002 on begin and end are
    /// ignored. The report asks each cache for its size in KB: message 178 with a CBDataNormal whose first number is
    /// the cache; the answer is the second.
    void LogPerfInterval(std::int32_t kind, const char* name, const char* detail);

private:
    struct Interval {
        std::uint32_t m_startTick;  // milliseconds
        std::uint32_t m_nestedMs;   // spent in the intervals inside
        double m_startKB;           // free memory
    };
    struct Moment;

    std::int32_t CalculateMemoryLevel(std::int32_t& freeKB);
    std::int32_t FreeMemoryKB();
    void BeginInterval(const Moment& now);
    void EndInterval(const Moment& now);
    void WriteReport(const Moment& now) const;

    bool m_startingUp = true;
    bool m_sized = false;
    bool m_measured = false;  // m_initialFreeKB holds a figure
    std::int32_t m_memoryLevel = -1;
    std::int32_t m_initialFreeKB = 0;
    std::int32_t m_factorA = 800;
    std::int32_t m_factorB = 800;
    std::int32_t m_fourthValue = 0;
    std::int32_t m_factorC = 2;
    std::int32_t m_forcedStartupKB = 0;
    std::int32_t m_forcedRunningKB = 0;
    std::array<std::int32_t, kCacheCount> m_sizesKB{};
    std::uint32_t m_profileCalls = 0;
    TVector<Interval> m_intervals;  // open ones, outermost first
};

}  // namespace dorvutil
