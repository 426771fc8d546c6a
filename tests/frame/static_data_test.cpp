#include "dorvutil/frame/static_data.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "dorvutil/frame/unit_test.h"
#include "dorvutil/logging/log.h"

namespace dorvutil {
namespace {

// Writes down what happens to it.
class Recorder : public StaticDataHolder {
public:
    Recorder(const char* name, std::string& log) : m_name(name), m_log(log) {}
    ~Recorder() override { TryTeardown(); }

    const char* Name() override { return m_name; }
    void AddDependencies() override {
        ++m_timesReferenced;
        ObtainDependencies();
    }
    bool Initialize() override {
        m_log += std::string("+") + m_name;
        Setup();  // set-up from within: must not recurse
        return m_answer;
    }
    bool Teardown() override {
        m_log += std::string("-") + m_name;
        return true;
    }
    using StaticDataHolder::SetUnitTestMgr;

    int m_timesReferenced = 0;
    bool m_answer = true;

private:
    const char* m_name;
    std::string& m_log;
};

TEST(StaticDataHolder, SetsUpOnceAndTearsDownWithTheLastReference) {
    std::string log;
    Recorder holder("a", log);
    EXPECT_FALSE(holder.IsInitialized());
    holder.ObtainRef();
    holder.ObtainRef();
    EXPECT_EQ(log, "") << "a reference alone sets nothing up";
    holder.Setup();
    holder.Setup();
    EXPECT_EQ(log, "+a");
    holder.ReleaseRef(true);
    EXPECT_TRUE(holder.IsInitialized());
    holder.ReleaseRef(true);
    EXPECT_EQ(log, "+a-a");
    holder.Setup();
    EXPECT_EQ(log, "+a-a") << "torn down: nothing sets it up";
    holder.ObtainRef();
    holder.Setup();
    EXPECT_EQ(log, "+a-a+a");
    EXPECT_EQ(holder.m_timesReferenced, 2);
    holder.ReleaseRef(true);
}

TEST(StaticDataHolder, CountsAsInitialisedEvenWhenItsInitializeFails) {
    std::string log;
    Recorder holder("a", log);
    holder.m_answer = false;
    holder.Setup();
    holder.Setup();
    EXPECT_TRUE(holder.IsInitialized());
    EXPECT_EQ(log, "+a");
}

TEST(StaticDataHolder, DependenciesGoInListOrderAndAreKeptOrForgotten) {
    std::string log;
    Recorder first("b", log), second("c", log), top("a", log);
    top.ObtainRef();
    top.AddDependency(nullptr);
    top.AddDependency(&first);
    top.AddDependency(&second);
    top.SetupR();
    EXPECT_EQ(log, "+b+c+a");
    top.ReleaseRef(false);
    EXPECT_EQ(log, "+b+c+a-a-b-c");

    log.clear();
    top.ObtainRef();  // the kept list is obtained again
    EXPECT_EQ(first.m_timesReferenced, 2);
    top.SetupR();
    top.ReleaseRef(true);
    EXPECT_EQ(log, "+b+c+a-a-b-c");
    top.ObtainRef();
    EXPECT_EQ(first.m_timesReferenced, 2) << "a cleared list is forgotten";
    top.ReleaseRef(true);
}

TEST(DependencyHolder, HoldsWhatItWasGivenUntilItDies) {
    std::string log;
    Recorder needed("b", log);
    {
        DependencyHolder client;
        EXPECT_STREQ(client.Name(), "DepHolder");
        EXPECT_TRUE(client.IsInitialized());
        EXPECT_STREQ(Log_GetPublisherName(client.DedicatedLogId()), "DepHolder");
        client.AddDependency(&needed);
        needed.Setup();
        EXPECT_EQ(log, "+b");
    }
    EXPECT_EQ(log, "+b-b");
}

class CountingTests : public UnitTestMgr {
public:
    explicit CountingTests(std::string& log) : m_log(log) {}
    ~CountingTests() override { m_log += "~"; }
    void SetupTests() override {
        m_log += "s";
        AddCase("holds", [] { return true; });
        AddCase("fails", [] { return false; });
    }

private:
    std::string& m_log;
};

TEST(StaticDataHolder, OwnsItsSelfTests) {
    std::string log;
    Recorder holder("a", log);
    holder.Setup();
    holder.SetUnitTestMgr(new CountingTests(log));
    UnitTestMgr* const tests = holder.GetUnitTestMgr();
    ASSERT_NE(tests, nullptr);
    EXPECT_EQ(tests->CaseCount(), 2u);
    EXPECT_STREQ(tests->CaseName(1), "fails");
    EXPECT_TRUE(tests->RunCase(0));
    EXPECT_FALSE(tests->RunCase(1));
    EXPECT_FALSE(tests->RunCase(2));
    EXPECT_EQ(tests->CaseName(2), nullptr);
    holder.SetUnitTestMgr(new CountingTests(log));
    EXPECT_EQ(log, "+as~s");
    holder.TryTeardown();
    EXPECT_EQ(log, "+as~s~-a");
    EXPECT_EQ(holder.GetUnitTestMgr(), nullptr);
}

TEST(StaticDataHolder, ManyThreadsSetItUpOnce) {
    std::string log;
    Recorder holder("a", log);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 200; ++round) {
                holder.Setup();
                EXPECT_TRUE(holder.IsInitialized());
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(log, "+a");
}

}  // namespace
}  // namespace dorvutil
