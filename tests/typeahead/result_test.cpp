#include "dorvutil/typeahead/result.h"

#include <gtest/gtest.h>

#include "dorvutil/typeahead/orders.h"
#include "dorvutil/typeahead/params.h"
#include "scripted_source.h"

namespace dorvutil {
namespace {

using namespace typeahead_test;

int Sign(int order) { return (order > 0) - (order < 0); }

TEST(TypeAheadResult, IdentityOrder) {
    static const struct {
        const char *aDisplay, *aData, *bDisplay, *bData;
        int expected;
    } kCases[] = {{"Main", "1", "Main", "1", 0}, {"Main", "1", "Main", "2", -1}, {"Main", "12", "Main", "1", 1},
                  {"", "", "", "", 0},           {"", "9", "A", "", -1},         {"Main", "", "Main S", "", -1},
                  {"z", "", "ä", "", -1},        {"main", "", "Main", "", 1}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.aDisplay) + " and " + c.bDisplay);
        auto* const a = new StringResult(c.aDisplay, "", 0, false, nullptr, c.aData);
        auto* const b = new StringResult(c.bDisplay, "", 9, true, nullptr, c.bData);
        const TLocker<TypeAheadResult> holdA(a), holdB(b);
        EXPECT_EQ(Sign(a->Compare(*b)), c.expected);
        EXPECT_EQ(Sign(b->Compare(*a)), -c.expected);
        EXPECT_TRUE(a->GetSourceID() == kNoTypeAheadSource && PreloadRank(a->GetSourceID()) == 1000);
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
    EXPECT_TRUE(result->GetSourceID() == 7 && result->GetRelevance() == -3 && result->IsPermanent());
    EXPECT_TRUE(result->GetType() == TART_STRING && result->GetMatchQuality() == MQ_NONE);
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
        EXPECT_TRUE(PreloadRank(id) == 1000 && DisplayRank(id) == 1000) << id;
    }
    static constexpr std::uint32_t kPreload[] = {5, 13, 9, 14, 12, 7,   100, 100, 100, 11,
                                                 6, 4,  3, 2,  1,  100, 15,  100, 1000};
    static constexpr std::uint32_t kDisplay[] = {11, 9, 9, 9, 10, 6, 100, 100, 100, 7, 7, 5, 4, 2, 1, 100, 3, 100, 100};
    for (TypeAheadSourceID id = 0; id < 19; ++id) {
        EXPECT_TRUE(PreloadRank(id) == kPreload[id] && DisplayRank(id) == kDisplay[id]) << id;
    }
}

TEST(TypeAheadSearchParams, CopiesHaveStorageOfTheirOwn) {
    TypeAheadSearchParams params;
    EXPECT_FALSE(params.HasPeeledLetters());
    params.SetOriginalInput("main");
    for (const char* const input : {"mai", "maim", "main"}) {
        params.SetInput(input);
        EXPECT_EQ(params.HasPeeledLetters(), params.m_input != "main") << input;
    }
    params.m_prepareSearch = true;
    const TypeAheadSearchParams copy(params);
    EXPECT_TRUE(copy.m_prepareSearch && copy.m_input == "main");
    EXPECT_NE(copy.m_input.c_str(), params.m_input.c_str());
    EXPECT_NE(copy.m_originalInput.c_str(), params.m_originalInput.c_str());
}

std::int32_t CancelsWhenAsked(int code, int, const char*) { return code == 6; }

TEST(TypeAheadSource, PreloadAndSearchProtocol) {
    CB_Dialog sink, cancelling(CancelsWhenAsked);
    bool canceled = false, succeeds = false;
    ScriptedSource source(3, [&](ScriptedSource& s, const std::string&) { canceled = s.IsCanceled(); });
    EXPECT_FALSE(source.DoSearch("a", false, sink)) << "not preloaded";
    EXPECT_FALSE(source.DoPreload(sink)) << "nothing to do";
    EXPECT_TRUE(source.DoSearch("a", false, sink) && !canceled);
    EXPECT_TRUE(source.DoSearch("b", false, cancelling) && canceled);
    EXPECT_FALSE(source.IsCanceled()) << "the default sink again";
    EXPECT_TRUE(source.DoSearch("c", true, sink));
    EXPECT_EQ(source.Searches(), (Names{"a", "b"}));
    EXPECT_EQ(source.Preparations(), Names{"c"});

    source.ClearPreloadFlag();
    source.m_preload = [&](ScriptedSource&) { return succeeds; };
    EXPECT_FALSE(source.DoPreload(sink) || source.IsPreloaded());
    succeeds = true;
    EXPECT_TRUE(source.DoPreload(sink));
    EXPECT_FALSE(source.DoPreload(sink)) << "already";
    EXPECT_EQ(source.m_preloads, 2);
    EXPECT_TRUE(source == ScriptedSource(3) && !(source == ScriptedSource(4)));
}

}  // namespace
}  // namespace dorvutil
