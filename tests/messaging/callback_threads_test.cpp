#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include "dorvutil/messaging/callback.h"
#include "dorvutil/messaging/listener.h"

namespace dorvutil {
namespace {

constexpr EMsgID kMessage{50};

TVector<EMsgID> OneMessage() {
    TVector<EMsgID> ids;
    ids.Add(kMessage);
    return ids;
}

// Registered when it is complete, as what other threads raise messages for must be.
class Probe final : public CallbackListener {
public:
    explicit Probe(int priority) : CallbackListener(OneMessage(), priority, DeferRegistration{}) { Register(); }
    void OnCallback(EMsgID, const CBDataBase*) override {
        m_calls.fetch_add(1, std::memory_order_relaxed);
        if (m_action) m_action();
    }
    std::atomic<int> m_calls{0};
    std::function<void()> m_action;
};

void OnAnotherThread(const std::function<void()>& action) { std::thread(action).join(); }

TEST(CallbackThreads, AListenerDestroyedElsewhereBeforeItsTurnIsNotCalled) {
    Probe first(1);
    auto doomed = std::make_unique<Probe>(2);
    Probe last(3);
    doomed->m_action = [] { ADD_FAILURE() << "called after its destruction"; };
    first.m_action = [&] { OnAnotherThread([&] { doomed.reset(); }); };
    DORV_InvokeCallback(kMessage, nullptr);
    EXPECT_EQ(last.m_calls, 1);
}

TEST(CallbackThreads, UnregisteringDoesNotWaitForARunningCall) {
    Probe probe(1);
    bool returned = false;
    probe.m_action = [&] {
        OnAnotherThread([&] { probe.Unregister(); });
        returned = true;
    };
    DORV_InvokeCallback(kMessage, nullptr);
    EXPECT_TRUE(returned);
    DORV_InvokeCallback(kMessage, nullptr);
    EXPECT_EQ(probe.m_calls, 1);
}

TEST(CallbackThreads, NoLockIsHeldWhileAListenerRuns) {
    Probe first(1);
    first.m_action = [&] {
        first.m_action = nullptr;
        OnAnotherThread([] {
            Probe registers(2);
            DORV_InvokeCallback(kMessage, nullptr);
            EXPECT_EQ(registers.m_calls, 1);
        });
    };
    DORV_InvokeCallback(kMessage, nullptr);
    EXPECT_EQ(first.m_calls, 2);
}

std::atomic<int> g_plainCalls{0};
void Plain(EMsgID, const CBDataBase*) { g_plainCalls.fetch_add(1, std::memory_order_relaxed); }

// Functions come and go while messages are raised: their listeners must outlive the calls that still reach them.
TEST(CallbackThreads, FunctionsComeAndGoDuringDispatches) {
    constexpr int kRounds = 3000;
    Probe constant(0);
    std::atomic<int> raised{0};
    std::atomic<bool> stop{false};
    const auto raise = [&] {
        while (!stop.load()) {
            DORV_InvokeCallback(kMessage, nullptr);
            raised.fetch_add(1);
        }
    };
    const auto churn = [] {
        for (int i = 0; i < kRounds; ++i) {
            DORV_RegisterCallbackListener(Plain, kMessage);
            DORV_UnRegisterCallbackListener(Plain);
        }
    };
    std::thread raiser1(raise), raiser2(raise), churner1(churn), churner2(churn);
    churner1.join();
    churner2.join();
    stop = true;
    raiser1.join();
    raiser2.join();
    EXPECT_EQ(constant.m_calls, raised);
    const int calls = g_plainCalls;
    DORV_InvokeCallback(kMessage, nullptr);
    EXPECT_EQ(g_plainCalls, calls) << "every registration was taken back";
}

// A dispatch that was under way may still be inside the listener when Unregister returns; the next one may not.
TEST(CallbackThreads, NoCallStartsAfterUnregister) {
    std::atomic<int> raised{0};
    std::atomic<bool> stop{false};
    std::thread raiser([&] {
        for (; !stop.load(); raised.fetch_add(1)) DORV_InvokeCallback(kMessage, nullptr);
    });
    const auto awaitRaises = [&](int more) {
        for (const int seen = raised; raised < seen + more;) std::this_thread::yield();
    };
    for (int i = 0; i < 50; ++i) {
        Probe probe(i % 7);
        awaitRaises(2);
        EXPECT_GT(probe.m_calls, 0);
        probe.Unregister();
        awaitRaises(1);
        const int calls = probe.m_calls;
        awaitRaises(3);
        EXPECT_EQ(probe.m_calls, calls);
    }
    stop = true;
    raiser.join();
}

}  // namespace
}  // namespace dorvutil
