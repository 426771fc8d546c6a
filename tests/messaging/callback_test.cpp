#include "dorvutil/messaging/callback.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/messaging/callback_mgr.h"
#include "dorvutil/messaging/payload.h"
#include "messaging/allocation_count.h"
#include "messaging/registry_down.h"

namespace dorvutil {
namespace {

using testing_support::AllocationWatch;

constexpr EMsgID kMessage{40};
constexpr EMsgID kOther{41};

std::string g_calls;

// Writes its name into the list of calls, and does what it is told.
class Probe : public CallbackListener {
public:
    explicit Probe(char name, int priority = 0, EMsgID id = kMessage) : CallbackListener(id, priority), m_name(name) {}
    Probe(char name, const TVector<EMsgID>& ids) : CallbackListener(ids, 0), m_name(name) {}
    Probe(char name, const EMsgID* ids, std::int32_t count) : CallbackListener(ids, count, 0), m_name(name) {}
    void OnCallback(EMsgID id, const CBDataBase* data) override {
        g_calls += m_name;
        if (m_action) m_action(id, data);
    }
    std::function<void(EMsgID, const CBDataBase*)> m_action;

private:
    const char m_name;
};

std::string Raise(EMsgID id = kMessage, const CBDataBase* data = nullptr) {
    g_calls.clear();
    DORV_InvokeCallback(id, data);
    return g_calls;
}

void Plain(EMsgID, const CBDataBase*) { g_calls += 'p'; }
void SelfRemoving(EMsgID, const CBDataBase*) {
    g_calls += 's';
    DORV_UnRegisterCallbackListener(SelfRemoving);
    g_calls += 't';
}

TEST(Dispatch, GoesByPriorityWhateverTheOrderOfRegistration) {
    static constexpr struct {
        const char* name;
        int priorities[3];
        const char* order;
    } kCases[] = {
        {"5, -1, 3", {5, -1, 3}, "bca"},
        {"extremes", {INT_MAX, 0, INT_MIN}, "cba"},
        {"extremes apart", {INT_MIN, INT_MAX, 1}, "acb"},
        {"sorted already", {1, 2, 3}, "abc"},
    };
    for (const auto& c : kCases) {
        const Probe a('a', c.priorities[0]), b('b', c.priorities[1]), d('c', c.priorities[2]);
        EXPECT_EQ(Raise(), c.order) << c.name;
    }
}

TEST(Dispatch, IdentifiersThatDoNotExistReachNobody) {
    const EMsgID ids[] = {EMsgID{202}, EMsgID{203}, EMsgID{0xFFFFFFFF}, kUIMessage, EMsgID{0}};
    const Probe probe('a', ids, 5);
    EXPECT_EQ(Raise(EMsgID{202}), "a");
    EXPECT_EQ(Raise(EMsgID{0}), "a");
    EXPECT_EQ(Raise(EMsgID{203}), "");
    EXPECT_EQ(Raise(EMsgID{0xFFFFFFFF}), "");
    EXPECT_EQ(Raise(kUIMessage), "");
    EXPECT_EQ(Raise(EMsgID{100}), "");
}

TEST(Dispatch, TheUIMessageGoesToItsHookAlone) {
    const Probe probe('a', 0, kUIMessage);
    GetCallbackMgr()->SetUIMsgCallback([](EMsgID id, const CBDataBase* data) {
        g_calls += id == kUIMessage && CBDataUIMsg::CastIsPossible(data->Type()) ? 'u' : '?';
    });
    const CBDataUIMsg message(3);
    EXPECT_EQ(Raise(kUIMessage, &message), "u");
    GetCallbackMgr()->SetUIMsgCallback(nullptr);
    EXPECT_EQ(Raise(kUIMessage, &message), "");
}

TEST(Dispatch, HandsOverThePayloadAndTheLastWriterWins) {
    Probe first('a', 1), last('b', 2);
    first.m_action = [](EMsgID, const CBDataBase* data) { static_cast<const CBDataLOut*>(data)->m_value += 10; };
    last.m_action = [](EMsgID, const CBDataBase* data) { static_cast<const CBDataLOut*>(data)->m_value *= 2; };
    const CBDataLOut data(1);
    EXPECT_EQ(Raise(kMessage, &data), "ab");
    EXPECT_EQ(data.m_value, 22);
}

TEST(Dispatch, ChangesDuringADispatchTouchOnlyTheNextOne) {
    Probe first('a', 1);
    auto leaver = std::make_unique<Probe>('b', 2);
    const Probe last('c', 3);
    std::unique_ptr<Probe> late;
    first.m_action = [&](EMsgID, const CBDataBase*) {
        leaver.reset();
        if (!late) late = std::make_unique<Probe>('d', 4);
    };
    EXPECT_EQ(Raise(), "ac");
    EXPECT_EQ(Raise(), "acd");
}

TEST(Dispatch, AnEarlierListenerThatComesMeanwhileShiftsNobody) {
    Probe first('b', 1);
    const Probe last('c', 2);
    std::unique_ptr<Probe> early;
    first.m_action = [&](EMsgID, const CBDataBase*) {
        if (!early) early = std::make_unique<Probe>('a', 0);
    };
    EXPECT_EQ(Raise(), "bc");
    EXPECT_EQ(Raise(), "abc");
}

TEST(Dispatch, AListenerMayUnregisterItselfAndRaiseMessages) {
    Probe once('a', 1);
    const Probe other('b', 2, kOther);
    once.m_action = [&](EMsgID, const CBDataBase*) {
        once.Unregister();
        DORV_InvokeCallback(kMessage, nullptr);
        DORV_InvokeCallback(kOther, nullptr);
        g_calls += '.';
    };
    EXPECT_EQ(Raise(), "ab.");
    EXPECT_EQ(Raise(), "");
}

TEST(Dispatch, AllocatesNothing) {
    std::vector<std::unique_ptr<Probe>> probes;
    g_calls.reserve(200);
    for (const std::size_t count : {1u, 64u, 100u}) {
        while (probes.size() < count) probes.push_back(std::make_unique<Probe>('x'));
        g_calls.clear();
        const AllocationWatch watch;
        DORV_InvokeCallback(kMessage, nullptr);
        EXPECT_EQ(watch.Count(), 0u) << count;
        EXPECT_EQ(g_calls.size(), count);
    }
}

TEST(Registration, CountsPlacesNotListeners) {
    const EMsgID ids[] = {kMessage, kOther, kMessage};
    Probe probe('a', ids, 3);
    EXPECT_EQ(Raise(), "aa");
    EXPECT_EQ(Raise(kOther), "a");
    probe.Register();
    EXPECT_EQ(Raise(), "aaaa");
    probe.Unregister();
    EXPECT_EQ(Raise() + Raise(kOther), "");
    probe.Register();
    EXPECT_EQ(Raise(), "") << "unregistering is final";
}

TEST(Registration, NoIdentifiersMeanNoCalls) {
    const EMsgID ids[] = {kMessage};
    const Probe empty('a', TVector<EMsgID>()), none('b', ids, 0), negative('c', ids, -1), null('d', nullptr, 3);
    EXPECT_EQ(Raise(), "");
}

TEST(Registration, CopiesIdentifiersThatAVectorOnlyWraps) {
    EMsgID ids[] = {kMessage};
    const TVector<EMsgID> wrapped(ids, 1, false);
    {
        const Probe probe('a', wrapped);
        ids[0] = kOther;
        EXPECT_EQ(Raise(), "a");
    }
    EXPECT_EQ(Raise(), "");
}

// Two mediators, the identifiers, the list and its array: whichever is missing, the listener is registered or it is
// not; with one of the mediators it is.
TEST(Registration, SurvivesFailingAllocations) {
    for (std::uint32_t failing = 0; failing < 6; ++failing) {
        const EMsgID unused{150 + failing};  // its list is yet to be made
        alignas(Probe) unsigned char place[sizeof(Probe)];
        Probe* probe = nullptr;
        {
            const AllocationWatch watch(failing, failing + 1);
            probe = new (place) Probe('a', 0, unused);
        }
        const bool mediatorIsLeft = failing == 0 || failing == 2;
        EXPECT_EQ(Raise(unused), mediatorIsLeft || failing == 5 ? "a" : "") << failing;
        probe->~Probe();
        EXPECT_EQ(Raise(unused), "") << failing;
    }
}

TEST(Functions, EachRegistrationCounts) {
    DORV_RegisterCallbackListener(Plain, kMessage);
    DORV_RegisterCallbackListener(Plain, kMessage);
    EXPECT_EQ(Raise(), "pp");
    DORV_UnRegisterCallbackListener(Plain);
    EXPECT_EQ(Raise(), "p");
    DORV_UnRegisterCallbackListener(Plain);
    DORV_UnRegisterCallbackListener(Plain);
    EXPECT_EQ(Raise(), "");
}

TEST(Functions, TheMostRecentRegistrationGoesFirst) {
    const EMsgID both[] = {kMessage, kOther};
    DORV_RegisterCallbackListener(Plain, kMessage);
    DORV_RegisterCallbackListener(Plain, both, 2);
    DORV_RegisterCallbackListener(nullptr, kMessage);
    EXPECT_EQ(Raise() + Raise(kOther), "ppp");
    DORV_UnRegisterCallbackListener(Plain);
    EXPECT_EQ(Raise() + Raise(kOther), "p");
    DORV_UnRegisterCallbackListener(Plain);
    DORV_UnRegisterCallbackListener(nullptr);
    EXPECT_EQ(Raise(), "");
}

TEST(Functions, MayRemoveThemselvesWhileTheyRun) {
    DORV_RegisterCallbackListener(SelfRemoving, kMessage);
    EXPECT_EQ(Raise(), "st");
    EXPECT_EQ(Raise(), "");
}

TEST(Manager, ListenersOutliveIt) {
    DORV_RegisterCallbackListener(Plain, kMessage);
    auto probe = std::make_unique<Probe>('a');
    testing_support::RegistryDown registry;
    ASSERT_EQ(GetCallbackMgr(), nullptr);
    const Probe late('b');
    DORV_RegisterCallbackListener(Plain, kMessage);
    DORV_UnRegisterCallbackListener(Plain);
    EXPECT_EQ(Raise(), "");
    registry.BringBack();
    ASSERT_NE(GetCallbackMgr(), nullptr);
    EXPECT_EQ(Raise(), "") << "the new manager knows none of them";
    probe.reset();
}

TEST(Manager, KeepsItsHooks) {
    CallbackMgr manager;
    EXPECT_EQ(manager.GetUIActivityCallback(), nullptr);
    EXPECT_EQ(manager.GetUserMsgHandler(), nullptr);
    EXPECT_EQ(manager.GetPostMsgHandler(), nullptr);
    const CallbackMgr::UIActivityCallback activity = [](COrvUIActivity*) {};
    const CallbackMgr::MsgHandler user = [](const RoadlynUIMsg&) { return 1; };
    const CallbackMgr::MsgHandler post = [](const RoadlynUIMsg&) { return 2; };
    manager.SetUIActivityCallback(activity);
    manager.SetUserMsgHandler(user);
    manager.SetPostMsgHandler(post);
    EXPECT_EQ(manager.GetUIActivityCallback(), activity);
    EXPECT_EQ(manager.GetUserMsgHandler(), user);
    EXPECT_EQ(manager.GetPostMsgHandler(), post);
}

}  // namespace
}  // namespace dorvutil
