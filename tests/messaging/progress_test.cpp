#include "dorvutil/messaging/progress.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/messaging/printf_observer.h"
#include "dorvutil/messaging/progress_info.h"
#include "dorvutil/messaging/progress_mgr.h"
#include "dorvutil/platform/clock.h"
#include "dorvutil/time/clock.h"
#include "messaging/registry_down.h"

namespace dorvutil {
namespace {

// Writes the codes it is told, and does what it is asked to.
class Recorder : public ProgressObserver {
public:
    void OnProgressChanged(ProgressBarMsg what) override {
        m_codes += std::to_string(what) + " ";
        if (m_action) m_action();
    }
    void ForceUpdate() override { m_codes += "force "; }
    std::string Take() { return std::exchange(m_codes, {}); }

    std::string m_codes;
    std::function<void()> m_action;
};

std::string g_callback;
int g_answer = 0;
std::int32_t Callback(int code, int value, const char* text) {
    g_callback += std::to_string(code) + "," + std::to_string(value) + "," + (text ? text : "null") + " ";
    return g_answer;
}

TEST(ProgressChanges, TellObserversAndThenTheCallback) {
    static constexpr struct {
        const char* name;
        void (*change)(CB_Dialog&);
        const char* observers;
        const char* callback;
    } kCases[] = {
        {"SetNumSteps", [](CB_Dialog& d) { d.SetNumSteps(9); }, "1 ", "8,0,null 1,9,null "},
        {"SetNumSteps 0", [](CB_Dialog& d) { d.SetNumSteps(0); }, "", ""},
        {"SetNumSteps -1", [](CB_Dialog& d) { d.SetNumSteps(-1); }, "", ""},
        {"IncNumSteps", [](CB_Dialog& d) { d.IncNumSteps(2); }, "7 ", "7,2,null "},
        {"DecNumSteps", [](CB_Dialog& d) { d.DecNumSteps(3); }, "2 ", "2,3,null "},
        {"Step", [](CB_Dialog& d) { d.Step(4); }, "0 ", "0,4,null "},
        {"ResetPosition", [](CB_Dialog& d) { d.ResetPosition(10); }, "8 ", "8,10,null "},
        {"ResetPosition beyond", [](CB_Dialog& d) { d.ResetPosition(11); }, "", "8,11,null "},
        {"Close", [](CB_Dialog& d) { d.Close(); }, "13 ", "13,10,null "},
        {"MessageLine1", [](CB_Dialog& d) { d.MessageLine1(ORVustring("a")); }, "3 ", "3,0,a "},
        {"MessageLine2 wide", [](CB_Dialog& d) { d.MessageLine2(ORVwstring(u"\u00E4")); }, "4 ", "4,0,\xC3\xA4 "},
        {"MessageLine3 empty", [](CB_Dialog& d) { d.MessageLine3(); }, "5 ", "5,0, "},
        {"SetValue1", [](CB_Dialog& d) { d.SetValue1(-5); }, "9 ", "9,-5,null "},
        {"SetValue2", [](CB_Dialog& d) { d.SetValue2(5); }, "10 ", "10,5,null "},
        {"Cancel", [](CB_Dialog& d) { d.Cancel(); }, "12 ", "12,0,null "},
        {"ClearCancelFlag", [](CB_Dialog& d) { d.ClearCancelFlag(); }, "", ""},
        {"Pause", [](CB_Dialog& d) { d.Pause(); }, "", ""},
        {"Unpause", [](CB_Dialog& d) { d.Unpause(); }, "", ""},
        {"ForceUpdate", [](CB_Dialog& d) { d.ForceUpdate(); }, "force ", ""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        CB_Dialog dialog(Callback, 0), stateless(0xFFFFFFF0u);
        dialog.SetNumSteps(10);
        Recorder recorder;
        dialog.AddObserver(&recorder);
        g_callback.clear();
        c.change(dialog);
        EXPECT_EQ(recorder.Take(), c.observers);
        EXPECT_EQ(g_callback, c.callback);
        c.change(stateless);
        EXPECT_EQ(stateless.GetNumSteps() + stateless.GetValue1() + stateless.GetValue2(), 0);
        dialog.RemoveObserver(&recorder);
    }
}

TEST(ProgressSteps, StayWithinTheNumberOfSteps) {
    CB_Dialog dialog;
    EXPECT_EQ(dialog.GetNumSteps(), 1);
    EXPECT_EQ(dialog.GetCurrStep(), 0);
    dialog.SetNumSteps(10);
    dialog.Step(7);
    EXPECT_EQ(dialog.GetPercentComplete(), 70u);
    dialog.Step(0xFFFFFFFFu);
    EXPECT_EQ(dialog.GetCurrStep(), 10);
    EXPECT_EQ(dialog.GetPercentComplete(), 100u);
    dialog.DecNumSteps(4);
    EXPECT_EQ(dialog.GetCurrStep(), 6);
    dialog.IncNumSteps(3);
    EXPECT_EQ(dialog.GetPercentComplete(), 66u) << "cut, not rounded";
    dialog.ResetPosition(2);
    EXPECT_EQ(dialog.GetCurrStep(), 2);
    EXPECT_EQ(dialog.GetCurrEventStartMarker(), 2u);
    dialog.Close();
    EXPECT_EQ(dialog.GetCurrStep(), 9);
    dialog.DecNumSteps(9);
    EXPECT_EQ(dialog.GetPercentComplete(), 0u) << "no steps at all";
    dialog.SetNumSteps(1);
    dialog.DecNumSteps(2);
    EXPECT_EQ(dialog.GetNumSteps(), -1) << "the count is unsigned and wraps";
}

TEST(ProgressSteps, ADialogWithoutAStateAnswersNothing) {
    const CB_Dialog dialog(0xFFFFFFF0u);
    EXPECT_EQ(dialog.GetEventID(), 0xFFFFFFFFu);
    EXPECT_EQ(dialog.GetPercentComplete(), 0u);
    EXPECT_EQ(dialog.GetSecondsRemaining(), 0u);
    EXPECT_EQ(dialog.GetEventStartTime().dwHighDateTime, 0u);
    EXPECT_TRUE(dialog.GetMessageLine1().empty());
    EXPECT_FALSE(dialog.Is_Cancelled());
    EXPECT_FALSE(dialog.Is_Paused());
    EXPECT_TRUE(dialog.CanRun(0));
    EXPECT_TRUE(dialog.CanRun(1000000));
}

TEST(ProgressHandles, OfOneNameShareOneState) {
    CB_Dialog first("copy files"), second("copy files"), third("Copy files");
    first.SetNumSteps(5);
    first.Step(2);
    first.MessageLine1(ORVustring("one"));
    first.SetValue2(5);
    EXPECT_EQ(second.GetCurrStep(), 2);
    EXPECT_STREQ(second.GetMessageLine1().c_str(), "one");
    EXPECT_EQ(second.GetValue1(), 0);
    EXPECT_EQ(second.GetValue2(), 5);
    EXPECT_EQ(third.GetCurrStep(), 0);
    EXPECT_EQ(CB_Dialog(first.GetEventID()).GetCurrStep(), 2);
    const CB_Dialog empty("");
    EXPECT_EQ(CB_Dialog(static_cast<const char*>(nullptr)).GetEventID(), empty.GetEventID());
}

TEST(ProgressHandles, CopiesFindTheStateByItsName) {
    CB_Dialog original(Callback, 0);
    const CB_Dialog copy(original), fromPointer(&original), fromNull(static_cast<const CB_Dialog*>(nullptr));
    const CB_Dialog none(0xFFFFFFF0u);
    EXPECT_EQ(copy.GetEventID(), original.GetEventID());
    EXPECT_EQ(fromPointer.GetEventID(), original.GetEventID());
    EXPECT_NE(fromNull.GetEventID(), original.GetEventID());
    EXPECT_NE(CB_Dialog(none).GetEventID(), 0xFFFFFFFFu) << "a copy of a stateless handle gets a state";

    CB_Dialog assigned("other");
    const std::uint32_t other = assigned.GetEventID();
    assigned = original;
    EXPECT_EQ(assigned.GetEventID(), original.GetEventID());
    EXPECT_EQ(CB_Dialog(other).GetEventID(), 0xFFFFFFFFu) << "the state left behind has ended";
    g_answer = 1;
    EXPECT_TRUE(assigned.Is_Cancelled()) << "the callback came along";
    g_answer = 0;
    assigned = *&assigned;
    EXPECT_EQ(assigned.GetEventID(), original.GetEventID());
    assigned = none;
    EXPECT_EQ(assigned.GetEventID(), 0xFFFFFFFFu);
}

TEST(ProgressManager, NumbersItsStatesAndNamesTheAnonymousOnes) {
    ProgressMgr manager;
    manager.Enter();
    ProgressInfo* const first = manager.CreateAnonymous();
    ProgressInfo* const second = manager.CreateAnonymous();
    EXPECT_EQ(first->EventId(), 0u);
    EXPECT_STREQ(first->Name().c_str(), "FakeEvent #0");
    EXPECT_EQ(second->EventId(), 1u);
    EXPECT_STREQ(second->Name().c_str(), "FakeEvent #1");
    ProgressInfo* const impostor = manager.FindOrCreate("FakeEvent #3");
    EXPECT_EQ(impostor->EventId(), 2u);
    ProgressInfo* const fourth = manager.CreateAnonymous();
    EXPECT_EQ(manager.FindOrCreate(fourth->Name()), impostor) << "the first of a name";
    EXPECT_EQ(manager.FindByEventId(3), fourth);
    EXPECT_EQ(manager.FindByEventId(4), nullptr);
    for (ProgressInfo* const info : {first, second, impostor, impostor, fourth, fourth}) info->DropRef();
    EXPECT_EQ(manager.FindByEventId(0), nullptr);
    manager.Exit();
}

TEST(ProgressManager, HandlesOutliveIt) {
    auto manager = std::make_unique<ProgressMgr>();
    ProgressInfo* const parent = manager->FindOrCreate("parent");
    ProgressInfo* const child = manager->FindOrCreate("child");
    parent->AddChild(child);
    child->DropRef();
    manager.reset();
    EXPECT_EQ(parent->Manager(), nullptr);
    EXPECT_EQ(parent->PercentComplete(), 0u);
    parent->DropRef();
}

TEST(ProgressManager, HandlesHaveNoStateWithoutIt) {
    CB_Dialog dialog(Callback, 0), named("named");
    testing_support::RegistryDown registry;
    ASSERT_EQ(GetProgressMgr(), nullptr);
    g_callback.clear();
    for (const bool again : {false, true}) {
        if (again) registry.BringBack();
        EXPECT_EQ(GetProgressMgr() != nullptr, again);
        EXPECT_EQ(dialog.GetEventID(), 0xFFFFFFFFu) << "also when a new manager has come";
        dialog.Step(1);
        EXPECT_EQ(dialog.GetCurrStep(), 0);
        EXPECT_TRUE(dialog.CanRun(1000000));
        EXPECT_EQ(CB_Dialog(named).GetEventID() != 0xFFFFFFFFu, again);
    }
    EXPECT_EQ(g_callback, "0,1,null 6,0,null 6,0,null 0,1,null 6,0,null 6,0,null ");
    named = CB_Dialog("named");
    EXPECT_NE(named.GetEventID(), 0xFFFFFFFFu);
}

TEST(ProgressCancel, StaysUntilSomethingTakesItBack) {
    static constexpr struct {
        const char* name;
        void (*change)(CB_Dialog&);
        bool cancelled;
    } kCases[] = {
        {"Step", [](CB_Dialog& d) { d.Step(1); }, true},
        {"Close", [](CB_Dialog& d) { d.Close(); }, true},
        {"ResetPosition beyond", [](CB_Dialog& d) { d.ResetPosition(2); }, true},
        {"SetNumSteps 0", [](CB_Dialog& d) { d.SetNumSteps(0); }, true},
        {"ClearCancelFlag", [](CB_Dialog& d) { d.ClearCancelFlag(); }, false},
        {"SetNumSteps", [](CB_Dialog& d) { d.SetNumSteps(3); }, false},
        {"ResetPosition", [](CB_Dialog& d) { d.ResetPosition(1); }, false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        CB_Dialog dialog;
        dialog.Cancel();
        EXPECT_TRUE(dialog.Is_Cancelled());
        EXPECT_FALSE(dialog.CanRun(0));
        c.change(dialog);
        EXPECT_EQ(dialog.Is_Cancelled(), c.cancelled);
        EXPECT_EQ(dialog.CanRun(1000000), !c.cancelled);
    }
}

TEST(ProgressCancel, TheCallbacksAnswerReplacesTheFlag) {
    CB_Dialog dialog(Callback, 0), watcher(dialog.GetEventID());
    g_answer = 1;
    g_callback.clear();
    EXPECT_TRUE(dialog.Is_Cancelled());
    EXPECT_EQ(g_callback, "6,0,null ");
    EXPECT_FALSE(dialog.CanRun(0));
    EXPECT_FALSE(watcher.Is_Cancelled());
    g_answer = 0;
    watcher.Cancel();
    EXPECT_FALSE(dialog.Is_Cancelled());
    EXPECT_TRUE(dialog.CanRun(0));
}

TEST(ProgressObservers, ChildrenReportToTheirParents) {
    static constexpr struct {
        const char* name;
        void (*change)(CB_Dialog&);
        const char* parents;
    } kCases[] = {
        {"Step", [](CB_Dialog& d) { d.Step(1); }, "0 "},
        {"SetNumSteps", [](CB_Dialog& d) { d.SetNumSteps(1); }, "1 "},
        {"DecNumSteps", [](CB_Dialog& d) { d.DecNumSteps(0); }, "2 "},
        {"IncNumSteps", [](CB_Dialog& d) { d.IncNumSteps(1); }, "7 "},
        {"ResetPosition", [](CB_Dialog& d) { d.ResetPosition(0); }, "8 "},
        {"Close", [](CB_Dialog& d) { d.Close(); }, "0 "},
        {"MessageLine1", [](CB_Dialog& d) { d.MessageLine1(); }, ""},
        {"SetValue1", [](CB_Dialog& d) { d.SetValue1(1); }, ""},
        {"Cancel", [](CB_Dialog& d) { d.Cancel(); }, ""},
        {"ForceUpdate", [](CB_Dialog& d) { d.ForceUpdate(); }, "force "},
    };
    CB_Dialog top, parent, child;
    Recorder recorder;
    top.AddObserver(&recorder);
    top.AddChild(parent);
    parent.AddChild(child);
    for (const auto& c : kCases) {
        c.change(child);
        EXPECT_EQ(recorder.Take(), c.parents) << c.name;
    }
}

TEST(ProgressObservers, AParentCountsAndKeepsItsChildren) {
    CB_Dialog child("child");
    Recorder recorder;
    {
        CB_Dialog parent("parent");
        parent.AddObserver(&recorder);
        parent.SetNumSteps(10);
        parent.Step(3);
        child.SetNumSteps(10);
        child.Step(7);
        parent.AddChild(child);
        EXPECT_EQ(parent.GetPercentComplete(), 50u);
        child = CB_Dialog("elsewhere");
        EXPECT_EQ(parent.GetPercentComplete(), 50u);
        child = CB_Dialog("child");
        EXPECT_EQ(child.GetCurrStep(), 7);
        parent.AddChild(parent);
        child.AddChild(parent);
        EXPECT_EQ(parent.GetPercentComplete(), 50u) << "no circles";
        recorder.Take();
        child.Step(1);
        EXPECT_EQ(recorder.Take(), "0 ");
    }
    child.Step(1);
    EXPECT_EQ(recorder.Take(), "") << "the parent has let go";
}

TEST(ProgressObservers, ComeAndGoWhileTheyAreTold) {
    auto dialog = std::make_unique<CB_Dialog>("observed");
    Recorder a, b, c, late;
    for (Recorder* const each : {&a, &b, &a, &c}) dialog->AddObserver(each);
    dialog->AddObserver(nullptr);
    a.m_action = [&] {
        dialog->RemoveObserver(&a);
        dialog->AddObserver(&late);
    };
    b.m_action = [&] { dialog->RemoveObserver(&c); };
    dialog->Step(1);
    EXPECT_EQ(a.Take() + b.Take() + c.Take() + late.Take(), "0 0 ");
    b.m_action = [&] { dialog.reset(); };
    dialog->Step(1);
    EXPECT_EQ(a.Take() + b.Take() + c.Take() + late.Take(), "0 0 ") << "b, and late though the last handle has gone";
}

class ProgressTime : public testing::Test {
protected:
    ~ProgressTime() override { platform::ShiftFileTime(0); }
    // Moves the clock to so many milliseconds from the present.
    static void At(std::int64_t milliseconds) { platform::ShiftFileTime(milliseconds * 10000); }
};

TEST_F(ProgressTime, RemainingSecondsFollowTheSteps) {
    CB_Dialog dialog;
    dialog.UpdateTimeStats();
    EXPECT_EQ(dialog.GetSecondsRemaining(), 0u) << "never started";
    dialog.SetNumSteps(100);
    dialog.Step(25);
    At(1500);
    dialog.UpdateTimeStats();
    EXPECT_EQ(dialog.GetSecondsRemaining(), 0u) << "too soon";
    At(10100);
    dialog.UpdateTimeStats();
    EXPECT_EQ(dialog.GetSecondsRemaining(), 30u);
    dialog.Step(25);
    At(11500);
    dialog.UpdateTimeStats();
    EXPECT_EQ(dialog.GetSecondsRemaining(), 30u) << "too soon after the last time";
    dialog.ResetPosition(50);
    At(15600);
    dialog.UpdateTimeStats();
    EXPECT_EQ(dialog.GetSecondsRemaining(), 30u) << "nothing done since the restart";
    dialog.Step(20);
    At(20600);
    dialog.UpdateTimeStats();
    EXPECT_EQ(dialog.GetSecondsRemaining(), 13u) << "9 s for 20 steps, 30 left";
}

TEST_F(ProgressTime, ClockJumpsChangeNothing) {
    CB_Dialog dialog;
    dialog.SetNumSteps(4);
    dialog.Step(1);
    for (const std::int64_t jump : {std::int64_t{-3'600'000}, std::int64_t{0x80000001} * 1000}) {
        At(jump);
        dialog.UpdateTimeStats();
        EXPECT_EQ(dialog.GetSecondsRemaining(), 0u) << jump;
    }
    At(std::int64_t{0x40000000} * 1000);
    dialog.UpdateTimeStats();
    EXPECT_EQ(dialog.GetSecondsRemaining(), 0xC0000000u);
    At(std::int64_t{0x80000001} * 1000);
    dialog.UpdateTimeStats();
    EXPECT_EQ(dialog.GetSecondsRemaining(), 0xC0000000u) << "too long since the start";
}

TEST_F(ProgressTime, StartsWithTheStepsAndAtEachReset) {
    CB_Dialog dialog;
    EXPECT_EQ(dialog.GetEventStartTime().dwHighDateTime, 0u);
    ORV_FILETIME before, after;
    TIME_GetCurrentFileTime(before);
    dialog.SetNumSteps(4);
    TIME_GetCurrentFileTime(after);
    const auto ticks = [](const ORV_FILETIME& t) { return std::uint64_t{t.dwHighDateTime} << 32 | t.dwLowDateTime; };
    EXPECT_LE(ticks(before), ticks(dialog.GetEventStartTime()));
    EXPECT_GE(ticks(after), ticks(dialog.GetEventStartTime()));
    At(5000);
    dialog.ResetPosition(5);
    EXPECT_GE(ticks(after), ticks(dialog.GetEventStartTime()));
    dialog.ResetPosition(4);
    EXPECT_LT(ticks(after), ticks(dialog.GetEventStartTime()));
}

TEST(PrintfObserver, PrintsTheLinesAskedForAsTheyAre) {
    testing::internal::CaptureStdout();
    CB_Dialog dialog("printed");
    {
        const PrintfObserver first("printed", true, false, true), second("printed", false, true, false);
        dialog.MessageLine1(ORVustring("100% %s%n"));
        dialog.MessageLine2(ORVustring("two"));
        dialog.MessageLine3();
        dialog.Step(1);
    }
    dialog.MessageLine1(ORVustring("unseen"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "100% %s%n\ntwo\n\n");
}

}  // namespace
}  // namespace dorvutil
