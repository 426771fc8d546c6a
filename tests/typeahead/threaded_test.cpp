#include <gtest/gtest.h>

#include <thread>

#include "dorvutil/typeahead/threads.h"
#include "scripted_source.h"

// Search handles on the shared workers. Gates, not time, decide what happens when.
namespace dorvutil {
namespace {

using namespace typeahead_test;

using ThreadedHandle = HandleTest<STC_THREADED>;

// A search script that reports the text and tells of it.
auto ReportAndSignal(event& searched) {
    return [&searched](ScriptedSource& s, const std::string& input) {
        s.Report(input.c_str());
        searched.SignalEvent();
    };
}

TEST_F(ThreadedHandle, WaitingReturnsTheFinalPeeledResults) {
    ScriptedSource* const source = Add(1, [](ScriptedSource& s, const std::string& input) {
        if (input.size() == 2) s.Report(input.c_str());
    });
    for (int round = 0; round < 5; ++round) {
        m_handle.StartSearch("abcde", true);
        EXPECT_EQ(Shown(m_handle, 0xFFFFFFFFu), Names{"ab"});
    }
    EXPECT_EQ(source->Searches().size(), 20u);
}

TEST_F(ThreadedHandle, ASourceReadyDuringASearchIsSearchedWithTheCurrentTextAndAlone) {
    Gate preload;
    event searched(true), again(true);
    const EndOfSearches end(m_handle);
    ScriptedSource* const late =
        Add(1, ReportAndSignal(searched), [&](ScriptedSource&) { return preload.Pass(), true; });
    ASSERT_TRUE(preload.WaitUntilEntered());
    m_handle.StartSearch("one", false);
    m_handle.StartSearch("two", false);
    EXPECT_TRUE(late->Searches().empty());
    preload.Open();
    ASSERT_EQ(searched.WaitForEvent(20'000), 1);
    Add(2, ReportAndSignal(again));
    ASSERT_EQ(again.WaitForEvent(20'000), 1);
    // Twice, when the second source came before the first one's search was reported as complete.
    for (const std::string& text : late->Searches()) EXPECT_EQ(text, "two");
    EXPECT_EQ(Shown(m_handle, 9), Names{"two"}) << "equal results are one";
}

TEST_F(ThreadedHandle, AFailedPreloadKeepsTheSourceOut) {
    ScriptedSource* const broken = Add(1, ReportInput, [](ScriptedSource&) { return false; });
    Add(2, ReportInput);
    m_handle.StartSearch("text", true);
    EXPECT_EQ(m_handle.NumResults(0xFFFFFFFFu), 1u);
    broken->m_preload = [](ScriptedSource&) { return true; };
    broken->OnDataChanged(false);  // now the data is there
    m_handle.StartSearch("more", true);
    EXPECT_EQ(broken->Searches().back(), "more");
}

TEST_F(ThreadedHandle, ANewSearchCancelsTheRunningOneAndItsResults) {
    event entered(true);
    const EndOfSearches end(m_handle);
    Add(1, [&](ScriptedSource& s, const std::string& input) {
        if (input != "old") return s.Report(input.c_str());
        entered.SignalEvent();
        while (!s.IsCanceled()) std::this_thread::yield();
        auto* const stale = new StringResult("stale", "", 0, false, &s, "");
        const TLocker<TypeAheadResult> held(stale);
        s.ReportResult(stale);
        EXPECT_EQ(stale->ObtainRef(), 2);  // nobody else took one
        stale->ReleaseRef();
    });
    m_handle.StartSearch("old", false);
    ASSERT_EQ(entered.WaitForEvent(20'000), 1);
    m_handle.StartSearch("new", true);
    EXPECT_EQ(Shown(m_handle, 0xFFFFFFFFu), Names{"new"});
}

TEST_F(ThreadedHandle, CancellationLastsUntilTheNextSearchOfAnyHandle) {
    TypeAheadSearchHandle other(kNoMessage, STC_THREADED);
    ScriptedSource* const source = Add(1, ReportInput);
    m_handle.StartSearch("a", true);
    other.CancelSearch();
    EXPECT_TRUE(m_handle.IsCanceled());
    source->OnDataChanged(true);  // ignored
    EXPECT_EQ(m_handle.NumResults(9), 1u);
    EXPECT_TRUE(source->IsPreloaded());
    other.StartSearch("b", true);
    EXPECT_FALSE(m_handle.IsCanceled());
}

TEST_F(ThreadedHandle, DataThatChangesDuringALongSearchRestartsItOnce) {
    for (const bool fromInside : {false, true}) {
        Gate gate;
        std::atomic<int> calls{0};
        ThreadedHandle one;
        ScriptedSource *const quick = new ScriptedSource(14, ReportInput), *slow = nullptr;
        slow = new ScriptedSource(1, [&](ScriptedSource& s, const std::string& input) {
            if (++calls == 1) {
                if (fromInside) s.OnDataChanged(true);
                gate.Pass();
            }
            s.Report(input.c_str());
        });
        for (const TypeAheadSourceAdder adder = one.m_handle.GetSourceAdder();
             ScriptedSource* const s : {slow, quick}) {
            adder.AddSource(s);
        }
        std::thread searcher([&] { one.m_handle.StartSearch("text", true); });
        ASSERT_TRUE(gate.WaitUntilEntered());
        slow->OnDataChanged(false);
        quick->OnDataChanged(true);
        gate.Open();
        searcher.join();
        EXPECT_EQ(slow->Searches(), (Names{"text", "text"})) << fromInside;
        EXPECT_EQ(quick->Searches(), (Names{"text", "text"})) << fromInside;
    }
}

TEST_F(ThreadedHandle, DataThatChangesAtRestIsSearchedForItsSourceAlone) {
    event again(true);
    std::atomic<int> calls{0};
    const auto search = [&](ScriptedSource& s, const std::string&) {
        s.Report(("version " + std::to_string(++calls)).c_str());
        if (calls == 2) again.SignalEvent();
    };
    const EndOfSearches end(m_handle);
    ScriptedSource* const changing = Add(1, search, [](ScriptedSource&) { return true; });
    ScriptedSource* const other = Add(2, ReportInput);
    m_handle.StartSearch("text", true);
    changing->OnDataChanged(true);
    ASSERT_EQ(again.WaitForEvent(20'000), 1);
    EXPECT_EQ(changing->m_preloads, 2);
    EXPECT_EQ(other->Searches(), Names{"text"});
    EXPECT_EQ(Shown(m_handle, 9), (Names{"text", "version 2"}));
}

TEST_F(ThreadedHandle, PeeledTextIsSearchedInFullWhenDataChanges) {
    std::atomic<bool> full{false};
    event found(true);
    const EndOfSearches end(m_handle);
    ScriptedSource* const source = Add(1, [&](ScriptedSource& s, const std::string& input) {
        if (input != (full ? "abcd" : "ab")) return;
        s.Report(input.c_str());
        if (full) found.SignalEvent();
    });
    m_handle.StartSearch("abcd", true);
    full = true;
    source->OnDataChanged(false);
    ASSERT_EQ(found.WaitForEvent(20'000), 1);
    EXPECT_EQ(Shown(m_handle, 9), Names{"abcd"});
}

TEST_F(ThreadedHandle, PreparationsYieldToSearches) {
    Gate gate;
    const EndOfSearches end(m_handle);
    Add(2);
    ScriptedSource* const source = Add(1, [&](ScriptedSource&, const std::string&) { gate.Pass(); });
    m_handle.PrepareSearch("prep");
    while (source->Preparations().empty()) std::this_thread::yield();
    EXPECT_TRUE(source->Searches().empty());
    std::thread searcher([&] { m_handle.StartSearch("real", true); });
    ASSERT_TRUE(gate.WaitUntilEntered());
    m_handle.PrepareSearch("late");
    gate.Open();
    searcher.join();
    EXPECT_EQ(source->Preparations(), Names{"prep"});
    EXPECT_EQ(source->Searches(), (Names{"real", "rea", "re"}));  // letters come off the text searched for
}

TEST(TypeAheadThreads, AUnitForAQueuedSourceTakesItsPlace) {
    TypeAheadSearchThread thread;
    TypeAheadSearchHandle handle(kNoMessage, STC_SYNCHRONOUS);
    std::vector<std::string> order;
    const auto note = [&](ScriptedSource& s, const std::string& input) {
        order.push_back(std::to_string(s.GetSourceID()) + input);
    };
    ScriptedSource one(1, note), two(2, note);
    CB_Dialog sink;
    one.DoPreload(sink);
    two.DoPreload(sink);
    TypeAheadSource* sources[] = {&one, &two};
    const TVector<TypeAheadSource*> both(sources, 2, false), first(sources, 1, false);
    TypeAheadSearchParams params;
    params.m_searchOwner = &handle;
    params.SetInput("old");
    EXPECT_TRUE(thread.AddSearch(both, params));
    params.SetInput("new");
    EXPECT_TRUE(thread.AddSearch(first, params));
    params.m_prepareSearch = true;
    EXPECT_FALSE(thread.AddSearch(first, params));
    EXPECT_FALSE(thread.IsComplete());
    thread.StartSearch(STC_SYNCHRONOUS);
    EXPECT_TRUE(thread.IsComplete());
    EXPECT_EQ(order, (Names{"1new", "2old"}));
}

TEST(TypeAheadThreads, HandlesComeAndGoWhileOthersSearch) {
    std::atomic<int> deleted{0};
    const auto session = [&] {
        for (int i = 0; i < 40; ++i) {
            TypeAheadSearchHandle handle(kNoMessage, i % 5 == 4 ? STC_SYNCHRONOUS : STC_THREADED);
            auto* const loaded = new ScriptedSource(1, ReportInput);
            auto* const plain = new ScriptedSource(2, [](ScriptedSource& s, const std::string& input) {
                for (int k = 0; k < 20 && !s.IsCanceled(); ++k) s.Report((input + std::to_string(k)).c_str());
            });
            loaded->m_preload = [](ScriptedSource&) { return true; };
            for (ScriptedSource* const source : {loaded, plain}) {
                source->m_deleted = &deleted;
                handle.GetSourceAdder().AddSource(source);
            }
            handle.StartSearch("abc", i % 2 == 0);
            Shown(handle, static_cast<std::uint32_t>(1000 + i));
            handle.StartSearch("abcd", false);
            if (i % 3 == 1) handle.CancelSearch();
            if (i % 3 == 2) handle.Cleanup();
            handle.FlushSources();
        }
    };
    std::thread one(session), two(session);
    session();
    one.join();
    two.join();
    EXPECT_EQ(deleted, 240);
}

TEST(TypeAheadThreads, AHandleEndsInTheMiddleOfASearch) {
    for (int i = 0; i < 30; ++i) {
        event searching(true);
        std::atomic<bool> gone{false}, stop{false};
        std::atomic<int> late{0};
        ScriptedSource busy(1, [&](ScriptedSource& s, const std::string& input) {
            for (searching.SignalEvent(); !s.IsCanceled();) {
                if (gone) ++late;
                s.Report(input.c_str());
            }
        });
        {
            TypeAheadSearchHandle handle(kNoMessage, STC_THREADED);
            handle.GetSourceAdder().AddSource(&busy);
            handle.StartSearch("text", false);
            ASSERT_EQ(searching.WaitForEvent(20'000), 1);
            std::thread changer([&] {
                while (!stop) busy.OnDataChanged(true);
            });
            if (i % 2 == 0) handle.StartSearch("more", false);
            stop = true;
            changer.join();
        }
        gone = true;
        EXPECT_EQ(late, 0);
    }
}

TEST_F(ThreadedHandle, ChangesHammeredDuringSearchesLeaveTheNewestText) {
    ScriptedSource* const sources[] = {
        Add(1, ReportInput, [](ScriptedSource&) { return true; }),
        Add(2, [](ScriptedSource& s, const std::string& input) { s.Report((input + "2").c_str()); })};
    std::atomic<bool> stop{false};
    std::thread changer([&] {
        for (int i = 0; !stop; ++i) sources[i & 1]->OnDataChanged((i & 2) != 0);
    });
    for (int i = 0; i < 100; ++i) m_handle.StartSearch(std::to_string(i).c_str(), false);
    stop = true;
    changer.join();
    m_handle.StartSearch("last", true);
    EXPECT_EQ(Shown(m_handle, 0xFFFFFFFFu), (Names{"last", "last2"}));
}

}  // namespace
}  // namespace dorvutil
