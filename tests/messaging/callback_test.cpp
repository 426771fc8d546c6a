#include "dorvutil/messaging/callback.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/memory/heap_hook.h"
#include "dorvutil/messaging/callback_mgr.h"
#include "dorvutil/messaging/payload.h"
#include "messaging/registry_down.h"

namespace {

thread_local int t_allocations = -1;  // -1: not watching
thread_local int t_failing = -1;      // the number of the one that fails

bool MayAllocate(std::size_t) { return t_allocations < 0 || t_allocations++ != t_failing; }

// Counts this thread's allocations, by operator new and by the library's heap, and lets one fail.
struct AllocationWatch {
    explicit AllocationWatch(int failing = -1) {
        dorvutil::SetAllocationHook(MayAllocate);
        t_failing = failing;
        t_allocations = 0;
    }
    ~AllocationWatch() {
        t_allocations = -1;
        dorvutil::SetAllocationHook(nullptr);
    }
};

}  // namespace

// Not inlined: the compiler would see malloc meet delete, and free meet new.
[[gnu::noinline]] void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return MayAllocate(bytes) ? std::malloc(bytes) : nullptr;
}
[[gnu::noinline]] void* operator new(std::size_t bytes) {
    if (void* const block = operator new(bytes, std::nothrow)) return block;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }

