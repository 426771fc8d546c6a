#include "dorvutil/messaging/activity.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "dorvutil/frame/registry.h"
#include "dorvutil/messaging/callback_mgr.h"
#include "dorvutil/messaging/event_timer.h"
#include "dorvutil/messaging/ui_message.h"
#include "dorvutil/platform/clock.h"
#include "messaging/registry_down.h"

namespace dorvutil {
namespace {

// What the host's hooks and the notifications saw, in order.
std::string g_seen;

class Activity : public COrvUIActivity {
public:
    explicit Activity(const char* name = "activity") : COrvUIActivity(name, true) { ++s_alive; }
    ~Activity() override { --s_alive; }
    void DoActivity() override { g_seen += "do "; }
    inline static int s_alive = 0;
};

void RunNow(COrvUIActivity* activity) {
    activity->DoActivity();
    activity->Completed(true);
    activity->Unref();
}

COrvUIActivity* g_kept = nullptr;
void Keep(COrvUIActivity* activity) { g_kept = activity; }

TEST(ScheduleUIActivity, AnswersAndConsumesTheReference) {
    static constexpr struct {
        CallbackMgr::UIActivityCallback host;
        bool wait;
        std::int32_t result;
        int alive;  // afterwards, through the host's reference
    } kCases[] = {{nullptr, true, -1, 0}, {nullptr, false, -1, 0}, {RunNow, true, 1, 0},
                  {RunNow, false, 1, 0},  {Keep, true, 0, 1},      {Keep, false, 1, 1}};
    for (const auto& c : kCases) {
        g_seen.clear();
        GetCallbackMgr()->SetUIActivityCallback(c.host);
        EXPECT_EQ(ScheduleUIActivity(new Activity, c.wait, 20), c.result) << "case " << &c - kCases;
        EXPECT_EQ(Activity::s_alive, c.alive) << "case " << &c - kCases;
        if (c.alive != 0) RunNow(g_kept);
        EXPECT_EQ(Activity::s_alive, 0);
        EXPECT_EQ(g_seen, c.host ? "do " : "");
    }
    EXPECT_EQ(ScheduleUIActivity(nullptr, true, 20), -1);
    const testing_support::RegistryDown down;
    EXPECT_EQ(ScheduleUIActivity(new Activity, true, 20), -1) << "no manager";
    EXPECT_EQ(Activity::s_alive, 0);
}

TEST(UIMessage, CompletionTellsHandlerSenderAndWaiterInTurn) {
    CallbackMgr& manager = *GetCallbackMgr();
    g_seen.clear();
    manager.SetUserMsgHandler([](const RoadlynUIMsg& m) { return g_seen += "user" + std::to_string(m.Event()), 0; });
    manager.SetPostMsgHandler([](const RoadlynUIMsg& m) { return g_seen += "post" + std::to_string(m.Event()), 0; });
    const MsgHandledParams notify{
        [](bool handled, std::int32_t context) { g_seen += (handled ? "yes" : "no") + std::to_string(context); }, 9};
    RoadlynUIMsg message(5, 6, {7, 8}, 4, &notify);
    message.DoActivity();
    message.Completed(true);
    EXPECT_EQ(message.WaitForCompletion(0), 1);
    EXPECT_EQ(message.WaitForCompletion(0), 0) << "one completion releases one wait";
    message.Completed(false);
    RoadlynUIMsg(message).Completed(false);  // a copy notifies nobody
    EXPECT_EQ(g_seen, "user5post5yes9no9");
    manager.SetUserMsgHandler(nullptr);
    manager.SetPostMsgHandler(nullptr);
    message.DoActivity();
    message.Completed(true);
    EXPECT_EQ(g_seen, "user5post5yes9no9yes9");
}

TEST(UIMessage, CopiesTakeTheValuesAndTheTick) {
    platform::ShiftTick(123'456);
    const RoadlynUIMsg message(5, 6, {7, 8}, 4);
    platform::ShiftTick(0);
    RoadlynUIMsg assigned;
    EXPECT_EQ(std::tuple(assigned.Event(), assigned.Parameter(), assigned.SecondParameter()), std::tuple(0, -1, -1));
    assigned = message;
    for (const RoadlynUIMsg& copy : {RoadlynUIMsg(message), assigned}) {
        EXPECT_EQ(std::tuple(copy.Event(), copy.Parameter(), copy.Point().x, copy.Point().y, copy.SecondParameter()),
                  std::tuple(5, 6, 7, 8, 4));
        EXPECT_EQ(copy.CreationTick(), message.CreationTick());
    }
}

TEST(UIMessage, ClassesOfEvents) {
    static constexpr std::int32_t kClasses[][4] = {
        {1, 5, 29, 30}, {31, 40, 60, 61}, {62, 100, 142, 143}, {144, 0, -1, 0x7FFFFFFF}};
    for (int first = 0; first < 16; ++first) {
        for (int second = 0; second < 16; ++second) {
            const RoadlynUIMsg a(kClasses[first / 4][first % 4]), b(kClasses[second / 4][second % 4]);
            EXPECT_EQ(a < b, first / 4 < second / 4) << a.Event() << " " << b.Event();
            EXPECT_EQ(a > b, first / 4 > second / 4) << a.Event() << " " << b.Event();
        }
    }
}

TEST(UIMessage, EventsThatMayBeMerged) {
    static constexpr char kPlain[] = "2 18 93 ", kDevice[] = "2 18 35 36 60 61 93 ";
    static constexpr struct {
        bool mouseDown;
        HardwareInfo device;
        const char* kept;
    } kCases[] = {{false, {}, kPlain},
                  {true, {0, true, false}, "2 18 42 49 51 55 93 "},
                  {false, {1, false, false}, kDevice},
                  {false, {2, false, false}, kDevice},
                  {false, {3, true, false}, kPlain},
                  {false, {0, false, true}, kDevice}};
    for (const auto& c : kCases) {
        GetORVUtilGlobals()->SetMouseDown(c.mouseDown);
        GetORVUtilGlobals()->SetHardwareInfo(c.device);
        std::string kept;
        for (std::int32_t event = -2; event < 205; ++event) {
            const bool equal = RoadlynUIMsg(event, 3, {1, 1}) == RoadlynUIMsg(event, 3, {2, 2});
            if (!equal) kept += std::to_string(event) + " ";
        }
        EXPECT_EQ(kept, c.kept) << "device " << c.device.m_deviceKind;
    }
    GetORVUtilGlobals()->SetMouseDown(false);
    GetORVUtilGlobals()->SetHardwareInfo({});
    EXPECT_FALSE(RoadlynUIMsg(5) == RoadlynUIMsg(6));
    EXPECT_FALSE(RoadlynUIMsg(87, 1) == RoadlynUIMsg(87, 2));
    EXPECT_TRUE(RoadlynUIMsg(86, 1) == RoadlynUIMsg(86, 2));
}

TEST(UIActivity, EqualWithTheSameName) {
    const Activity first("redraw"), same("redraw"), shorter("redra"), other("redraX");
    const RoadlynUIMsg plain(COrvUIActivity::kEvent);
    const RoadlynUIMsg& message = first;
    EXPECT_TRUE(message == same && first.AllowSynchronous());
    EXPECT_FALSE(message == shorter || message == other);
    EXPECT_FALSE(message == plain) << "a message has no name";
}

TEST(EventTimer, TimeOutsAreUIMessages) {
    OrvTimer timer(eOrvEventType{64}, 7, {8, 9}, "timer", 1000, true), plain(eOrvEventType{65}, "plain", 1000, false);
    OrvTimerAsync &first = timer, &second = plain;
    g_seen.clear();
    first.OnTimeout();  // nobody listens
    GetCallbackMgr()->SetUIMsgCallback([](EMsgID id, const CBDataBase* data) {
        const auto& m = static_cast<const CBDataUIMsg&>(*data);
        for (const std::uint32_t value : {std::uint32_t{id}, data->Type()}) g_seen += std::to_string(value) + " ";
        for (const auto value : {m.m_event, m.m_parameter, m.m_point.x, m.m_point.y})
            g_seen += std::to_string(value) + " ";
    });
    first.OnTimeout();
    second.OnTimeout();
    EXPECT_EQ(g_seen, "1 10 64 7 8 9 1 10 65 0 0 0 ");
    GetCallbackMgr()->SetUIMsgCallback(nullptr);
}

}  // namespace
}  // namespace dorvutil
