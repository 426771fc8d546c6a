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

// Registered when it is complete, as what other threads raise messages for must be.
struct Probe final : CallbackListener {
    explicit Probe(int priority) : CallbackListener(TVector<EMsgID>(&s_id, 1, false), priority, DeferRegistration{}) {
        Register();
    }
    void OnCallback(EMsgID, const CBDataBase*) override {
        ++m_calls;
        if (m_action) m_action();
    }
    static inline EMsgID s_id = kMessage;
    std::atomic<int> m_calls{0};
    std::function<void()> m_action;
};

TEST(CallbackThreads, WhatAnotherThreadDoesDuringADispatchNeitherWaitsNorCallsTheDead) {
    Probe first(1), last(4);
    auto doomed = std::make_unique<Probe>(2);
    doomed->m_action = [] { ADD_FAILURE() << "called after its destruction"; };
    first.m_action = [&] {
        if (first.m_calls > 1) return;
        std::thread([&] {
            doomed.reset();
            Probe registers(3);
            DORV_InvokeCallback(kMessage, nullptr);
            EXPECT_EQ(registers.m_calls, 1);
            first.Unregister();  // does not wait for the call that is running
        }).join();
    };
    DORV_InvokeCallback(kMessage, nullptr);
    DORV_InvokeCallback(kMessage, nullptr);
    EXPECT_EQ(first.m_calls, 2);
    EXPECT_EQ(last.m_calls, 3);
}

std::atomic<int> g_plainCalls{0};
void Plain(EMsgID, const CBDataBase*) { ++g_plainCalls; }

// Functions come and go while messages are raised: their listeners must outlive the calls that still reach them.
TEST(CallbackThreads, FunctionsComeAndGoDuringDispatches) {
    Probe constant(0);
    std::atomic<int> raised{0};
    std::atomic<bool> stop{false};
    const auto raise = [&] {
        for (; !stop; ++raised) DORV_InvokeCallback(kMessage, nullptr);
    };
    const auto churn = [] {
        for (int i = 0; i < 3000; ++i) {
            DORV_RegisterCallbackListener(Plain, kMessage);
            DORV_UnRegisterCallbackListener(Plain);
        }
    };
    std::thread raisers[] = {std::thread(raise), std::thread(raise)}, other(churn);
    churn();
    other.join();
    stop = true;
    for (std::thread& raiser : raisers) raiser.join();
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
        for (; !stop; ++raised) DORV_InvokeCallback(kMessage, nullptr);
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
