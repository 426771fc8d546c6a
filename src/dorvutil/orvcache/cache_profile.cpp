#include <cstdarg>
#include <cstdio>

#include "dorvutil/messaging/callback.h"
#include "dorvutil/messaging/payload.h"
#include "dorvutil/orvcache/cache_mgr.h"
#include "dorvutil/orvcache/profile_log.h"
#include "dorvutil/platform/clock.h"

namespace dorvutil {
namespace {

constexpr std::size_t kLineSize = 512;  // bytes with the end mark: what a log record holds
constexpr std::uint32_t kMostIntervalCalls = 10001;
constexpr std::int32_t kLabelWidth = 70;
constexpr EMsgID kCacheSizeMessage{178};
constexpr char kSeparator[] = "|---------------------------------------------|";
constexpr char kEndLine[] = "===============================================";

constexpr const char* kCacheNames[kCacheCount] = {"EGridCache", "EImageCache", "EPolygonCache", "EImagePreloadCache",
                                                  "ELinkCache"};

// The one place that sends lines away.
[[gnu::format(printf, 1, 2)]] void WriteLine(const char* format, ...) {
    char line[kLineSize];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof(line), format, arguments);
    va_end(arguments);
    PublishProfileLine(line);
}

std::int32_t CacheInUseKB(std::int32_t cache) {
    CBDataNormal question(cache, ORVwstring(), 0);
    DORV_InvokeCallback(kCacheSizeMessage, &question);
    return question.m_second;
}

}  // namespace

// One call of LogPerfInterval.
struct COrvCacheMgr::Moment {
    Moment(const char* name, const char* detail, std::int32_t freeKB) : m_memoryKB(freeKB) {
        const char* const shown = name ? name : "";
        if (detail) {
            std::snprintf(m_label, sizeof(m_label), "%s (%s)", shown, detail);
        } else {
            std::snprintf(m_label, sizeof(m_label), "%s", shown);
        }
    }

    const std::uint32_t m_tick = platform::TickCount();
    const std::int32_t m_memoryKB;
    char m_label[kLineSize];
};

void COrvCacheMgr::LogPerfInterval(std::int32_t kind, const char* name, const char* detail) {
    if (m_profileCalls == 0) {
        WriteLine("%-6s%-6s%-10s%-7s%-10s%-70s", "[MS]", "[MS]", "[KB]", "[KB]", "[Functions]", "");
    }
    const bool intervalsEnded = m_profileCalls >= kMostIntervalCalls;
    ++m_profileCalls;
    if (intervalsEnded && (kind == EPerfBegin || kind == EPerfEnd)) return;
    const Moment now(name, detail, FreeMemoryKB());
    if (kind == EPerfBegin) BeginInterval(now);
    if (kind == EPerfEnd) EndInterval(now);
    if (kind == EPerfReport) WriteReport(now);
}

void COrvCacheMgr::BeginInterval(const Moment& now) {
    const std::int32_t depth = m_intervals.Add({now.m_tick, 0, static_cast<double>(now.m_memoryKB)});
    if (depth < 0) return;  // no memory
    WriteLine("%-*s%c%-70s", 2 * depth + 27, "", '+', now.m_label);
}

void COrvCacheMgr::EndInterval(const Moment& now) {
    const auto depth = static_cast<std::int32_t>(m_intervals.Count());
    if (depth == 0) return;
    const Interval ended = m_intervals.Last();
    // Unsigned difference: right when the tick wraps.
    const std::uint32_t elapsedMs = now.m_tick - ended.m_startTick;
    const double memoryKB = now.m_memoryKB;
    WriteLine("%-6d%-6d%-10.0f%-7.0f%-*s%c%-70s", static_cast<std::int32_t>(elapsedMs),
              static_cast<std::int32_t>(ended.m_nestedMs), memoryKB, memoryKB - ended.m_startKB, 2 * depth - 2, "", '-',
              now.m_label);
    m_intervals.DeleteAt(m_intervals.Count() - 1);
    if (m_intervals.Count() != 0) m_intervals.Last().m_nestedMs += elapsedMs;
}

void COrvCacheMgr::WriteReport(const Moment& now) const {
    WriteLine("============= %-*s ==============", kLabelWidth, now.m_label);
    WriteLine("|%-25s%-20s|", "Cache", "MemoryInUseKB");
    WriteLine("%s", kSeparator);
    std::uint32_t sumKB = 0;  // wraps: the answers are the host's
    for (std::int32_t cache = 0; cache < kCacheCount; ++cache) {
        const std::int32_t inUseKB = CacheInUseKB(cache);
        sumKB += static_cast<std::uint32_t>(inUseKB);
        WriteLine("|%-25s%-20d|", kCacheNames[cache], inUseKB);
    }
    WriteLine("%s", kSeparator);
    WriteLine("|%-25s%-20d|", "Cache In Use", static_cast<std::int32_t>(sumKB));
    const std::uint32_t inUseKB =
        static_cast<std::uint32_t>(m_initialFreeKB) - static_cast<std::uint32_t>(now.m_memoryKB);
    WriteLine("|%-25s%-20d|", "Memory In Use", static_cast<std::int32_t>(inUseKB));
    WriteLine("%s", kEndLine);
}

}  // namespace dorvutil
