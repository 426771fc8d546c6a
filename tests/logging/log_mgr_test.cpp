#include "dorvutil/logging/log_mgr.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "dorvutil/platform/clock.h"
#include "logging/log_support.h"

namespace dorvutil {
namespace {

using test::kOverflowLine;
using test::Lines;
using test::Listener;

std::int32_t Say(CLogMgr& log, std::int32_t publisher, const std::string& text, bool wait = true) {
    return log.Publish(publisher, eLogLevelInfo, "f", 1, text.c_str(), 0, wait);
}

TEST(CLogMgr, NumbersPublishersByName) {
    CLogMgr log;
    EXPECT_EQ(log.CreatePublisher("GENERAL"), 2);
    EXPECT_EQ(log.CreatePublisher("one"), 19);
    EXPECT_EQ(log.CreatePublisher("One"), 20);
    EXPECT_EQ(log.CreatePublisher("one"), 19);
    EXPECT_EQ(log.CreatePublisher(nullptr), -1);
    log.DeletePublisher(19);
    EXPECT_STREQ(log.GetPublisherName(19), "UNKNOWN");
    EXPECT_STREQ(log.GetPublisherName(20), "One");
    EXPECT_EQ(log.CreatePublisher("one"), 21);
    EXPECT_STREQ(log.GetLoglevelName(4), "BRIEF");
    EXPECT_STREQ(log.GetLoglevelName(7), "UNKNOWN");
    EXPECT_STREQ(log.GetLoglevelName(-1), "UNKNOWN");
}

TEST(CLogMgr, DeliversToThoseWhoListen) {
    Listener all, none, one, later, deaf;
    {
        CLogMgr log;
        EXPECT_EQ(log.CreateSubscriber(1, Listener::Hear, &all), 0);
        EXPECT_EQ(log.CreateSubscriber(-3, Listener::Hear, &none), 1);
        EXPECT_EQ(log.CreateSubscriber(2, Listener::Hear, &one), 2);
        EXPECT_EQ(log.CreateSubscriber(0, Listener::Hear, &later), 3);
        EXPECT_EQ(log.CreateSubscriber(1, Listener::Hear, &deaf), 4);
        const std::int32_t mine = log.CreatePublisher("mine");
        EXPECT_EQ(log.Subscribe(3, mine), mine);
        EXPECT_EQ(log.Subscribe(0, mine), mine) << "listens to all already";
        EXPECT_EQ(log.Subscribe(9, mine), -1);
        log.DeleteSubscriber(4);
        EXPECT_EQ(log.Subscribe(4, mine), -1);
        EXPECT_EQ(Say(log, 2, "a"), 52 + 2 + 8 + 5 + 2);
        EXPECT_GT(Say(log, mine, "b"), 0);
        EXPECT_GT(Say(log, 5, "c"), 0);
    }
    EXPECT_EQ(all.Heard(), (Lines{"GENERAL/INFO/f:a", "mine/INFO/f:b", "UNKNOWN/INFO/f:c"}));
    EXPECT_EQ(none.Heard(), Lines());
    EXPECT_EQ(one.Heard(), Lines{"GENERAL/INFO/f:a"});
    EXPECT_EQ(later.Heard(), Lines{"mine/INFO/f:b"});
    EXPECT_EQ(deaf.Heard(), Lines());
}

TEST(CLogMgr, UnsubscribingFromOneKeepsTheOthers) {
    Listener listener;
    {
        CLogMgr log;
        const std::int32_t mine = log.CreatePublisher("mine");
        log.CreateSubscriber(1, Listener::Hear, &listener);
        EXPECT_EQ(log.Unsubscribe(0, mine), -1);
        Say(log, 2, "a");
        log.Subscribe(0, mine);
        log.Subscribe(0, mine);  // twice: one removal takes both
        log.Unsubscribe(0, mine);
        Say(log, mine, "b");
    }
    EXPECT_EQ(listener.Heard(), Lines{"GENERAL/INFO/f:a"});
}

// A manager whose delivery is stopped: the buffer is the test's own.
struct Stopped {
    Stopped() { log.PlatformCleanup(); }
    std::string Next(std::int32_t limit = 564) {
        LogDataMsg record;
        const std::int32_t size = log.ReadNextMessage(&record, limit);
        if (size == 0) return "none";
        LogDataHolder holder;
        holder = record;
        return holder.m_message;
    }
    // A record of exactly `size` bytes: texts, beside the message, take 8 + 5 + 1.
    std::int32_t Store(std::uint32_t size) {
        return log.Publish(2, eLogLevelInfo, "", 1, std::string(size - 52 - 15, 'x').c_str(), 0, false);
    }
    CLogMgr log;
};

TEST(CLogMgrBuffer, RecordsCarryTheirOrigin) {
    Stopped stopped;
    platform::ShiftTick(0u - platform::TickCount() + 1000);
    static_cast<void>(stopped.log.GetPublisherTickDelta(2, 990));  // now its last
    EXPECT_EQ(stopped.log.GetPublisherTickDelta(5, 990), 0u);
    stopped.log.Publish(2, 4, "src/x.cpp", 77, "text", 123, true);
    platform::ShiftTick(0);
    LogDataMsg record;
    EXPECT_EQ(stopped.log.ReadNextMessage(&record, sizeof record), 52 + 5 + 8 + 6 + 10);
    EXPECT_EQ(record.m_event, 0);
    EXPECT_EQ(record.m_threadId, 123u);
    EXPECT_EQ(record.m_level, 4);
    EXPECT_EQ(record.m_line, 77);
    EXPECT_GE(record.m_tick, 1000u);
    EXPECT_EQ(record.m_tickDelta, record.m_tick - 990);
    EXPECT_GE(record.m_time.wYear, 2024);
    EXPECT_EQ(std::memcmp(record.m_text, "text\0GENERAL\0BRIEF\0src/x.cpp", 29), 0);
}

TEST(CLogMgrBuffer, HoldsAllButOneByteAndMarksTheFirstDrop) {
    Stopped stopped;
    for (int i = 0; i < 160; ++i) ASSERT_EQ(stopped.Store(100), 100);
    ASSERT_EQ(stopped.Store(256), -1) << "16256 bytes would fill the last one";
    EXPECT_EQ(stopped.Store(100), 0);
    EXPECT_EQ(stopped.Next(), std::string(33, 'x'));
    EXPECT_EQ(stopped.Store(355), 355) << "exactly 16255";
    EXPECT_EQ(stopped.Store(100), -1) << "a marker again: something was stored since";
    for (int i = 0; i < 159; ++i) EXPECT_EQ(stopped.Next(), std::string(33, 'x'));
    const std::string overflow = "An overflow occurred.  At least one message was dropped.";
    for (const std::string& text : {overflow, std::string(288, 'x'), overflow, std::string("none")}) {
        EXPECT_EQ(stopped.Next(), text);
    }
}

TEST(CLogMgrBuffer, OneMarkerForARunOfDrops) {
    Stopped stopped;
    for (int i = 0; i < 162; ++i) ASSERT_EQ(stopped.Store(100), 100);  // 55 bytes are left
    EXPECT_EQ(stopped.Store(100), -1);
    EXPECT_NE(stopped.Next(), "none");
    EXPECT_EQ(stopped.Store(300), -1) << "nothing is pending, but there is no room";
    EXPECT_EQ(stopped.Store(155), 155);
    int records = 0, markers = 0;
    for (std::string text; (text = stopped.Next()) != "none"; ++records) markers += text[0] == 'A';
    EXPECT_EQ(markers, 1);
    EXPECT_EQ(records, 161 + 1 + 1);
}

TEST(CLogMgrBuffer, MarkersRunOut) {
    Stopped stopped;
    int markers = 0;
    for (int run = 0; run < 320; ++run) {
        while (stopped.Store(560) > 0) {
        }
        for (std::string text; (text = stopped.Next()) != "none";) markers += text[0] == 'A';
    }
    EXPECT_EQ(markers, 315) << "each took one slot of 630 for good";
}

TEST(CLogMgrBuffer, AShortReadLosesTheRestOfItsRecord) {
    Stopped stopped;
    stopped.Store(100);
    LogDataMsg record;
    EXPECT_EQ(stopped.log.ReadNextMessage(&record, 60), 60);
    EXPECT_EQ(stopped.Next(), "none");
}

TEST(CLogMgr, FormatsIntoTheTempBuffer) {
    Listener listener;
    {
        CLogMgr log;
        log.CreateSubscriber(1, Listener::Hear, &listener);
        log.LockTempBuffer();
        const char* const text = log.MakeString("%s %d %.2f", "value", -3, 1.5);
        EXPECT_EQ(text, log.StringWriteBuffer());
        Say(log, 2, text);
        EXPECT_EQ(std::strlen(log.MakeString("%600d", 1)), 511u);
        EXPECT_EQ(log.StringWriteBufferSize(), 512);
        log.UnlockTempBuffer();
    }
    EXPECT_EQ(listener.Heard(), Lines{"GENERAL/INFO/f:value -3 1.50"});
}

TEST(CLogMgr, OverflowStandsBetweenTheOldAndTheNew) {
    Listener listener;
    Lines expected{"GENERAL/INFO/f:first"};
    {
        CLogMgr log;
        listener.m_hold = true;
        log.CreateSubscriber(1, Listener::Hear, &listener);
        Say(log, 2, "first");
        listener.m_entered.WaitForEvent(kWaitForever);
        const std::string text(400, 'x');
        while (Say(log, 2, text, false) > 0) expected.push_back("GENERAL/INFO/f:" + text);
        EXPECT_EQ(Say(log, 2, "dropped", false), 0);
        expected.push_back(kOverflowLine);
        listener.m_gate.SignalEvent();
        Say(log, 2, "new");  // waits, though it would fit
        expected.push_back("GENERAL/INFO/f:new");
    }
    EXPECT_EQ(listener.Heard(), expected);
}

TEST(CLogMgr, FlushesOnceTheIntervalHasPassed) {
    const test::LogDirectory directory;
    Listener listener;
    CLogMgr log;
    const std::int32_t mine = log.CreateDedicatedFileLogger("flushed");
    log.CreateSubscriber(mine, Listener::Hear, &listener);
    Say(log, mine, "text");
    listener.m_entered.WaitForEvent(kWaitForever);
    EXPECT_EQ(directory.Text("flushed"), "") << "in the runtime's buffer";
    platform::ShiftTick(CLogMgr::kFlushIntervalMs + 1);
    log.FlushSubscribers();
    EXPECT_NE(directory.Text("flushed"), "");
    platform::ShiftTick(0);
}

}  // namespace
}  // namespace dorvutil
