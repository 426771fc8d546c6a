#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "dorvutil/frame/registry.h"
#include "dorvutil/memory/heap.h"
#include "dorvutil/platform/clock.h"
#include "dorvutil/platform/thread.h"
#include "logging/log_support.h"
#include "messaging/registry_down.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define DORVUTIL_OWN_MALLOC 0
#else
#define DORVUTIL_OWN_MALLOC 1
#endif

namespace {
thread_local std::size_t t_allocations = 0;
}

#if DORVUTIL_OWN_MALLOC
extern "C" void* __libc_malloc(std::size_t);
// Counts what everybody asks for: the runtime's printf, too, knows no other way to the heap.
extern "C" void* malloc(std::size_t size) {
    ++t_allocations;
    return __libc_malloc(size);
}
#endif

namespace dorvutil {
namespace {

using test::Lines;
using test::Listener;
using test::LogDirectory;
using testing_support::RegistryDown;

constexpr int kPublishers = 8;
constexpr int kRecordsEach = 200'000;

// Checks that each publisher's records come complete and in order.
struct Census {
    static void Hear(void* self, LogDataMsg* record) { static_cast<Census*>(self)->Take(*record); }
    void Take(const LogDataMsg& record) {
        if (record.m_publisher < 0 || record.m_line < 0 || record.m_line >= kPublishers) return void(++wrong);
        int& next = counts[record.m_line];
        if (std::atoi(record.m_text) != next++) ++wrong;
        if (++total == kPublishers * kRecordsEach) done.SignalEvent();
    }
    int counts[kPublishers] = {};
    int wrong = 0;
    int total = 0;
    event done{true};
};

TEST(Log, LosesNoRecordOfPublishersThatWait) {
    Census census;
    const std::int32_t subscriber = Log_CreateSubscriber(kSubscribeToAll, Census::Hear, &census);
    std::vector<std::thread> threads;
    for (int id = 0; id < kPublishers; ++id) {
        threads.emplace_back([id] {
            CLogMgr* const log = GetLogMgr();
            for (int n = 0; n < kRecordsEach; ++n) {
                const std::string text = std::to_string(n);
                // Half of them through the plain function, half straight, which takes no temp-buffer lock.
                const std::int32_t size = id % 2 == 0 ? Log_Publish(2, 5, "f", id, text.c_str())
                                                      : log->Publish(2, 5, "f", id, text.c_str(), 1, true);
                ASSERT_GT(size, 0);
            }
        });
    }
    for (auto& thread : threads) thread.join();
    census.done.WaitForEvent(kWaitForever);
    Log_DeleteSubscriber(subscriber);
    EXPECT_EQ(census.wrong, 0);
}

TEST(Log, PublishingDuringTearDownNeitherCrashesNorHangs) {
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int id = 0; id < 3; ++id) {
        threads.emplace_back([&stop, id] {
            while (!stop) {
                Log_Publish(2, 5, "f", 1, "text");
                if (id == 0) Log_Subscribe(0, 2);
            }
        });
    }
    for (int round = 0; round < 20; ++round) {
        if (round % 4 == 3) Log_Stop();  // publishers then wait for space until the manager goes
        if (round % 4 == 3) platform::SleepMs(2);
        RegistryDown down;
        EXPECT_EQ(Log_CreatePublisher("x"), -1);
        down.BringBack();
    }
    stop = true;
    for (auto& thread : threads) thread.join();
}

TEST(Log, AnswersWithoutAManager) {
    const RegistryDown down;
    EXPECT_EQ(Log_CreatePublisher("a"), -1);
    EXPECT_EQ(Log_CreateSubscriber(1, nullptr, nullptr), -1);
    EXPECT_EQ(Log_Publish(2, 1, "f", 1, "m"), 0);
    EXPECT_EQ(Log_GetLoglevelName(1), nullptr);
    EXPECT_EQ(Log_GetPublisherName(2), nullptr);
    EXPECT_EQ(Log_CreateDedicatedFileLogger("d"), -1);
    Log_Stop();
}

// Publishes from inside its handler, several times as much as the buffer has room for.
struct Echo {
    static void Hear(void* self, LogDataMsg* record) {
        if (record->m_publisher != 2) return;
        for (int i = 0; i < 1000; ++i) static_cast<Echo*>(self)->stored += Log_Publish(5, 5, "f", 1, "echo") > 0;
        static_cast<Echo*>(self)->done.SignalEvent();
    }
    int stored = 0;
    event done{true};
};

TEST(Log, AHandlerThatPublishesDoesNotWaitForItself) {
    Echo echo;
    const std::int32_t subscriber = Log_CreateSubscriber(2, Echo::Hear, &echo);
    Log_Publish(2, 5, "f", 1, "start");
    echo.done.WaitForEvent(kWaitForever);
    Log_DeleteSubscriber(subscriber);
    EXPECT_GT(echo.stored, 100);
    EXPECT_LT(echo.stored, 1000);
}

TEST(CLogMgr, PublishingAllocatesNothing) {
    CLogMgr log;
    const std::string longText(700, 'x');
    log.LockTempBuffer();
    log.Publish(2, 5, "f", 1, "the first of a second reads the time zone", 0, true);
    Log_Publish(2, 5, "f", 1, "text");
    const std::uint64_t firstSecond = platform::FileTimeNow() / 10'000'000;
    std::size_t before = t_allocations;
    for (int i = 0; i < 1000; ++i) {
        const char* const text = log.MakeString("%d %s %-20.5f|%08x", i, longText.c_str(), i / 3.0, i);
        log.Publish(2, 5, "f", 1, text, 0, true);
        Log_Publish(2, 5, "f", 1, "text");
    }
    const std::uint64_t secondsPassed = platform::FileTimeNow() / 10'000'000 - firstSecond;
    EXPECT_LE(t_allocations, before + 2 * secondsPassed);  // each manager asks the C library for its time zone anew
    log.UnlockTempBuffer();
    before = t_allocations;
    std::free(Mem_Malloc(10));
    EXPECT_EQ(t_allocations - before, DORVUTIL_OWN_MALLOC);
}

TEST(Log, ADedicatedLogHearsItsPublisherAlone) {
    const LogDirectory directory;
    {
        CLogMgr log;
        const std::int32_t mine = log.CreateDedicatedFileLogger("mine");
        EXPECT_EQ(log.CreateDedicatedFileLogger(nullptr), -1);
        log.DeleteDedicatedFileLogger(mine);
        log.DeleteFileLogger(log.CreateFileLogger("gone", kSubscribeToAll, kEveryLogLevel));
        log.Publish(mine, 5, "f", 1, "for me", 0, true);
        log.Publish(2, 5, "f", 1, "for all", 0, true);
    }
    EXPECT_NE(directory.Text("mine").find("\"for me\" (@ f:1)"), std::string::npos);
    EXPECT_EQ(directory.Text("mine").find("for all"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(directory.File("gone")));
}

TEST(Log, AutoTestAppendsALine) {
    std::filesystem::remove("autotest_results.txt");
    Log_AutoTest("one");
    Log_AutoTest("two");
    std::ifstream file("autotest_results.txt", std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "one\ntwo\n");
    std::filesystem::remove("autotest_results.txt");
}

TEST(Log, CategoriesAreFixed) {
    for (const auto on : {IsGeocodeLoggingEnabled, IsLangLoggingEnabled, IsUILoggingEnabled}) EXPECT_TRUE(on());
    for (const auto off : {IsAndroidLoggingEnabled, IsPerfIntervalLoggingEnabled}) EXPECT_FALSE(off());
}

}  // namespace
}  // namespace dorvutil
