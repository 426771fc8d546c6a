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
#include "messaging/registry_down.h"

namespace dorvutil {
namespace {

// Writes the codes it is told, and does what it is asked to.
struct Recorder : ProgressObserver {
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

constexpr std::uint32_t kNone = 0xFFFFFFFF;

TEST(ProgressChanges, TellObserversThenTheCallbackAndTheParents) {
    static constexpr struct {
        const char* name;
        void (*change)(CB_Dialog&);
        const char *observers, *callback, *parents;
        bool takesBackCancel = false;
    } kCases[] = {
        {"SetNumSteps", [](CB_Dialog& d) { d.SetNumSteps(9); }, "1 ", "8,0,null 1,9,null ", "1 ", true},
        {"SetNumSteps 0", [](CB_Dialog& d) { d.SetNumSteps(0); }, "", "", ""},
        {"SetNumSteps -1", [](CB_Dialog& d) { d.SetNumSteps(-1); }, "", "", ""},
        {"IncNumSteps", [](CB_Dialog& d) { d.IncNumSteps(2); }, "7 ", "7,2,null ", "7 "},
        {"DecNumSteps", [](CB_Dialog& d) { d.DecNumSteps(3); }, "2 ", "2,3,null ", "2 "},
        {"Step", [](CB_Dialog& d) { d.Step(4); }, "0 ", "0,4,null ", "0 "},
        {"ResetPosition", [](CB_Dialog& d) { d.ResetPosition(10); }, "8 ", "8,10,null ", "8 ", true},
        {"ResetPosition beyond", [](CB_Dialog& d) { d.ResetPosition(11); }, "", "8,11,null ", ""},
        {"Close", [](CB_Dialog& d) { d.Close(); }, "13 ", "13,10,null ", "0 "},
        {"MessageLine1", [](CB_Dialog& d) { d.MessageLine1(ORVustring("a")); }, "3 ", "3,0,a ", ""},
        {"MessageLine2", [](CB_Dialog& d) { d.MessageLine2(ORVwstring(u"ä")); }, "4 ", "4,0,ä ", ""},
        {"MessageLine3", [](CB_Dialog& d) { d.MessageLine3(); }, "5 ", "5,0, ", ""},
        {"SetValue1", [](CB_Dialog& d) { d.SetValue1(-5); }, "9 ", "9,-5,null ", ""},
        {"SetValue2", [](CB_Dialog& d) { d.SetValue2(5); }, "10 ", "10,5,null ", ""},
        {"Cancel", [](CB_Dialog& d) { d.Cancel(); }, "12 ", "12,0,null ", ""},
        {"ClearCancelFlag", [](CB_Dialog& d) { d.ClearCancelFlag(); }, "", "", "", true},
        {"Pause", [](CB_Dialog& d) { d.Pause(); }, "", "", ""},
        {"Unpause", [](CB_Dialog& d) { d.Unpause(); }, "", "", ""},
        {"ForceUpdate", [](CB_Dialog& d) { d.ForceUpdate(); }, "force ", "", "force "},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        CB_Dialog top, parent, dialog(Callback, 0), stateless(0xFFFFFFF0u), cancelled;
        Recorder recorder, above;
        dialog.SetNumSteps(10);
        dialog.AddObserver(&recorder);
        top.AddObserver(&above);
        top.AddChild(parent);
        parent.AddChild(dialog);
        g_callback.clear();
        above.Take();
        c.change(dialog);
        EXPECT_EQ(recorder.Take(), c.observers);
        EXPECT_EQ(g_callback, c.callback);
        EXPECT_EQ(above.Take(), c.parents);
        c.change(stateless);
        EXPECT_EQ(stateless.GetNumSteps() + stateless.GetValue1() + stateless.GetValue2(), 0);
        cancelled.SetNumSteps(10);
        cancelled.Cancel();
        c.change(cancelled);
        EXPECT_EQ(cancelled.Is_Cancelled(), !c.takesBackCancel);
        EXPECT_EQ(cancelled.CanRun(1000000), c.takesBackCancel);
        dialog.RemoveObserver(&recorder);
    }
}

TEST(ProgressSteps, StayWithinTheNumberOfSteps) {
    CB_Dialog dialog;
    EXPECT_TRUE(dialog.GetNumSteps() == 1 && dialog.GetCurrStep() == 0);
    dialog.SetNumSteps(10);
    dialog.Step(7);
    EXPECT_EQ(dialog.GetPercentComplete(), 70u);
    dialog.Step(kNone);
    EXPECT_TRUE(dialog.GetCurrStep() == 10 && dialog.GetPercentComplete() == 100);
    dialog.DecNumSteps(4);
    EXPECT_EQ(dialog.GetCurrStep(), 6);
    dialog.IncNumSteps(3);
    EXPECT_EQ(dialog.GetPercentComplete(), 66u) << "cut, not rounded";
    dialog.ResetPosition(2);
    EXPECT_TRUE(dialog.GetCurrStep() == 2 && dialog.GetCurrEventStartMarker() == 2);
    dialog.Close();
    EXPECT_EQ(dialog.GetCurrStep(), 9);
    dialog.DecNumSteps(9);
    EXPECT_EQ(dialog.GetPercentComplete(), 0u) << "no steps at all";
    dialog.SetNumSteps(1);
    dialog.DecNumSteps(2);
    EXPECT_EQ(dialog.GetNumSteps(), -1) << "the count is unsigned and wraps";
}

TEST(ProgressHandles, FindTheirStateByItsName) {
    CB_Dialog first("copy files"), second("copy files"), third("Copy files");
    first.SetNumSteps(5);
    first.Step(2);
    first.MessageLine1(ORVustring("one"));
    first.SetValue2(5);
    EXPECT_TRUE(second.GetCurrStep() == 2 && second.GetMessageLine1() == "one");
    EXPECT_TRUE(second.GetValue1() == 0 && second.GetValue2() == 5);
    EXPECT_EQ(third.GetCurrStep(), 0);
    EXPECT_EQ(CB_Dialog(first.GetEventID()).GetCurrStep(), 2);
    const CB_Dialog empty(""), none(0xFFFFFFF0u);
    EXPECT_EQ(CB_Dialog(static_cast<const char*>(nullptr)).GetEventID(), empty.GetEventID());
    EXPECT_TRUE(none.GetEventID() == kNone && none.GetPercentComplete() == 0 && none.GetMessageLine1().empty());
    EXPECT_TRUE(!none.Is_Cancelled() && !none.Is_Paused() && none.CanRun(0) && none.CanRun(1000000));

    CB_Dialog original(Callback, 0), assigned("other");
    const CB_Dialog copy(original), fromPointer(&original), fromNull(static_cast<const CB_Dialog*>(nullptr));
    const std::uint32_t id = original.GetEventID(), other = assigned.GetEventID();
    EXPECT_TRUE(copy.GetEventID() == id && fromPointer.GetEventID() == id && fromNull.GetEventID() != id);
    EXPECT_NE(CB_Dialog(none).GetEventID(), kNone) << "a copy of a stateless handle gets a state";
    assigned = original;
    assigned = *&assigned;
    EXPECT_EQ(assigned.GetEventID(), id);
    EXPECT_EQ(CB_Dialog(other).GetEventID(), kNone) << "the state left behind has ended";
    g_answer = 1;
    EXPECT_TRUE(assigned.Is_Cancelled()) << "the callback came along";
    g_answer = 0;
    assigned = none;
    EXPECT_EQ(assigned.GetEventID(), kNone);
}

TEST(ProgressManager, NumbersItsStatesAndNamesTheAnonymousOnes) {
    ProgressMgr manager;
    manager.Enter();
    ProgressInfo* const first = manager.CreateAnonymous();
    ProgressInfo* const second = manager.CreateAnonymous();
    ProgressInfo* const impostor = manager.FindOrCreate("FakeEvent #3");
    ProgressInfo* const fourth = manager.CreateAnonymous();
    EXPECT_TRUE(first->Name() == "FakeEvent #0" && second->Name() == "FakeEvent #1");
    EXPECT_TRUE(first->EventId() == 0 && second->EventId() == 1 && impostor->EventId() == 2);
    EXPECT_EQ(manager.FindOrCreate(fourth->Name()), impostor) << "the first of a name";
    EXPECT_TRUE(manager.FindByEventId(3) == fourth && manager.FindByEventId(4) == nullptr);
    for (ProgressInfo* const info : {first, second, impostor, impostor, fourth, fourth}) info->DropRef();
    EXPECT_EQ(manager.FindByEventId(0), nullptr);
    manager.Exit();
}

TEST(ProgressManager, HandlesOutliveItAndHaveNoStateWithoutIt) {
    CB_Dialog dialog(Callback, 0), named("named"), parent("parent");
    parent.AddChild(named);
    testing_support::RegistryDown registry;
    g_callback.clear();
    for (const bool again : {false, true}) {
        if (again) registry.BringBack();
        EXPECT_EQ(GetProgressMgr() != nullptr, again);
        EXPECT_EQ(dialog.GetEventID(), kNone) << "also when a new manager has come";
        dialog.Step(1);
        EXPECT_TRUE(dialog.GetCurrStep() == 0 && parent.GetPercentComplete() == 0 && dialog.CanRun(1000000));
        EXPECT_EQ(CB_Dialog(named).GetEventID() != kNone, again);
    }
    EXPECT_EQ(g_callback, "0,1,null 6,0,null 6,0,null 0,1,null 6,0,null 6,0,null ");
}

TEST(ProgressCancel, TheCallbacksAnswerReplacesTheFlag) {
    CB_Dialog dialog(Callback, 0), watcher(dialog.GetEventID());
    g_answer = 1;
    g_callback.clear();
    EXPECT_TRUE(dialog.Is_Cancelled());
    EXPECT_EQ(g_callback, "6,0,null ");
    EXPECT_FALSE(dialog.CanRun(0) || watcher.Is_Cancelled());
    g_answer = 0;
    watcher.Cancel();
    EXPECT_TRUE(dialog.CanRun(0) && !dialog.Is_Cancelled());
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
        parent.AddChild(parent);
        child.AddChild(parent);
        EXPECT_EQ(parent.GetPercentComplete(), 50u) << "no circles";
        recorder.Take();
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

// The seconds that remain, with the clock so many milliseconds from the start.
class ProgressTime : public testing::Test {
protected:
    ~ProgressTime() override { platform::ShiftFileTime(0); }
    std::uint32_t At(std::int64_t milliseconds) {
        platform::ShiftFileTime(milliseconds * 10000);
        m_dialog.UpdateTimeStats();
        return m_dialog.GetSecondsRemaining();
    }
    CB_Dialog m_dialog;
};

TEST_F(ProgressTime, RemainingSecondsFollowTheSteps) {
    EXPECT_EQ(m_dialog.GetEventStartTime().dwHighDateTime, 0u);
    EXPECT_EQ(At(0), 0u) << "never started";
    m_dialog.SetNumSteps(100);
    EXPECT_NE(m_dialog.GetEventStartTime().dwHighDateTime, 0u);
    m_dialog.Step(25);
    EXPECT_EQ(At(1500), 0u) << "too soon";
    EXPECT_EQ(At(10100), 30u);
    m_dialog.Step(25);
    EXPECT_EQ(At(11500), 30u) << "too soon after the last time";
    m_dialog.ResetPosition(50);
    EXPECT_EQ(At(15600), 30u) << "nothing done since the restart";
    m_dialog.Step(20);
    EXPECT_EQ(At(20600), 13u) << "9 s for 20 steps, 30 left";
}

TEST_F(ProgressTime, ClockJumpsChangeNothing) {
    constexpr std::int64_t kTooLong = std::int64_t{0x80000001} * 1000;
    m_dialog.SetNumSteps(4);
    m_dialog.Step(1);
    EXPECT_EQ(At(-3'600'000) + At(kTooLong), 0u);
    EXPECT_EQ(At(std::int64_t{0x40000000} * 1000), 0xC0000000u);
    EXPECT_EQ(At(kTooLong), 0xC0000000u);
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
