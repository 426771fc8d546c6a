#include "dorvutil/orvcache/cache_mgr.h"

#include <algorithm>
#include <limits>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/system/system_mgr.h"

namespace dorvutil {
namespace {

constexpr std::int32_t kLevels = 5;
constexpr std::int32_t kFixedBaselineKB = 11264;

// Least free memory, in MB, of levels 1 to 4.
constexpr std::int32_t kStartupThresholds[kLevels - 1] = {23, 35, 100, 300};
constexpr std::int32_t kRunningThresholds[kLevels - 1] = {13, 25, 64, 200};

// In percent, by memory level: what all caches get of the free memory, and each of that.
constexpr std::int32_t kBudgetShare[kLevels] = {50, 50, 50, 40, 40};
constexpr struct {
    std::int32_t share[kLevels];
    std::int32_t capMB;
} kCaches[kCacheCount] = {
    {{38, 40, 65, 70, 90}, 512},  // grid
    {{30, 30, 15, 10, 8}, 10},    // image
    {{5, 5, 5, 4, 2}, 5},         // polygon
    {{10, 5, 5, 5, 5}, 5},        // image preload
    {{20, 20, 10, 11, 15}, 20},   // link
};

std::int32_t Share(std::int32_t percent, std::int32_t of) { return static_cast<std::int32_t>(percent / 100.0 * of); }

}  // namespace

void COrvCacheMgr::InitDeviceSpecs(std::int32_t a, std::int32_t b, std::int32_t c, std::int32_t d, std::int32_t) {
    m_factorA = a;
    m_factorB = b;
    m_factorC = c;
    m_fourthValue = d;
}

void COrvCacheMgr::ForceMemory(std::int32_t startupKB, std::int32_t runningKB) {
    m_forcedStartupKB = startupKB;
    m_forcedRunningKB = runningKB;
}

std::int32_t COrvCacheMgr::GetBaselineMemoryReqKB() const {
    // Factors of any size must not overflow: the product wraps.
    const std::uint32_t product = static_cast<std::uint32_t>(m_factorA) * static_cast<std::uint32_t>(m_factorB) *
                                  static_cast<std::uint32_t>(m_factorC) * 3;
    return static_cast<std::int32_t>(product) / 1024 + kFixedBaselineKB;
}

// The first figure of all becomes the initial free memory.
std::int32_t COrvCacheMgr::FreeMemoryKB() {
    std::int32_t freeKB = m_startingUp ? m_forcedStartupKB : m_forcedRunningKB;
    if (m_forcedStartupKB == 0 || m_forcedRunningKB == 0) {
        double measuredKB = 0;
        if (COrvSystemMgrBase* const system = GetSystemMgr())
            system->GetMemoryStatus(&measuredKB, nullptr, nullptr, {});
        freeKB = static_cast<std::int32_t>(std::min<double>(measuredKB, std::numeric_limits<std::int32_t>::max()));
    }
    if (!m_measured) m_initialFreeKB = freeKB;
    m_measured = true;
    return freeKB;
}

std::int32_t COrvCacheMgr::CalculateMemoryLevel(std::int32_t& freeKB) {
    freeKB = FreeMemoryKB();
    const auto& thresholds = m_startingUp ? kStartupThresholds : kRunningThresholds;
    std::int32_t level = 0;
    while (level < kLevels - 1 && thresholds[level] <= freeKB / 1024) ++level;
    return level;
}

std::int32_t COrvCacheMgr::GetMemoryLevel(bool cachedOnly) {
    const bool keep = cachedOnly || (m_startingUp && m_memoryLevel >= 0);
    if (!keep) {
        std::int32_t freeKB = 0;
        m_memoryLevel = CalculateMemoryLevel(freeKB);
    }
    return m_memoryLevel;
}

void COrvCacheMgr::ResizeCaches() {
    m_sized = true;
    std::int32_t freeKB = 0;
    const std::int32_t level = CalculateMemoryLevel(freeKB);
    const std::int64_t budget = std::int64_t{Share(kBudgetShare[level], freeKB)} - GetBaselineMemoryReqKB();
    if (budget <= 0) return;
    // A negative baseline, of absurd factors, could raise the budget beyond 32 bits.
    const auto budgetKB =
        static_cast<std::int32_t>(std::min<std::int64_t>(budget, std::numeric_limits<std::int32_t>::max()));
    for (std::size_t i = 0; i < m_sizesKB.size(); ++i) {
        m_sizesKB[i] = std::clamp(Share(kCaches[i].share[level], budgetKB), 0, kCaches[i].capMB * 1024);
    }
}

std::int32_t COrvCacheMgr::GetCacheSizeKB(EOrvCache cache, bool cachedOnly) {
    const bool keep = cachedOnly || (m_startingUp && m_sized);
    if (!keep) ResizeCaches();
    const auto index = static_cast<std::uint32_t>(cache);
    return index < m_sizesKB.size() ? m_sizesKB[index] : 0;
}

}  // namespace dorvutil