namespace dorvutil {
namespace {

constexpr EMsgID kMessage{40}, kOther{41};

std::string g_calls;

// Writes its name into the list of calls, and does what it is told.
struct Probe : CallbackListener {
    explicit Probe(char name, int priority = 0, EMsgID id = kMessage) : CallbackListener(id, priority), m_name(name) {}
    Probe(char name, const TVector<EMsgID>& ids) : CallbackListener(ids, 0), m_name(name) {}
    Probe(char name, const EMsgID* ids, std::int32_t count) : CallbackListener(ids, count, 0), m_name(name) {}
    void OnCallback(EMsgID, const CBDataBase* data) override {
        g_calls += m_name;
        if (m_action) m_action(data);
    }
    const char m_name;
    std::function<void(const CBDataBase*)> m_action;
};

std::string Raise(EMsgID id = kMessage, const CBDataBase* data = nullptr) {
    g_calls.clear();
    DORV_InvokeCallback(id, data);
    return g_calls;
}

void Plain(EMsgID, const CBDataBase*) { g_calls += 'p'; }
void SelfRemoving(EMsgID, const CBDataBase*) {
    DORV_UnRegisterCallbackListener(SelfRemoving);
    g_calls += 's';
}

TEST(Dispatch, GoesByPriorityWhateverTheOrderOfRegistration) {
    static constexpr struct {
        int a, b, c;
        const char* order;
    } kCases[] = {{5, -1, 3, "bca"}, {INT_MAX, 0, INT_MIN, "cba"}, {INT_MIN, INT_MAX, 1, "acb"}, {1, 2, 3, "abc"}};
    for (const auto& c : kCases) {
        const Probe a('a', c.a), b('b', c.b), d('c', c.c);
        EXPECT_EQ(Raise(), c.order);
    }
}

TEST(Dispatch, IdentifiersThatDoNotExistReachNobodyAndTheUIMessageItsHookAlone) {
    const EMsgID ids[] = {EMsgID{202}, EMsgID{203}, EMsgID{0xFFFFFFFF}, kUIMessage, EMsgID{0}};
    const Probe probe('a', ids, 5);
    for (const EMsgID id : ids) EXPECT_EQ(Raise(id), id == EMsgID{202} || id == EMsgID{0} ? "a" : "") << id;
    EXPECT_EQ(Raise(EMsgID{100}), "");
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
    first.m_action = [](const CBDataBase* data) { static_cast<const CBDataLOut*>(data)->m_value += 10; };
    last.m_action = [](const CBDataBase* data) { static_cast<const CBDataLOut*>(data)->m_value *= 2; };
    const CBDataLOut data(1);
    EXPECT_EQ(Raise(kMessage, &data), "ab");
    EXPECT_EQ(data.m_value, 22);
}

TEST(Dispatch, ChangesDuringADispatchTouchOnlyTheNextOne) {
    Probe first('b', 1), leaver('x', 2);
    const Probe last('c', 3);
    std::unique_ptr<Probe> early, late;
    first.m_action = [&](const CBDataBase*) {
        leaver.Unregister();
        if (!early) early = std::make_unique<Probe>('a', 0);
        if (!late) late = std::make_unique<Probe>('d', 4);
    };
    EXPECT_EQ(Raise(), "bc");
    EXPECT_EQ(Raise(), "abcd");
}

TEST(Dispatch, AListenerMayUnregisterItselfAndRaiseMessages) {
    Probe once('a', 1);
    const Probe other('b', 2, kOther);
    once.m_action = [&](const CBDataBase*) {
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
        EXPECT_EQ(t_allocations, 0) << count;
        EXPECT_EQ(g_calls.size(), count);
    }
}

TEST(Registration, CountsPlacesNotListeners) {
    EMsgID ids[] = {kMessage, kOther, kMessage};
    Probe probe('a', ids, 3);
    EXPECT_EQ(Raise() + Raise(kOther), "aaa");
    probe.Register();
    EXPECT_EQ(Raise(), "aaaa");
    probe.Unregister();
    probe.Register();
    EXPECT_EQ(Raise() + Raise(kOther), "") << "unregistering is final";
    const Probe empty('b', TVector<EMsgID>()), none('c', ids, 0), negative('d', ids, -1), null('e', nullptr, 3);
    EXPECT_EQ(Raise(), "");
    const Probe wrapped('f', TVector<EMsgID>(ids, 1, false));
    ids[0] = kOther;
    EXPECT_EQ(Raise() + Raise(kOther), "f") << "the identifiers are its own";
}

// Two mediators, the identifiers, the list and its array: whichever is missing, the listener is registered or it is
// not; with one of the mediators it is.
TEST(Registration, SurvivesFailingAllocations) {
    for (int failing = 0; failing < 6; ++failing) {
        const EMsgID unused{150u + static_cast<std::uint32_t>(failing)};  // its list is yet to be made
        alignas(Probe) unsigned char place[sizeof(Probe)];
        auto watch = std::make_unique<AllocationWatch>(failing);
        Probe* const probe = new (place) Probe('a', 0, unused);
        watch.reset();
        EXPECT_EQ(Raise(unused), failing == 0 || failing == 2 || failing == 5 ? "a" : "") << failing;
        probe->~Probe();
        EXPECT_EQ(Raise(unused), "") << failing;
    }
}

TEST(Functions, EachRegistrationCountsAndTheMostRecentGoesFirst) {
    const EMsgID both[] = {kMessage, kOther};
    DORV_RegisterCallbackListener(Plain, kMessage);
    DORV_RegisterCallbackListener(Plain, both, 2);
    DORV_RegisterCallbackListener(nullptr, kMessage);
    EXPECT_EQ(Raise() + Raise(kOther), "ppp");
    DORV_UnRegisterCallbackListener(Plain);
    EXPECT_EQ(Raise() + Raise(kOther), "p");
    DORV_UnRegisterCallbackListener(Plain);
    DORV_UnRegisterCallbackListener(Plain);
    DORV_UnRegisterCallbackListener(nullptr);
    EXPECT_EQ(Raise(), "");
    DORV_RegisterCallbackListener(SelfRemoving, kMessage);
    EXPECT_EQ(Raise(), "s");
    EXPECT_EQ(Raise(), "");
}

TEST(Manager, ListenersOutliveIt) {
    DORV_RegisterCallbackListener(Plain, kMessage);
    const Probe probe('a');
    testing_support::RegistryDown registry;
    ASSERT_EQ(GetCallbackMgr(), nullptr);
    const Probe late('b');
    DORV_RegisterCallbackListener(Plain, kMessage);
    DORV_UnRegisterCallbackListener(Plain);
    EXPECT_EQ(Raise(), "");
    registry.BringBack();
    ASSERT_NE(GetCallbackMgr(), nullptr);
    EXPECT_EQ(Raise(), "") << "the new manager knows none of them";
}

}  // namespace
}  // namespace dorvutil
