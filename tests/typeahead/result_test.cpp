#include "dorvutil/typeahead/result.h"

#include <gtest/gtest.h>

#include "dorvutil/typeahead/orders.h"
#include "dorvutil/typeahead/params.h"
#include "scripted_source.h"

namespace dorvutil {
namespace {

using typeahead_test::ScriptedSource;
using typeahead_test::StringResult;
using Held = TLocker<TypeAheadResult>;

int Sign(int order) { return (order > 0) - (order < 0); }

TEST(TypeAheadResult, IdentityOrder) {
    static const struct {
        const char* name;
        const char *aDisplay, *aData, *bDisplay, *bData;
        int expected;
    } kCases[] = {
        {"equal", "Main", "1", "Main", "1", 0},
        {"equal names fall through to the data", "Main", "1", "Main", "2", -1},
        {"data of other lengths", "Main", "12", "Main", "1", 1},
        {"both empty", "", "", "", "", 0},
        {"empty first", "", "9", "A", "", -1},
        {"prefix first", "Main", "", "Main S", "", -1},
        {"bytes are unsigned", "z", "", "\xC3\xA4", "", -1},
        {"case counts", "main", "", "Main", "", 1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        StringResult* const a = new StringResult(c.aDisplay, "", 0, false, nullptr, c.aData);
        StringResult* const b = new StringResult(c.bDisplay, "", 9, true, nullptr, c.bData);
        const Held holdA(a), holdB(b);
        EXPECT_EQ(Sign(a->Compare(*b)), c.expected);
        EXPECT_EQ(Sign(b->Compare(*a)), -c.expected);
    }
}

TEST(TypeAheadResult, LivesWithItsReferencesAndOutlivesItsSource) {
    auto* const source = new ScriptedSource(7);
    const ORVustring name("Main");
    auto* const result = new StringResult(name, "pin", -3, true, source, "key");
    EXPECT_NE(result->GetDisplayString().c_str(), name.c_str());  // storage of its own
    source->Delete();
    EXPECT_EQ(result->ObtainRef(), 1);
    EXPECT_EQ(result->ObtainRef(), 2);
    EXPECT_EQ(result->GetSourceID(), 7);
    EXPECT_EQ(result->GetRelevance(), -3);
    EXPECT_TRUE(result->IsPermanent());
    EXPECT_EQ(result->GetType(), TART_STRING);
    EXPECT_EQ(result->GetMatchQuality(), MQ_NONE);
    result->CalculateMatchQuality("ai");
    EXPECT_EQ(result->GetMatchQuality(), MQ_INSIDE);
    auto* const copy = new StringResult(*result);
    EXPECT_EQ(copy->ObtainRef(), 1);
    EXPECT_EQ(copy->Compare(*result), 0);
    EXPECT_NE(copy->GetDisplayString().c_str(), result->GetDisplayString().c_str());
    EXPECT_EQ(copy->ReleaseRef(), 0);
    EXPECT_EQ(result->ReleaseRef(), 1);
    EXPECT_EQ(result->ReleaseRef(), 0);
}

TEST(TypeAheadOrders, IdsOutsideTheTableComeLast) {
    for (const TypeAheadSourceID id : {kNoTypeAheadSource, 19, 1'000'000, -2'000'000'000}) {
        EXPECT_EQ(PreloadRank(id), 1000u) << id;
        EXPECT_EQ(DisplayRank(id), 1000u) << id;
    }
    static constexpr std::uint32_t kPreload[] = {5, 13, 9, 14, 12, 7,   100, 100, 100, 11,
                                                 6, 4,  3, 2,  1,  100, 15,  100, 1000};
    static constexpr std::uint32_t kDisplay[] = {11, 9, 9, 9, 10, 6, 100, 100, 100, 7, 7, 5, 4, 2, 1, 100, 3, 100, 100};
    for (TypeAheadSourceID id = 0; id < 19; ++id) {
        EXPECT_EQ(PreloadRank(id), kPreload[id]) << id;
        EXPECT_EQ(DisplayRank(id), kDisplay[id]) << id;
    }
}

TEST(TypeAheadSearchParams, CopiesHaveStorageOfTheirOwn) {
    TypeAheadSearchParams params;
    EXPECT_FALSE(params.HasPeeledLetters());
    params.SetOriginalInput("main");
    params.SetInput("mai");
    EXPECT_TRUE(params.HasPeeledLetters());
    params.SetInput("maim");
    EXPECT_TRUE(params.HasPeeledLetters());
    params.SetInput("main");
    EXPECT_FALSE(params.HasPeeledLetters());
    params.m_prepareSearch = true;
    const TypeAheadSearchParams copy(params);
    EXPECT_TRUE(copy.m_prepareSearch);
    EXPECT_STREQ(copy.m_input.c_str(), "main");
    EXPECT_NE(copy.m_input.c_str(), params.m_input.c_str());
    EXPECT_NE(copy.m_originalInput.c_str(), params.m_originalInput.c_str());
}

std::int32_t CancelsWhenAsked(int code, int, const char*) { return code == 6; }

TEST(TypeAheadSource, PreloadAndSearchProtocol) {
    CB_Dialog sink;
    CB_Dialog cancelling(CancelsWhenAsked);
    bool canceled = false;
    ScriptedSource source(3, [&](ScriptedSource& s, const std::string&) { canceled = s.IsCanceled(); });
    EXPECT_FALSE(source.DoSearch("a", false, sink));  // not preloaded
    EXPECT_FALSE(source.DoPreload(sink));             // nothing to do
    EXPECT_TRUE(source.IsPreloaded());
    EXPECT_TRUE(source.DoSearch("a", false, sink));
    EXPECT_FALSE(canceled);
    EXPECT_TRUE(source.DoSearch("b", false, cancelling));
    EXPECT_TRUE(canceled);
    EXPECT_FALSE(source.IsCanceled());  // the default sink again
    EXPECT_TRUE(source.DoSearch("c", true, sink));
    EXPECT_EQ(source.Searches(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(source.Preparations(), std::vector<std::string>{"c"});

    source.ClearPreloadFlag();
    bool succeeds = false;
    source.m_preload = [&](ScriptedSource&) { return succeeds; };
    EXPECT_FALSE(source.DoPreload(sink));
    EXPECT_FALSE(source.IsPreloaded());
    succeeds = true;
    EXPECT_TRUE(source.DoPreload(sink));
    EXPECT_FALSE(source.DoPreload(sink));  // already
    EXPECT_EQ(source.m_preloads, 2);
    EXPECT_TRUE(source == ScriptedSource(3));
    EXPECT_FALSE(source == ScriptedSource(4));
}

}  // namespace
}  // namespace dorvutil
