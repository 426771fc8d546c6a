#include "dorvutil/frame/registry.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>

#include "dorvutil/concurrency/low_res_timer_mgr.h"
#include "dorvutil/frame/build_info.h"
#include "dorvutil/frame/dynamic_library.h"
#include "dorvutil/frame/message_screen.h"
#include "dorvutil/frame/unit_test.h"
#include "dorvutil/memory/pool.h"
#include "dorvutil/messaging/callback.h"
#include "dorvutil/platform/thread.h"
#include "dorvutil/text/string.h"

namespace dorvutil {
namespace {

TEST(Registry, OneAccessorCreatesEveryManagerThisBuildHas) {
    ORVUtilGlobals* const registry = GetORVUtilGlobals();
    CallbackMgr* const callbacks = GetCallbackMgr();
    EXPECT_NE(callbacks, nullptr);
    EXPECT_EQ(GetCallbackMgr(), callbacks);
    EXPECT_NE(GetFileMgr(), nullptr);
    EXPECT_NE(GetStringAllocator(), nullptr);
    EXPECT_NE(GetSpecCharMgr(), nullptr);
    EXPECT_NE(GetProgressMgr(), nullptr);
    ASSERT_NE(FileHandlePool(), nullptr);
    EXPECT_EQ(FileHandlePool()->BlockSize(), 4096u);
    EXPECT_NE(EventChainPool(), nullptr);
    ASSERT_NE(TimerAgentPool(), nullptr);
    EXPECT_EQ(TimerAgentPool()->BlockSize(), 4096u);
    ASSERT_NE(GetLowResTimerMgr(), nullptr);
    EXPECT_TRUE(GetLowResTimerMgr()->IsRunning());
    EXPECT_STREQ(GetLowResTimerMgr()->GetThreadName(), "LowResTimer");
    EXPECT_NE(GetLoadedLibraryHash(), nullptr);
    EXPECT_STREQ(registry->Name(), "DOrvUtil");
    EXPECT_EQ(registry->GetAssertTracker(), nullptr);
    EXPECT_EQ(GetSMSHandler(), nullptr);
    EXPECT_EQ(GetPhoneCallMonitor(), nullptr);
    EXPECT_EQ(registry->GetBacklight(), nullptr);
}

TEST(Registry, TearsDownWithTheLastReferenceAndComesBackAfresh) {
    ASSERT_NE(GetCallbackMgr(), nullptr);
    {
        DependencyHolder client;
        client.AddDependency(GetORVUtilGlobals());
        EXPECT_NE(GetFileMgr(), nullptr);
        EXPECT_NE(DynaLoad("dyna_second", 0), nullptr);
    }
    EXPECT_EQ(DynaLoad("dyna_second", 0), nullptr) << "there is nobody to remember it";
    EXPECT_EQ(GetLowResTimerMgr(), nullptr);
    EXPECT_EQ(GetCallbackMgr(), nullptr);
    EXPECT_EQ(GetFileMgr(), nullptr);
    EXPECT_EQ(GetStringAllocator(), nullptr);
    EXPECT_EQ(EventChainPool(), nullptr);
    const ORVustring without("made without a registry");
    EXPECT_STREQ(without.c_str(false), "made without a registry");

    GetORVUtilGlobals()->ObtainRef();
    EXPECT_NE(GetCallbackMgr(), nullptr);
    EXPECT_STREQ(without.c_str(false), "made without a registry");
    GetORVUtilGlobals()->ReleaseRef(true);
    GetORVUtilGlobals()->ObtainRef();  // the other tests of this process go on with a registry
}

std::ptrdiff_t EntriesOf(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
}

TEST(Registry, ComesUpAndDownAThousandTimesAndLeavesNothingBehind) {
    GetORVUtilGlobals()->ReleaseRef(true);
    std::ptrdiff_t threads = 0;
    std::ptrdiff_t files = 0;
    for (int round = 0; round < 1000; ++round) {
        {
            DependencyHolder client;
            client.AddDependency(GetORVUtilGlobals());
            ASSERT_NE(GetLogMgr(), nullptr) << round;
            ASSERT_NE(GetSystemMgr(), nullptr) << round;
        }
        ASSERT_EQ(GetLogMgr(), nullptr) << round;
        if (round == 0) {
            threads = EntriesOf("/proc/self/task");
            files = EntriesOf("/proc/self/fd");
        }
    }
    // The system may take a moment to bury a thread that has ended.
    for (int i = 0; i < 2000 && EntriesOf("/proc/self/task") > threads; ++i) platform::SleepMs(1);
    EXPECT_LE(EntriesOf("/proc/self/task"), threads);
    EXPECT_EQ(EntriesOf("/proc/self/fd"), files);
    GetORVUtilGlobals()->ObtainRef();
}

TEST(Registry, StringsOutliveATearDown) {
    ASSERT_NE(GetStringAllocator(), nullptr);
    ORVustring pooled("short"), empty(""), shared = pooled;
    GetORVUtilGlobals()->ReleaseRef(true);
    ASSERT_EQ(GetStringAllocator(), nullptr);
    EXPECT_STREQ(pooled.c_str(false), "short");
    pooled += " and longer";
    EXPECT_STREQ(pooled.c_str(false), "short and longer");
    EXPECT_STREQ(shared.c_str(false), "short");
    empty += "x";
    GetORVUtilGlobals()->ObtainRef();
    ASSERT_NE(GetStringAllocator(), nullptr);
    shared = pooled;  // lets a block of the earlier allocator go
}

TEST(Registry, SelfTestsHold) {
    UnitTestMgr* const tests = GetORVUtilGlobals()->GetUnitTestMgr();
    ASSERT_NE(tests, nullptr);
    EXPECT_GE(tests->CaseCount(), 10u);
    for (std::uint32_t i = 0; i < tests->CaseCount(); ++i) EXPECT_TRUE(tests->RunCase(i)) << tests->CaseName(i);
}

TEST(Registry, PlainMembersKeepWhatTheyAreGiven) {
    ORVUtilGlobals& registry = *GetORVUtilGlobals();
    EXPECT_EQ(registry.UIThread_GetCurrent(), 0xFFFFFFFFu);
    EXPECT_FALSE(registry.UIThread_AmICurrent());
    EXPECT_EQ(registry.UIThread_SetCurrent(platform::CurrentThreadId()), 0xFFFFFFFFu);
    EXPECT_TRUE(registry.UIThread_AmICurrent());
    EXPECT_EQ(registry.UIThread_SetCurrent(0xFFFFFFFFu), platform::CurrentThreadId());

    EXPECT_STREQ(registry.GetNullCString(), "");
    registry.SetMapSpeakSleep(7);
    EXPECT_EQ(registry.GetMapSpeakSleep(), 7);
    registry.SetHardwareInfo({2, true, true});
    EXPECT_EQ(registry.GetHardwareInfo().m_deviceKind, 2u);
    EXPECT_TRUE(registry.GetHardwareInfo().m_secondFlag);
    registry.SignalStartupFinished();

    const std::string info = GetBuildInfo();
    EXPECT_EQ(info.find('\n'), info.rfind('\n'));
    EXPECT_NE(info.find('\n'), std::string::npos);
}

// Answers 42 and remembers what it was to show.
class FakeScreen : public MessageScreenProducer {
public:
    std::int32_t ShowMessageScreen(std::uint32_t style, const ORVustring& text, const ORVustring& caption) override {
        s_shown = std::to_string(style) + ":" + caption.c_str(false) + ":" + text.c_str(false);
        return 42;
    }
    inline static std::string s_shown;
};

int g_quitMessages = 0;

TEST(MessageScreen, GoesToTheHostsProducerOnceTheInterfaceIsReady) {
    ORVUtilGlobals& registry = *GetORVUtilGlobals();
    const auto onQuit = [](EMsgID, const CBDataBase*) { ++g_quitMessages; };
    DORV_RegisterCallbackListener(onQuit, EMsgID{0});
    registry.SetMessageScreenProducer(new FakeScreen);

    testing::internal::CaptureStderr();
    EXPECT_EQ(registry.MessageScreen("disk full", false, "Save", 5, true), 1) << "not ready: a message box";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Save: disk full\n");

    registry.SetUIReady(true);
    EXPECT_EQ(registry.MessageScreen("disk full", false, "Save", 5, true), 42);
    EXPECT_EQ(FakeScreen::s_shown, "5:Save:disk full");
    std::int32_t code = 0;
    EXPECT_FALSE(TakePostedQuit(code));

    EXPECT_EQ(registry.MessageScreen("bye", true, "End", 0, true), 42);
    EXPECT_EQ(g_quitMessages, 1);
    EXPECT_TRUE(TakePostedQuit(code));
    EXPECT_EQ(code, -1);
    EXPECT_FALSE(TakePostedQuit(code));

    EXPECT_EQ(MessageScreen("plain"), 42);
    EXPECT_EQ(FakeScreen::s_shown, "48:Message:plain");
    EXPECT_EQ(MessageScreen(ORVwstring(u"wide"), "Save", 16, false, true), 42);
    EXPECT_EQ(FakeScreen::s_shown, "16:Save:wide");
    EXPECT_FALSE(TakePostedQuit(code));
    EXPECT_EQ(MessageScreenQuit(ORVwstring(u"end")), 42);
    EXPECT_EQ(FakeScreen::s_shown, "48:Message:end");
    EXPECT_TRUE(TakePostedQuit(code));
    EXPECT_EQ(g_quitMessages, 2);
    DORV_UnRegisterCallbackListener(onQuit);
    registry.SetUIReady(false);
}

TEST(MessageScreenDeathTest, AQuittingMessageBoxEndsTheProcess) {
    EXPECT_EXIT(GetORVUtilGlobals()->MessageScreen("broken", true, "Stop", 0, false), testing::ExitedWithCode(255),
                "Stop: broken");
    EXPECT_EXIT(MessageScreenQuit(ORVustring("worn")), testing::ExitedWithCode(255), "Message: worn");
}

}  // namespace
}  // namespace dorvutil
