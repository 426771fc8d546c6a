#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dorvutil/messaging/callback.h"
#include "dorvutil/messaging/payload.h"
#include "dorvutil/orvcache/cache_mgr.h"
#include "dorvutil/orvcache/profile_log.h"
#include "dorvutil/platform/clock.h"

namespace dorvutil {
namespace {

std::vector<std::string> g_lines;

std::string Padded(std::string text, std::size_t width) { return text.append(width - text.size(), ' '); }

// A manager whose profile lines come here, on a clock that goes only when told (but for the real milliseconds).
class Profile : public testing::Test {
protected:
    Profile() {
        g_lines.clear();
        ReplaceProfileSink([](const char* line) { g_lines.emplace_back(line); });
        m_caches.ForceMemory(100000, 90000);
    }
    ~Profile() override {
        ReplaceProfileSink(nullptr);
        platform::ShiftTick(0);
    }
    COrvCacheMgr m_caches;
};

TEST_F(Profile, FirstCallOfAnyKindWritesTheHeader) {
    for (const std::int32_t kind : {0, 1, 2, 7, -1}) {
        COrvCacheMgr caches;
        g_lines.clear();
        caches.LogPerfInterval(kind, "x", nullptr);
        ASSERT_FALSE(g_lines.empty()) << kind;
        EXPECT_EQ(g_lines[0], "[MS]  [MS]  [KB]      [KB]   [Functions]" + std::string(70, ' '));
        EXPECT_EQ(g_lines.size(), kind == 0 ? 2u : kind == 2 ? 13u : 1u) << kind;
        caches.LogPerfInterval(9, "x", nullptr);
        EXPECT_EQ(g_lines.size(), kind == 0 ? 2u : kind == 2 ? 13u : 1u) << "only once";
    }
}

TEST_F(Profile, NestedIntervalsShowTheirTimeAndMemory) {
    const std::uint32_t nearWrap = 0xFFFFFF00u - platform::TickCount();
    platform::ShiftTick(nearWrap);
    m_caches.LogPerfInterval(EPerfBegin, "outer", nullptr);
    m_caches.LogPerfInterval(EPerfBegin, "inner", "a.dat");
    platform::ShiftTick(nearWrap + 600'000);  // across the tick's wrap
    m_caches.ForceMemory(99000, 90000);
    m_caches.LogPerfInterval(EPerfEnd, "inner", "a.dat");
    m_caches.ForceMemory(100500, 90000);
    m_caches.LogPerfInterval(EPerfEnd, nullptr, nullptr);
    m_caches.LogPerfInterval(EPerfEnd, "none open", nullptr);
    ASSERT_EQ(g_lines.size(), 5u);
    EXPECT_EQ(g_lines[1], std::string(29, ' ') + "+" + Padded("outer", 70));
    EXPECT_EQ(g_lines[2], std::string(31, ' ') + "+" + Padded("inner (a.dat)", 70));
    // The real clock adds a few milliseconds to the shifts.
    const std::int32_t inner = std::stoi(g_lines[3].substr(0, 6));
    EXPECT_NEAR(inner, 600'000, 5'000);
    EXPECT_EQ(g_lines[3].substr(6),
              Padded("0", 6) + Padded("99000", 10) + Padded("-1000", 7) + "  -" + Padded("inner (a.dat)", 70));
    EXPECT_GE(std::stoi(g_lines[4].substr(0, 6)), inner);
    EXPECT_EQ(g_lines[4].substr(6),
              Padded(std::to_string(inner), 6) + Padded("100500", 10) + Padded("500", 7) + "-" + std::string(70, ' '));
}

TEST_F(Profile, ReportAsksEachCache) {
    const auto answer = [](EMsgID, const CBDataBase* data) {
        ASSERT_TRUE(CBDataNormal::CastIsPossible(data->Type()));
        const auto& question = static_cast<const CBDataNormal&>(*data);
        question.m_second = 100 + question.m_first;
    };
    m_caches.LogPerfInterval(9, nullptr, nullptr);  // measures 100000 KB
    m_caches.ForceMemory(98000, 90000);
    DORV_RegisterCallbackListener(answer, EMsgID{178});
    g_lines.clear();
    m_caches.LogPerfInterval(EPerfReport, "after", "start");
    DORV_UnRegisterCallbackListener(answer);
    const auto row = [](const char* name, const char* value) {
        return "|" + Padded(name, 25) + Padded(value, 20) + "|";
    };
    const std::string separator = "|" + std::string(45, '-') + "|";
    const std::vector<std::string> expected = {
        "============= " + Padded("after (start)", 70) + " ==============",
        row("Cache", "MemoryInUseKB"),
        separator,
        row("EGridCache", "100"),
        row("EImageCache", "101"),
        row("EPolygonCache", "102"),
        row("EImagePreloadCache", "103"),
        row("ELinkCache", "104"),
        separator,
        row("Cache In Use", "510"),
        row("Memory In Use", "2000"),
        std::string(47, '='),
    };
    EXPECT_EQ(g_lines, expected);
}

TEST_F(Profile, IntervalsEndAfterTenThousandCalls) {
    for (int i = 0; i < 10000; ++i) m_caches.LogPerfInterval(9, "", nullptr);
    g_lines.clear();
    m_caches.LogPerfInterval(EPerfBegin, "last", nullptr);
    EXPECT_EQ(g_lines.size(), 1u);
    m_caches.LogPerfInterval(EPerfBegin, "too late", nullptr);
    m_caches.LogPerfInterval(EPerfEnd, "too late", nullptr);
    EXPECT_EQ(g_lines.size(), 1u);
    m_caches.LogPerfInterval(EPerfReport, "still", nullptr);
    EXPECT_EQ(g_lines.size(), 13u);
}

TEST_F(Profile, LongLabelsAndDeepNestsAreCut) {
    const std::string longName(2000, 'n');
    for (int i = 0; i < 400; ++i) m_caches.LogPerfInterval(EPerfBegin, longName.c_str(), longName.c_str());
    for (int i = 0; i < 400; ++i) m_caches.LogPerfInterval(EPerfEnd, longName.c_str(), nullptr);
    m_caches.LogPerfInterval(EPerfReport, longName.c_str(), nullptr);
    for (const auto& line : g_lines) ASSERT_LE(line.size(), 511u);
}

}  // namespace
}  // namespace dorvutil
