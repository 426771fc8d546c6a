#include <gtest/gtest.h>

#include <algorithm>

#include "scripted_source.h"

// What a search handle finds and shows, with all work in the calling thread.
namespace dorvutil {
namespace {

using namespace typeahead_test;

using SynchronousHandle = HandleTest<STC_SYNCHRONOUS>;

TEST_F(SynchronousHandle, GenerationsDecideWhenTheListIsRebuilt) {
    ScriptedSource* const source = Add(0, [](ScriptedSource& s, const std::string&) { s.Report("one"); });
    EXPECT_EQ(m_handle.NumResults(0xFFFFFFFFu), 0u);
    m_handle.StartSearch("on", false);
    EXPECT_EQ(Shown(m_handle, 7), Names{"one"});
    source->Report("two");
    EXPECT_EQ(m_handle.NumResults(7), 1u);
    EXPECT_EQ(m_handle.NumResults(0xFFFFFFFFu), 1u);
    EXPECT_EQ(m_handle.GetResult(1, 7), nullptr);
    EXPECT_NE(m_handle.GetResult(1, 8), nullptr);
    EXPECT_EQ(m_handle.GetResult(2, 8), nullptr);
}

TEST_F(SynchronousHandle, PeelingStopsAtTheFirstOrdinaryResult) {
    static const struct {
        const char* input;
        bool exact;
        Names searches;
    } kCases[] = {{"abcde", false, {"abcde", "abcd", "abc", "ab"}},
                  {"abcde", true, {"abcde"}},
                  {"ab", false, {"ab"}},
                  {"aäö", false, {"aäö", "aä"}},
                  {"mainx", false, {"mainx", "main", "mai"}}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.input);
        SynchronousHandle one;
        ScriptedSource* const source = one.Add(1, [](ScriptedSource& s, const std::string& input) {
            s.Report("P", 0, true);
            if (input == "mai") s.Report("Mainz");
        });
        one.m_handle.SetExactSearch(c.exact);
        one.m_handle.StartSearch(c.input, false);
        EXPECT_EQ(source->Searches(), c.searches);
        EXPECT_EQ(Shown(one.m_handle, 50).size(), c.searches.back() == "mai" ? 2u : 1u);
    }
}

TEST_F(SynchronousHandle, OfEqualResultsTheMostRelevantStays) {
    Add(1, [](ScriptedSource& s, const std::string&) {
        s.Report("A", 1, false, "k");
        s.Report("A", 5, false, "k");
        s.Report("A", 3, false, "k");
        s.Report("A", 2, false, "other");
    });
    m_handle.StartSearch("a", false);
    ASSERT_EQ(m_handle.NumResults(1), 2u);
    EXPECT_EQ(m_handle.GetResult(0, 1)->GetRelevance(), 5);
    EXPECT_EQ(m_handle.GetResult(1, 1)->GetRelevance(), 2);
}

TEST_F(SynchronousHandle, DisplayAndSmartOrder) {
    Add(0, [](ScriptedSource& s, const std::string&) {
        for (const char* const name : {"12 main", " +9 main", "99999999999 main", "b", "a"}) s.Report(name, 1);
        s.Report("zmain", 2);
        s.Report("never", 0, true);
    });
    Add(14, [](ScriptedSource& s, const std::string&) { s.Report("Domain"); });
    Add(77, [](ScriptedSource& s, const std::string&) { s.Report("Main", 100); });
    m_handle.StartSearch("main", false);
    EXPECT_EQ(Shown(m_handle, 10),
              (Names{"never", "Domain", "zmain", "a", "b", " +9 main", "12 main", "99999999999 main", "Main"}));
    m_handle.SetSmartSort(true);
    EXPECT_EQ(Shown(m_handle, 11),
              (Names{"never", "Main", " +9 main", "12 main", "99999999999 main", "Domain", "zmain", "a", "b"}));
    EXPECT_EQ(m_handle.GetResult(1, 11)->GetMatchQuality(), MQ_PREFIX);
}

TEST_F(SynchronousHandle, RecentEntriesGiveTheirPlaceToTheirOriginals) {
    static const struct {
        TypeAheadSourceID recent, other;
        const char* otherName;
        bool merged;
    } kCases[] = {{11, 1, "R", true},  {11, 2, "R", true},  {11, 3, "R", true},  {11, 5, "R", false},
                  {12, 5, "R", true},  {12, 2, "R", false}, {11, 2, "r", false}, {11, 2, "RR", false},
                  {13, 2, "R", false}, {11, 4, "R", false}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.recent << " and " << c.other << c.otherName);
        SynchronousHandle one;
        one.Add(c.recent, [](ScriptedSource& s, const std::string&) { s.Report("R", 0, false, "recent"); });
        one.Add(c.other, [&](ScriptedSource& s, const std::string&) {
            s.Report("A", 1, false, "a");  // sorts between the two
            s.Report(c.otherName, 0, false, "original");
        });
        one.m_handle.StartSearch("r", false);
        EXPECT_EQ(one.m_handle.NumResults(9), c.merged ? 2u : 3u);
        EXPECT_EQ(one.m_handle.GetResult(0, 9)->GetSourceID(), c.merged ? c.other : c.recent);
        EXPECT_STREQ(one.m_handle.GetResult(0, 9)->GetDisplayString().c_str(), "R");
    }
}

