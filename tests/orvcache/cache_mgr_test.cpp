#include "dorvutil/orvcache/cache_mgr.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/frame/registry.h"
#include "dorvutil/platform/system_facts.h"
#include "messaging/registry_down.h"

namespace dorvutil {
namespace {

constexpr std::int32_t kMB = 1024;
constexpr std::int32_t kHuge = std::numeric_limits<std::int32_t>::max();

TEST(CacheMgr, BaselineIsTheProductOfTheFactors) {
    COrvCacheMgr caches;
    EXPECT_EQ(caches.GetBaselineMemoryReqKB(), 3750 + 11264);
    caches.InitDeviceSpecs(1024, 1, 2, 9, 9);
    EXPECT_EQ(caches.GetBaselineMemoryReqKB(), 6 + 11264);
    caches.InitDeviceSpecs(kHuge, kHuge, kHuge, 0, 0);
    caches.GetBaselineMemoryReqKB();  // wraps, but is no overflow
    caches.ForceMemory(kHuge, kHuge);
    caches.ResizeCaches();
}

TEST(CacheMgr, LevelCountsTheThresholdsOfThePhase) {
    static constexpr struct {
        std::int32_t freeKB, startup, running;
    } cases[] = {
        {-1, 0, 0},           {13 * kMB - 1, 0, 0},  {13 * kMB, 0, 1},      {23 * kMB - 1, 0, 1},
        {23 * kMB, 1, 1},     {25 * kMB, 1, 2},      {35 * kMB - 1, 1, 2},  {35 * kMB, 2, 2},
        {64 * kMB - 1, 2, 2}, {64 * kMB, 2, 3},      {100 * kMB - 1, 2, 3}, {100 * kMB, 3, 3},
        {200 * kMB, 3, 4},    {300 * kMB - 1, 3, 4}, {300 * kMB, 4, 4},     {kHuge, 4, 4},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.freeKB);
        COrvCacheMgr caches;
        caches.ForceMemory(c.freeKB, c.freeKB);
        EXPECT_EQ(caches.GetMemoryLevel(true), -1);
        EXPECT_EQ(caches.GetMemoryLevel(false), c.startup);
        caches.SetStartupComplete();
        EXPECT_EQ(caches.GetMemoryLevel(true), c.startup);
        EXPECT_EQ(caches.GetMemoryLevel(false), c.running);
        EXPECT_EQ(caches.GetMemoryLevel(true), c.running);
        EXPECT_EQ(caches.GetInitialMemoryAvailKB(), c.freeKB);
    }
}

TEST(CacheMgr, BudgetsFollowTheLevel) {
    // Without factors the baseline is 11264 KB.
    static constexpr struct {
        std::int32_t freeKB, factor;
        std::int32_t sizes[kCacheCount];
    } cases[] = {
        {20 * kMB, 800, {0, 0, 0, 0, 0}},
        {40960, 800, {3552, 819, 273, 273, 546}},
        {22528, 0, {0, 0, 0, 0, 0}},
        {22528 + 200, 0, {38, 30, 5, 10, 20}},            // level 0, budget 100
        {30 * kMB, 0, {1638, 1228, 204, 204, 819}},       // level 1, budget 4096
        {200 * kMB, 0, {49459, 7065, 2826, 3532, 7772}},  // level 3, budget 70656
        {4096 * kMB, 0, {524288, 10240, 5120, 5120, 20480}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.freeKB);
        COrvCacheMgr caches;
        caches.InitDeviceSpecs(c.factor, c.factor, 2, 0, 0);
        caches.ForceMemory(c.freeKB, 1);
        for (std::int32_t i = 0; i < kCacheCount; ++i) {
            EXPECT_EQ(caches.GetCacheSizeKB(static_cast<EOrvCache>(i), false), c.sizes[i]) << i;
        }
        for (const std::int32_t none : {-1, 5, kHuge}) {
            EXPECT_EQ(caches.GetCacheSizeKB(static_cast<EOrvCache>(none), true), 0);
            EXPECT_EQ(caches.GetCacheSizeKB(static_cast<EOrvCache>(none), false), 0);
        }
    }
}

TEST(CacheMgr, BudgetsStandDuringStartupAndFollowTheMemoryAfterwards) {
    COrvCacheMgr caches;
    EXPECT_EQ(caches.GetCacheSizeKB(EGridCache, true), 0);
    caches.ForceMemory(40960, 40960);
    EXPECT_EQ(caches.GetCacheSizeKB(EGridCache, true), 0) << "not asked to compute";
    EXPECT_EQ(caches.GetCacheSizeKB(EGridCache, false), 3552);
    caches.ForceMemory(400 * kMB, 400 * kMB);
    EXPECT_EQ(caches.GetCacheSizeKB(EGridCache, false), 3552) << "starting up";
    caches.SetStartupComplete();
    EXPECT_EQ(caches.GetCacheSizeKB(EGridCache, true), 3552);
    const std::int32_t grown = caches.GetCacheSizeKB(EGridCache, false);
    EXPECT_GT(grown, 3552);
    caches.ForceMemory(20 * kMB, 20 * kMB);
    EXPECT_EQ(caches.GetCacheSizeKB(EGridCache, false), grown) << "no budget: sizes stay";
    const COrvCacheMgr copy = caches;
    EXPECT_EQ(COrvCacheMgr(copy).GetCacheSizeKB(EGridCache, true), grown);
}

TEST(CacheMgr, MeasuresTheSystemUnlessBothFiguresAreForced) {
    COrvCacheMgr caches;
    caches.ForceMemory(1, 0);
    platform::ShiftAvailableMemory(-(std::int64_t{1} << 60));
    EXPECT_EQ(caches.GetMemoryLevel(false), 0);
    platform::ShiftAvailableMemory(std::int64_t{1} << 60);
    caches.SetStartupComplete();
    EXPECT_EQ(caches.GetMemoryLevel(false), 4) << "more KB than 32 bits hold";
    platform::ShiftAvailableMemory(0);
    EXPECT_EQ(caches.GetInitialMemoryAvailKB(), 0) << "the first figure, although it is 0";

    GetCacheMgr()->ForceMemory(40960, 400 * kMB);
    EXPECT_EQ(GetCacheMgr()->GetMemoryLevel(false), 2);
    GetORVUtilGlobals()->SignalStartupFinished();
    EXPECT_EQ(GetCacheMgr()->GetMemoryLevel(false), 4) << "the registry's is told of the end of start-up";
    testing_support::RegistryDown down;
    EXPECT_EQ(GetCacheMgr(), nullptr);
    GetORVUtilGlobals()->SignalStartupFinished();
    EXPECT_EQ(caches.GetMemoryLevel(false), 0) << "no system manager: no memory";
}

}  // namespace
}  // namespace dorvutil