TEST_F(SynchronousHandle, TheFirstHundredAreShown) {
    Add(1, [](ScriptedSource& s, const std::string&) {
        for (int i = 150; i > 0; --i) s.Report(std::to_string(i).c_str());
    });
    m_handle.StartSearch("1", false);
    const Names names = Shown(m_handle, 3);
    ASSERT_EQ(names.size(), 100u);
    for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(names[i], std::to_string(i + 1));
}

std::atomic<int> g_messages{0};
void CountMessage(EMsgID, const CBDataBase* data) {
    if (!data) ++g_messages;
}

TEST_F(SynchronousHandle, ABurstIsAnnouncedOnce) {
    constexpr auto kSync = static_cast<EMsgID>(150);
    DORV_RegisterCallbackListener(CountMessage, kSync);
    bool defer = false;
    SynchronousHandle one(kSync);
    TypeAheadSearchHandle& handle = one.m_handle;
    one.Add(1, [&](ScriptedSource& s, const std::string&) {
        if (defer) s.DeferSync(true);
        for (const char* name : {"a", "b", "c"}) s.Report(name);
    });
    const auto messagesOf = [&](auto&& action) {
        g_messages = 0;
        action();
        return g_messages.load();
    };
    EXPECT_EQ(messagesOf([&] { handle.StartSearch("a", false); }), 4);  // the emptied list and three results
    defer = true;
    EXPECT_EQ(messagesOf([&] { handle.StartSearch("a", false); }), 2);
    EXPECT_EQ(messagesOf([&] {
                  handle.DeferSync(false);  // nothing is pending
                  handle.SetSmartSort(true);
                  handle.FlushResults(1, false);
              }),
              0);
    EXPECT_EQ(messagesOf([&] { handle.FlushSources(); }), 1);
    DORV_UnRegisterCallbackListener(CountMessage);
}

TEST_F(SynchronousHandle, FlushingOneSourceKeepsTheOthersInOrder) {
    for (const TypeAheadSourceID id : {4, 9}) {
        Add(id, [](ScriptedSource& s, const std::string&) {
            for (int i = 0; i < 3; ++i) s.Report(("n" + std::to_string(s.GetSourceID() * 10 + i)).c_str());
        });
    }
    m_handle.StartSearch("n", false);
    EXPECT_EQ(m_handle.NumResults(1), 6u);
    m_handle.FlushResults(4, true);
    EXPECT_EQ(Shown(m_handle, 2), (Names{"n90", "n91", "n92"}));
    m_handle.FlushResults(kNoTypeAheadSource, true);
    EXPECT_EQ(m_handle.NumResults(3), 0u);
}

TEST_F(SynchronousHandle, PreloadsRunInTheirOrderWhenTheLastAdderGoes) {
    std::vector<TypeAheadSourceID> order;
    {
        const TypeAheadSourceAdder adder = m_handle.GetSourceAdder();
        TypeAheadSourceAdder copy = adder;
        for (const TypeAheadSourceID id : {1, 14, 0, 18, 12}) {
            auto* const source = new ScriptedSource(id);
            source->m_preload = [&](ScriptedSource& s) { return order.push_back(s.GetSourceID()), true; };
            copy.AddSource(source);
        }
        copy.AddSource(nullptr);
        EXPECT_TRUE(order.empty());
    }
    EXPECT_EQ(order, (std::vector<TypeAheadSourceID>{14, 12, 0, 1, 18}));
}

TEST_F(SynchronousHandle, ChangedDataIsReloadedAndPeeledTextSearchedInFull) {
    bool full = false;
    ScriptedSource* const source = Add(1, [&](ScriptedSource& s, const std::string& input) {
        if (full ? input == "abcd" : input == "ab") s.Report(input.c_str());
    });
    m_handle.StartSearch("abcd", false);
    EXPECT_EQ(Shown(m_handle, 50), Names{"ab"});
    full = true;
    source->OnDataChanged(true);
    EXPECT_TRUE(source->IsPreloaded());
    EXPECT_EQ(m_handle.NumResults(60), 0u);  // flushed; a source without its preload flag is not searched
    m_handle.StartSearch("abcd", false);
    EXPECT_EQ(Shown(m_handle, 61), Names{"abcd"});
}

TEST_F(SynchronousHandle, CleanupKeepsTheSourcesAndFlushDeletesThem) {
    std::atomic<int> deleted{0};
    ScriptedSource* const source = Add(1, [](ScriptedSource& s, const std::string&) { s.Report("x"); });
    source->m_deleted = &deleted;
    m_handle.StartSearch("x", false);
    m_handle.Cleanup();
    EXPECT_EQ(source->m_cleanups, 1);
    EXPECT_EQ(m_handle.NumResults(20), 0u);
    m_handle.StartSearch("x", false);
    EXPECT_EQ(m_handle.NumResults(21), 1u);
    m_handle.FlushSources();
    EXPECT_EQ(deleted, 1);
    EXPECT_EQ(m_handle.GetResult(0, 21)->GetSourceID(), 1);  // still shown, though its source is gone
    m_handle.StartSearch("x", true);
    EXPECT_EQ(m_handle.NumResults(22), 0u);
}

}  // namespace
}  // namespace dorvutil
